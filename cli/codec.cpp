// SPDX-License-Identifier: Apache-2.0
#include "cli/codec.hpp"

#include <fmt/format.h>
#include <orlenta/check.h>
#include <orlenta/memory.h>

#include <algorithm>
#include <cctype>

namespace cli {

std::string sentence(const Problem& problem) {
    std::string place;
    if (problem.bit >= 0) place = fmt::format("bit {}", problem.bit);
    if (!problem.path.empty()) place += fmt::format("{}at {}", place.empty() ? "" : ", ", problem.path);
    return place.empty() ? problem.text : fmt::format("{} ({})", problem.text, place);
}

CodedType coded(const asn1_type_desc* type, std::string name) {
    return {type, std::move(name), Codec(orlenta_codec_new(type))};
}

static Problem problem_of(const asn1_error& error, bool has_bits, const char* otherwise) {
    Problem problem;
    problem.text = error.message[0] ? error.message : otherwise;
    problem.path = error.path;
    if (has_bits) problem.bit = error.bit_position;
    return problem;
}

// ---- decoding ---------------------------------------------------------------------------------------------

// A value that takes no bits is one zero octet in PER (X.691 clause 11.1.3), of which the decoder uses nothing.
static bool is_empty_encoding(std::string_view input, int64_t used) {
    return used == 0 && input.size() == 1 && input[0] == 0;
}

// What stands behind the message, if anything but white space does: its offset, else the input's size.
static size_t trailing_offset(const Rules& rules, std::string_view input, int64_t used) {
    if (!rules.is_text()) return is_empty_encoding(input, used) ? input.size() : static_cast<size_t>(used);
    if (!rules.message_end) return input.size();
    auto is_space = [](unsigned char c) { return std::isspace(c) != 0; };
    auto rest = input.begin() + static_cast<std::ptrdiff_t>(rules.message_end(input));
    return static_cast<size_t>(std::find_if_not(rest, input.end(), is_space) - input.begin());
}

static Problem trailing_problem(const Rules& rules, std::string_view input, size_t offset) {
    Problem problem;
    if (rules.is_text()) {
        problem.text = "there is more text behind the message";
        auto end = input.begin() + static_cast<std::ptrdiff_t>(offset);
        problem.line = 1 + static_cast<int>(std::count(input.begin(), end, '\n'));
    } else {
        size_t left = input.size() - offset;
        problem.text = fmt::format("{} byte{} behind the message", left, left == 1 ? "" : "s");
        problem.bit = static_cast<int64_t>(8 * offset);
    }
    return problem;
}

static int64_t decode_by(const Rules& rules, const CodedType& type, orlenta_arena* arena,
                         std::string_view input, Value* value, asn1_error* error) {
    const uint8_t* data = reinterpret_cast<const uint8_t*>(input.data());
    if (rules.decode_arena && type.codec && arena) {
        orlenta_arena_value decoded = {nullptr};
        int64_t used = rules.decode_arena(type.codec.get(), arena, &decoded, data, input.size(), error);
        if (used >= 0) *value = Value(type.type, decoded);
        return used;
    }
    void* decoded = nullptr;
    int64_t used = rules.decode(&decoded, type.type, data, input.size(), error);
    if (used >= 0) *value = Value(type.type, decoded);
    return used;
}

Value decode(const Rules& rules, const CodedType& type, orlenta_arena* arena, std::string_view input,
             bool allow_trailing, Problem* problem) {
    if (rules.is_text() && input.starts_with("\xEF\xBB\xBF")) {
        problem->text = "the text begins with a byte order mark (EF BB BF), which is no part of it";
        problem->line = 1;
        return {};
    }
    asn1_error error;
    asn1_error_init(&error);
    Value value;
    int64_t used = decode_by(rules, type, arena, input, &value, &error);
    if (used < 0) {
        *problem = problem_of(error, !rules.is_text(), "the message cannot be decoded");
        if (rules.is_text()) problem->line = error.line;
        return {};
    }
    size_t trailing = trailing_offset(rules, input, used);
    if (trailing == input.size() || allow_trailing) return value;
    *problem = trailing_problem(rules, input, trailing);
    return {};
}

// ---- checking and encoding --------------------------------------------------------------------------------

bool check(const Value& value, Problem* problem) {
    asn1_error error;
    asn1_error_init(&error);
    if (orlenta_check(value.type(), value.get(), &error)) return true;
    *problem = problem_of(error, false, "a constraint is not met");
    return false;
}

bool encode(const Rules& rules, const CodedType& type, const void* value, const Style& style,
            std::string* output, Problem* problem) {
    asn1_error error;
    asn1_error_init(&error);
    uint8_t* data = nullptr;
    int64_t size = rules.encode_codec && type.codec
                       ? rules.encode_codec(type.codec.get(), &data, value, &error)
                       : rules.encode(&data, type.type, value, style, &error);
    if (size < 0) {
        bool has_bits = !rules.is_text() && error.message[0];
        *problem = problem_of(error, has_bits, "the value is not of its type");
        problem->text = fmt::format("not encodable as {}: {}", rules.name, problem->text);
        return false;
    }
    output->append(reinterpret_cast<const char*>(data), static_cast<size_t>(size));
    asn1_free(data);
    if (rules.is_text() && !output->ends_with('\n')) output->push_back('\n');
    return true;
}

}  // namespace cli
