// What the command does once its command line is understood. Each function returns the exit status.
#pragma once

#include <string>
#include <vector>

#include "cli/input.hpp"
#include "cli/rules.hpp"

namespace cli {

enum ExitStatus { kDone = 0, kBadInput = 1, kBadUsage = 2 };

struct ConvertOptions {
    std::string type;
    const Rules* from = nullptr;
    const Rules* to = nullptr;
    std::vector<std::string> files;
    Framing framing;
    Style style;
    std::string output;
    bool check = false;
    bool keep_going = false;
    bool allow_trailing = false;
};
int run_convert(const ConvertOptions& options);

struct CheckOptions {
    std::string type;
    const Rules* from = nullptr;
    std::vector<std::string> files;
    Framing framing;
    bool allow_trailing = false;
};
int run_check(const CheckOptions& options);

struct RandomOptions {
    std::string type;
    const Rules* to = nullptr;
    uint32_t seed = 1;
    uint32_t count = 1;
    Framing framing;
    Style style;
    std::string output;
    bool keep_going = false;
};
int run_random(const RandomOptions& options);

struct TypesOptions {
    std::string pattern;
    bool all = false;
};
int run_types(const TypesOptions& options);

struct ShowOptions {
    std::string type;
    unsigned depth = 0;  // how far to follow the names of other types
};
int run_show(const ShowOptions& options);

int run_roots(const std::string& region);

// "orlenta: <text>" on standard error.
void report(const std::string& text);

}  // namespace cli
