// SPDX-License-Identifier: Apache-2.0
// Writes programs as constants, `orlenta_codec_<REGION>_<Type>`, and the index by which the library finds them.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "compiler/programs/built_programs.hpp"

namespace orlentac {

// One program for all the types: what they have in common is there once. It refers to tables by names that
// emit_tables() gives to `own_tables`.
std::string emit_common_program(const CodedRegion& region);

// A program for each type, so that a program that names one has nothing of the others; in `parts` files.
std::vector<std::string> emit_single_programs(const CodedRegion& region, size_t parts);

// The tables that the common program refers to without need of the address that everybody sees.
std::unordered_set<const Table*> own_tables(const CodedRegion& region);

// The index; with `for_all_programs`, it is found in any program that it is linked with, else by its region's name in
// the library itself.
std::string emit_index(const CodedRegion& region, bool for_all_programs);

// The header that declares the constants, for C and C++.
std::string emit_codecs_header(const CodedRegion& region, const std::string& header);
// orlenta/us.h is orlenta/us_codecs.h.
std::string codecs_header_name(const std::string& header);

}  // namespace orlentac
