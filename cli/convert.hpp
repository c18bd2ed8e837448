// SPDX-License-Identifier: Apache-2.0
// The conversion of one message after the other, as a thread of its own does it.
#pragma once

#include <optional>

#include "cli/codec.hpp"
#include "cli/detect.hpp"
#include "cli/input.hpp"
#include "cli/text_bytes.hpp"

namespace cli {

enum class CheckPolicy {
    by_target,  // bytes are not written of a value that does not meet its constraints; text is, with a warning
    refuse,
    none,
};

// What is to be done, the same for all messages and threads.
struct Plan {
    const Rules* from = nullptr;
    const Rules* to = nullptr;  // null: nothing is written
    CodedType type;
    std::optional<Detector> detector;  // in place of a type
    TextForm input_form = TextForm::none, output_form = TextForm::none;
    int length_octets = 0;  // in front of each record of the output
    Style style;
    CheckPolicy check = CheckPolicy::by_target;
    bool allow_trailing = false;
    bool keep_going = false;
    bool envelope = false;  // {"type": ..., "value": ...}
    bool physical = false;  // numbers with their units
};

// What is wrong with a message, and which one it is.
struct Finding {
    Place place;
    Problem problem;
    std::string input;
    bool is_warning = false;
};

// What became of a batch.
struct Result {
    std::string output;
    std::vector<Finding> findings;
    uint64_t good = 0, bad = 0;
    bool is_stopped = false;  // at a bad message: what is behind it was not looked at

    void clear();
};

class Converter {
  public:
    explicit Converter(const Plan& plan);
    // `result`, whatever it holds, becomes that of the batch; a used one has its memory already.
    void convert(const Batch& batch, Result* result);

  private:
    bool convert_message(std::string_view input, std::string* output, Problem* problem, Problem* warning);
    bool write_value(const CodedType& type, const Value& value, std::string* output, Problem* problem);
    bool passes_check(const Value& value, Problem* problem, Problem* warning) const;
    void put_placeholder(std::string* output) const;

    const Plan& plan_;
    Arena arena_;
    std::string bytes_, encoded_;  // of the message at work
};

}  // namespace cli
