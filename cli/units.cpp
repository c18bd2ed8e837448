// SPDX-License-Identifier: Apache-2.0
#include "cli/units.hpp"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <unordered_map>

#include "cli/type_names.hpp"

namespace cli {

const orlenta_unit* unit_of(const asn1_type_desc* type) {
    static thread_local std::unordered_map<const asn1_type_desc*, const orlenta_unit*> known;
    auto [at, is_new] = known.try_emplace(type, nullptr);
    if (is_new) at->second = orlenta_unit_of(used_catalogue(), type);
    return at->second;
}

// Without zeros at the end, which no one reads.
static std::string decimal_text(double value, uint32_t digits) {
    std::string text = fmt::format("{:.{}f}", value, digits);
    if (digits == 0) return text;
    while (text.back() == '0') text.pop_back();
    if (text.back() == '.') text.pop_back();
    return text;
}

std::string unit_text(const orlenta_unit& unit) {
    std::string text = fmt::format("{} {}", decimal_text(unit.scale, unit.digits), unit.symbol);
    if (unit.offset != 0)
        text += fmt::format(" {} {}", unit.offset < 0 ? '-' : '+',
                            decimal_text(std::abs(unit.offset), unit.digits));
    for (uint32_t i = 0; i < unit.special_count; ++i) {
        const orlenta_special& special = unit.specials[i];
        text += fmt::format("; {}", special.first);
        if (special.last != special.first) text += fmt::format("..{}", special.last);
        text += fmt::format(" {}", special.meaning);
    }
    return text;
}

// ---- one number -------------------------------------------------------------------------------------------

// A physical value counted in units of the last decimal, so that no digit of it is rounded. False if there are too many.
static bool count_last_decimals(const orlenta_unit& unit, int64_t number, int64_t* count) {
    double in_one = std::pow(10, unit.digits);
    double scale = std::round(unit.scale * in_one), offset = std::round(unit.offset * in_one);
    constexpr double kMostExact = 0x1p53;
    if (scale > kMostExact || std::abs(offset) > kMostExact) return false;
    return !__builtin_mul_overflow(number, static_cast<int64_t>(scale), count) &&
           !__builtin_add_overflow(*count, static_cast<int64_t>(offset), count);
}

static std::string shifted_text(int64_t count, uint32_t digits) {
    std::string text = fmt::format(
        "{:0{}}", count < 0 ? 0 - static_cast<uint64_t>(count) : static_cast<uint64_t>(count), digits + 1);
    text.insert(text.size() - digits, ".");
    text.resize(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return count < 0 ? "-" + text : text;
}

static std::string physical_text(const orlenta_unit& unit, int64_t number) {
    int64_t count;
    if (count_last_decimals(unit, number, &count)) return shifted_text(count, unit.digits);
    return decimal_text(static_cast<double>(number) * unit.scale + unit.offset, unit.digits);
}

// Of a REAL, or of an INTEGER beyond 64 bits: as many digits as a double is sure to have.
static std::string physical_text(const orlenta_unit& unit, std::string_view number) {
    return fmt::format("{:.15g}",
                       std::strtod(std::string(number).c_str(), nullptr) * unit.scale + unit.offset);
}

Reading read_number(const orlenta_unit& unit, std::string_view number) {
    int64_t whole = 0;
    const char* end = number.data() + number.size();
    auto [behind, failure] = std::from_chars(number.data(), end, whole);
    bool is_whole = failure == std::errc() && behind == end;
    const orlenta_special* special = is_whole ? orlenta_unit_special(&unit, whole) : nullptr;
    if (special && special->is_limit == 0) return {"", "", special->meaning};
    std::string text = is_whole ? physical_text(unit, whole) : physical_text(unit, number);
    return {text, unit.symbol, special ? special->meaning : ""};
}

std::string sentence(const Reading& reading) {
    if (reading.physical.empty()) return reading.meaning;
    std::string text = reading.physical;
    if (reading.symbol != "1") text += " " + reading.symbol;
    return reading.meaning.empty() ? text : text + " " + reading.meaning;
}

std::string json_members(const Reading& reading) {
    std::string text;
    if (!reading.physical.empty())
        text = fmt::format(R"("physical":{},"unit":"{}")", reading.physical, reading.symbol);
    if (!reading.meaning.empty())
        text += fmt::format(R"({}"meaning":"{}")", text.empty() ? "" : ",", reading.meaning);
    return text;
}

// ---- whole values -----------------------------------------------------------------------------------------

namespace {

// Where JSON is read, and what becomes of it.
struct Rewriter {
    std::string_view json;
    size_t at = 0;
    std::string out = {};
};

}  // namespace

static char peek(const Rewriter& rewriter) {
    return rewriter.at < rewriter.json.size() ? rewriter.json[rewriter.at] : '\0';
}

static void copy(Rewriter& rewriter, size_t count) {
    rewriter.out += rewriter.json.substr(rewriter.at, count);
    rewriter.at = std::min(rewriter.at + count, rewriter.json.size());
}

// Blanks, and the commas and colons between parts.
static void copy_between(Rewriter& rewriter) {
    size_t end = rewriter.json.find_first_not_of(" \n\r\t,:", rewriter.at);
    copy(rewriter, (end == std::string_view::npos ? rewriter.json.size() : end) - rewriter.at);
}

static std::string_view copy_text(Rewriter& rewriter) {
    size_t end = rewriter.at + 1;
    while (end < rewriter.json.size() && rewriter.json[end] != '"') end += rewriter.json[end] == '\\' ? 2 : 1;
    std::string_view text = rewriter.json.substr(rewriter.at + 1, end - rewriter.at - 1);
    copy(rewriter, end + 1 - rewriter.at);
    return text;
}

static std::string_view read_word(Rewriter& rewriter) {
    size_t end = rewriter.json.find_first_of(" \n\r\t,:]}", rewriter.at);
    if (end == std::string_view::npos) end = rewriter.json.size();
    std::string_view word = rewriter.json.substr(rewriter.at, end - rewriter.at);
    rewriter.at = end;
    return word;
}

// As it stands: text, a word, or all up to the bracket that closes.
static void copy_value(Rewriter& rewriter) {
    int depth = 0;
    do {
        copy_between(rewriter);
        char c = peek(rewriter);
        if (c == '"') {
            copy_text(rewriter);
        } else if (c == '{' || c == '[' || c == '}' || c == ']') {
            depth += c == '{' || c == '[' ? 1 : -1;
            copy(rewriter, 1);
        } else {
            rewriter.out += read_word(rewriter);
        }
    } while (depth > 0 && rewriter.at < rewriter.json.size());
}

static void rewrite(Rewriter& rewriter, const asn1_type_desc* type, const void* value);

static bool find_part(const orlenta_type_facts& facts, std::string_view name, orlenta_component* part) {
    for (uint32_t i = 0; orlenta_type_component(facts.type, i, part) == 0; ++i)
        if (part->name == name) return true;
    return false;
}

static bool find_part(const orlenta_type_facts& facts, std::string_view name, orlenta_alternative* part) {
    for (uint32_t i = 0; orlenta_type_alternative(facts.type, i, part) == 0; ++i)
        if (part->name == name) return true;
    return false;
}

static const void* inside(const void* record, uint64_t offset) {
    return static_cast<const char*>(record) + offset;
}

static void rewrite_members(Rewriter& rewriter, const orlenta_type_facts& facts, const void* value) {
    copy(rewriter, 1);
    for (copy_between(rewriter); peek(rewriter) == '"'; copy_between(rewriter)) {
        std::string_view name = copy_text(rewriter);
        copy_between(rewriter);
        orlenta_component component;
        orlenta_alternative alternative;
        if (find_part(facts, name, &component))
            rewrite(rewriter, component.type, inside(value, component.offset));
        else if (find_part(facts, name, &alternative))
            rewrite(rewriter, alternative.type, inside(value, alternative.value_offset));
        else
            copy_value(rewriter);
    }
    copy(rewriter, 1);
}

static void rewrite_elements(Rewriter& rewriter, const orlenta_type_facts& facts, const void* value) {
    const asn1_array* array = static_cast<const asn1_array*>(value);
    copy(rewriter, 1);
    for (uint64_t i = 0; i < array->count; ++i) {
        copy_between(rewriter);
        rewrite(rewriter, facts.element, inside(array->data, i * facts.stride));
    }
    copy_between(rewriter);
    copy(rewriter, 1);
}

static void rewrite_number(Rewriter& rewriter, const asn1_type_desc* type) {
    const orlenta_unit* unit = unit_of(type);
    bool is_number = peek(rewriter) == '-' || (peek(rewriter) >= '0' && peek(rewriter) <= '9');
    if (!unit || !is_number) return copy_value(rewriter);
    std::string_view number = read_word(rewriter);
    rewriter.out += fmt::format(R"({{"raw":{},{}}})", number, json_members(read_number(*unit, number)));
}

static void rewrite(Rewriter& rewriter, const asn1_type_desc* type, const void* value) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    for (uint32_t i = 0; i < facts.pointer_count; ++i) value = *static_cast<const void* const*>(value);
    switch (facts.kind) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET:
        case ASN1_KIND_CHOICE: return rewrite_members(rewriter, facts, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return rewrite_elements(rewriter, facts, value);
        case ASN1_KIND_INTEGER:
        case ASN1_KIND_REAL: return rewrite_number(rewriter, type);
        case ASN1_KIND_ANY: {
            const asn1_open_value* open = static_cast<const asn1_open_value*>(value);
            return open->type ? rewrite(rewriter, open->type, open->data) : copy_value(rewriter);
        }
        default: return copy_value(rewriter);
    }
}

std::string with_physical_values(const asn1_type_desc* type, const void* value, std::string_view json) {
    Rewriter rewriter = {json};
    copy_between(rewriter);
    rewrite(rewriter, type, value);
    copy(rewriter, json.size());
    return std::move(rewriter.out);
}

}  // namespace cli
