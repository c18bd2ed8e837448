// SPDX-License-Identifier: Apache-2.0
// Batches through one thread or several, and their results in the order of the input.
#pragma once

#include <functional>

#include "cli/convert.hpp"

namespace cli {

// Hands each result to `take` until that gives false, or the source is at its end. With several jobs the batches under
// way are few, whatever the input's size, and `take` is called by a thread of its own, one call at a time.
void run_pipeline(Source* source, const Plan& plan, unsigned jobs,
                  const std::function<bool(const Batch&, const Result&)>& take);

}  // namespace cli
