// SPDX-License-Identifier: Apache-2.0
// What the command does once its command line is understood. Each function returns the exit status.
#pragma once

#include <string>
#include <vector>

#include "cli/convert.hpp"
#include "cli/input.hpp"
#include "cli/rules.hpp"

namespace cli {

enum ExitStatus { kDone = 0, kBadInput = 1, kBadUsage = 2 };

// How messages lie in files, on both sides.
struct Layout {
    bool lines = false;
    int length_octets = 0;  // 0: no records
    TextForm form = TextForm::none;
};

struct ConvertOptions {
    std::string type;
    const Rules* from = nullptr;
    const Rules* to = nullptr;  // null: the messages are checked and not written
    std::vector<std::string> files;
    Layout layout;
    Style style;
    std::string output, errors;
    CheckPolicy check = CheckPolicy::by_target;
    bool keep_going = false;
    bool allow_trailing = false;
    bool envelope = false;
    bool physical = false;
    unsigned jobs = 1;
};
int run_convert(const ConvertOptions& options);

struct ExplainOptions {
    std::string type;
    const Rules* from = nullptr;
    std::string file;  // empty: standard input
    TextForm form = TextForm::none;
    bool json = false;
};
int run_explain(const ExplainOptions& options);

struct RandomOptions {
    std::string type;
    const Rules* to = nullptr;
    uint32_t seed = 1;
    uint32_t count = 1;
    bool valid = false;
    Layout layout;
    Style style;
    std::string output;
    bool keep_going = false;
};
int run_random(const RandomOptions& options);

int run_types(const std::string& pattern);

struct ShowOptions {
    std::string type;
    unsigned depth = 0;  // how far to follow the names of other types
};
int run_show(const ShowOptions& options);

int run_roots(const std::string& region);

// "orlenta: <text>" on standard error.
void report(const std::string& text);

}  // namespace cli
