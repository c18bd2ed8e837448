// SPDX-License-Identifier: Apache-2.0
// The types of a message set.
#include "bridge.hpp"

extern "C" const orlenta_catalogue* ORLENTA_JS_CATALOGUE();

const orlenta_catalogue* orlenta::js::catalogue() { return ORLENTA_JS_CATALOGUE(); }
