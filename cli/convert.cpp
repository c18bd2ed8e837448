// SPDX-License-Identifier: Apache-2.0
#include "cli/convert.hpp"

#include <fmt/format.h>

#include "cli/units.hpp"

namespace cli {

Converter::Converter(const Plan& plan) : plan_(plan), arena_(orlenta_arena_create(0)) {}

// ---- output -----------------------------------------------------------------------------------------------

static void append_length(int octets, size_t length, std::string* output) {
    for (int i = octets; i-- > 0;) output->push_back(static_cast<char>(length >> (8 * i)));
}

// What stands for a bad message, so that output and input stay in step.
void Converter::put_placeholder(std::string* output) const {
    const Rules* to = plan_.to;
    if (!to) return;
    if (plan_.length_octets > 0)
        append_length(plan_.length_octets, 0, output);
    else if (std::string_view(to->name) == "jer")
        output->append("null\n");
    else if (to->is_text() || plan_.output_form != TextForm::none)
        output->push_back('\n');
}

static size_t longest_record(int length_octets) { return length_octets == 2 ? UINT16_MAX : UINT32_MAX; }

bool Converter::write_value(const CodedType& type, const Value& value, std::string* output,
                            Problem* problem) {
    bool is_plain = plan_.to->is_text() || (plan_.output_form == TextForm::none && plan_.length_octets == 0);
    size_t start = output->size();
    if (plan_.envelope)
        fmt::format_to(std::back_inserter(*output), "{{\"type\":\"{}\",\"value\":", type.name);
    size_t begin = output->size();
    if (!is_plain) encoded_.clear();
    if (!encode(*plan_.to, type, value.get(), plan_.style, is_plain ? output : &encoded_, problem)) {
        output->resize(start);
        return false;
    }
    if (plan_.physical) {
        std::string json =
            with_physical_values(type.type, value.get(), std::string_view(*output).substr(begin));
        output->replace(begin, std::string::npos, json);
    }
    if (plan_.envelope) output->insert(output->size() - 1, "}");
    if (is_plain) return true;
    if (plan_.length_octets == 0) {
        append_bytes_as(plan_.output_form, encoded_, output);
        output->push_back('\n');
        return true;
    }
    if (encoded_.size() > longest_record(plan_.length_octets)) {
        problem->text = fmt::format("{} octets do not fit a record with a length of {} octets",
                                    encoded_.size(), plan_.length_octets);
        return false;
    }
    append_length(plan_.length_octets, encoded_.size(), output);
    output->append(encoded_);
    return true;
}

// ---- one message ------------------------------------------------------------------------------------------

bool Converter::passes_check(const Value& value, Problem* problem, Problem* warning) const {
    if (plan_.check == CheckPolicy::none) return true;
    bool must_pass = plan_.check == CheckPolicy::refuse || !plan_.to || !plan_.to->is_text();
    return check(value, must_pass ? problem : warning) || !must_pass;
}

bool Converter::convert_message(std::string_view input, std::string* output, Problem* problem,
                                Problem* warning) {
    if (plan_.input_form != TextForm::none) {
        TextProblem text_problem;
        if (!parse_bytes(input, plan_.input_form, &bytes_, &text_problem)) {
            problem->text = text_problem.text;
            problem->column = text_problem.column;
            return false;
        }
        input = bytes_;
    }
    Value value;
    const CodedType* type = &plan_.type;
    if (plan_.detector)
        type = plan_.detector->detect(*plan_.from, arena_.get(), input, &value, problem);
    else
        value = decode(*plan_.from, plan_.type, arena_.get(), input, plan_.allow_trailing, problem);
    return value && type && passes_check(value, problem, warning) &&
           (!plan_.to || write_value(*type, value, output, problem));
}

// ---- a batch ----------------------------------------------------------------------------------------------

static Finding finding_at(const Batch& batch, const Batch::Item& item, Problem problem, bool is_warning) {
    std::string_view input = std::string_view(batch.text).substr(item.begin, item.length);
    return {{batch.file, batch.framing, item.number}, std::move(problem), std::string(input), is_warning};
}

void Result::clear() {
    output.clear();
    findings.clear();
    good = bad = 0;
    is_stopped = false;
}

void Converter::convert(const Batch& batch, Result* result) {
    result->clear();
    for (const Batch::Item& item : batch.items) {
        Problem problem, warning;
        std::string_view input = std::string_view(batch.text).substr(item.begin, item.length);
        bool good = convert_message(input, &result->output, &problem, &warning);
        if (arena_) orlenta_arena_reset(arena_.get());
        if (warning) result->findings.push_back(finding_at(batch, item, std::move(warning), true));
        ++(good ? result->good : result->bad);
        if (good) continue;
        result->findings.push_back(finding_at(batch, item, std::move(problem), false));
        result->is_stopped = !plan_.keep_going;
        if (result->is_stopped) return;
        put_placeholder(&result->output);
    }
    if (batch.problem.empty()) return;
    ++result->bad;
    Problem problem;
    problem.text = batch.problem;
    result->findings.push_back(
        {{batch.file, batch.framing, batch.problem_number}, std::move(problem), {}, false});
    result->is_stopped = !plan_.keep_going;
}

}  // namespace cli
