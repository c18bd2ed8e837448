#include "cli/codec.hpp"

#include <fmt/format.h>
#include <orlenta/check.h>
#include <orlenta/memory.h>

#include <algorithm>
#include <cctype>

namespace cli {

static std::string failure_text(const asn1_error& error, bool has_bits, const char* otherwise) {
    std::string text = error.message[0] ? error.message : otherwise;
    std::string place;
    if (has_bits) place = fmt::format("bit {}", error.bit_position);
    if (error.path[0]) place += fmt::format("{}at {}", place.empty() ? "" : ", ", error.path);
    return place.empty() ? text : fmt::format("{} ({})", text, place);
}

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

static std::string trailing_text(const Rules& rules, size_t offset, size_t left) {
    return rules.is_text()
               ? "there is more text behind the message"
               : fmt::format("{} byte{} behind the message (bit {})", left, left == 1 ? "" : "s", offset * 8);
}

Value decode(const Rules& rules, const asn1_type_desc* type, std::string_view input, bool allow_trailing,
             int* line, std::string* problem) {
    asn1_error error;
    asn1_error_init(&error);
    void* decoded = nullptr;
    int64_t used =
        rules.decode(&decoded, type, reinterpret_cast<const uint8_t*>(input.data()), input.size(), &error);
    *line = 0;
    if (used < 0) {
        if (rules.is_text()) *line = error.line;
        *problem = failure_text(error, !rules.is_text(), "the message cannot be decoded");
        return Value(nullptr, {type});
    }
    Value value(decoded, {type});
    size_t trailing = trailing_offset(rules, input, used);
    if (trailing < input.size() && !allow_trailing) {
        if (rules.is_text())
            *line = 1 + static_cast<int>(std::count(
                            input.begin(), input.begin() + static_cast<std::ptrdiff_t>(trailing), '\n'));
        *problem = trailing_text(rules, trailing, input.size() - trailing);
        value.reset();
    }
    return value;
}

bool check(const asn1_type_desc* type, const void* value, std::string* problem) {
    asn1_error error;
    asn1_error_init(&error);
    if (asn1_check_constraints(type, value, &error)) return true;
    *problem = failure_text(error, false, "a constraint is not met");
    return false;
}

bool encode(const Rules& rules, const asn1_type_desc* type, const void* value, const Style& style,
            std::string* output, std::string* problem) {
    asn1_error error;
    asn1_error_init(&error);
    uint8_t* data = nullptr;
    int64_t size = rules.encode(&data, type, value, style, &error);
    if (size < 0) {
        *problem = fmt::format(
            "not encodable as {}: {}", rules.name,
            failure_text(error, !rules.is_text() && error.message[0], "the value is not of its type"));
        return false;
    }
    output->assign(reinterpret_cast<const char*>(data), static_cast<size_t>(size));
    asn1_free(data);
    if (rules.is_text() && !output->ends_with('\n')) output->push_back('\n');
    return true;
}

}  // namespace cli
