// SPDX-License-Identifier: Apache-2.0
#include "cli/rules.hpp"

#include <orlenta/ber.h>
#include <orlenta/gser.h>
#include <orlenta/jer.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/xer.h>

#include <algorithm>

namespace cli {

static int64_t encode_uper(uint8_t** out, const asn1_type_desc* type, const void* value, const Style&,
                           asn1_error* error) {
    return asn1_uper_encode2(out, type, value, error);
}

static int64_t encode_aper(uint8_t** out, const asn1_type_desc* type, const void* value, const Style&,
                           asn1_error* error) {
    return asn1_aper_encode2(out, type, value, error);
}

static int64_t encode_oer(uint8_t** out, const asn1_type_desc* type, const void* value, const Style&,
                          asn1_error* error) {
    return asn1_oer_encode2(out, type, value, error);
}

static int64_t encode_ber(uint8_t** out, const asn1_type_desc* type, const void* value, const Style& style,
                          asn1_error*) {
    asn1_ber_encode_params params = {};
    params.indefinite_length = style.indefinite;
    params.segment_size = style.segment;
    return asn1_ber_encode(out, type, value, &params);
}

static int64_t encode_der(uint8_t** out, const asn1_type_desc* type, const void* value, const Style&,
                          asn1_error*) {
    return asn1_der_encode(out, type, value);
}

static int64_t encode_jer(uint8_t** out, const asn1_type_desc* type, const void* value, const Style& style,
                          asn1_error*) {
    asn1_jer_encode_options options = {};
    options.indent = style.indent;
    return asn1_jer_encode2(out, type, value, &options);
}

static int64_t encode_xer(uint8_t** out, const asn1_type_desc* type, const void* value, const Style& style,
                          asn1_error*) {
    asn1_xer_encode_options options = {};
    options.indent = style.indent;
    options.empty_tags = style.empty_tags;
    options.boolean_text = style.boolean_text;
    options.enumerated_text = style.enumerated_text;
    return asn1_xer_encode2(out, type, value, &options);
}

static int64_t encode_gser(uint8_t** out, const asn1_type_desc* type, const void* value, const Style&,
                           asn1_error*) {
    return asn1_gser_encode(out, type, value);
}

static size_t json_end(std::string_view text) {
    static constexpr std::string_view blanks = " \t\n\v\f\r";
    size_t depth = 0;
    bool quoted = false;
    size_t i = std::min(text.find_first_not_of(blanks), text.size());
    if (i < text.size() && std::string_view("{[\"").find(text[i]) == std::string_view::npos)
        return std::min(text.find_first_of(blanks, i), text.size());
    for (; i < text.size(); ++i) {
        char c = text[i];
        if (quoted && c == '\\')
            ++i;
        else if (c == '"')
            quoted = !quoted;
        else if (!quoted && (c == '{' || c == '['))
            ++depth;
        else if (!quoted && (c == '}' || c == ']'))
            --depth;
        if (depth == 0 && !quoted) return i + 1;
    }
    return text.size();
}

// Behind the end tag of the outermost element.
static size_t xml_end(std::string_view text) {
    size_t depth = 0;
    for (size_t i = 0; (i = text.find('<', i)) != text.npos;) {
        std::string_view tag = text.substr(i);
        bool is_comment = tag.starts_with("<!--");
        size_t end = is_comment ? text.find("-->", i + 3) : text.find('>', i);
        if (end == text.npos) break;
        i = end + (is_comment ? 3 : 1);
        if (tag.starts_with("<!") || tag.starts_with("<?")) continue;
        if (tag.starts_with("</"))
            --depth;
        else if (text[end - 1] != '/')
            ++depth;
        if (depth == 0) return i;
    }
    return text.size();
}

static const Rules kRules[] = {
    {"uper", "unaligned PER, X.691", Shape::bytes, asn1_uper_decode, encode_uper, nullptr,
     orlenta_uper_decode_arena, orlenta_uper_encode2},
    {"aper", "aligned PER, X.691", Shape::bytes, asn1_aper_decode, encode_aper, nullptr,
     orlenta_aper_decode_arena, orlenta_aper_encode2},
    {"oer", "OER, X.696", Shape::bytes, asn1_oer_decode, encode_oer, nullptr, nullptr, nullptr},
    {"ber", "BER, X.690", Shape::bytes, asn1_ber_decode, encode_ber, nullptr, nullptr, nullptr},
    {"der", "DER, X.690; read as BER", Shape::bytes, asn1_ber_decode, encode_der, nullptr, nullptr, nullptr},
    {"jer", "JSON, X.697", Shape::any_indent, asn1_jer_decode, encode_jer, json_end, nullptr, nullptr},
    {"xer", "XML, X.693", Shape::line_or_lines, asn1_xer_decode, encode_xer, xml_end, nullptr, nullptr},
    {"gser", "GSER, RFC 3641", Shape::lines, asn1_gser_decode, encode_gser, nullptr, nullptr, nullptr},
};

std::span<const Rules> all_rules() { return kRules; }

const Rules* find_rules(std::string_view name) {
    for (const Rules& rules : kRules)
        if (name == rules.name) return &rules;
    return nullptr;
}

}  // namespace cli
