// SPDX-License-Identifier: Apache-2.0
// Recursive types nested without end: a decoder takes what its stack bears, and what it takes on a large stack can be
// released and compared on a small one, and copied, checked and encoded or refused.
#include "tests/support/nesting.hpp"

#include <orlenta/ber.h>
#include <orlenta/check.h>
#include <orlenta/gser.h>
#include <orlenta/jer.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/xer.h>

#include <cstring>

#include "tests/roundtrip/rules.hpp"
#include "tests/support/octet_codec.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

// An encoding of any depth: `before`, `opening` again and again, `inside`, `closing` as often, `after`.
struct Nest {
    const char* name;
    decode_function decode;
    const asn1_type_desc* type;
    std::string opening, inside, closing;
    std::string before = {}, after = {};
};

// In PER a byte of Chain has eight levels, and one of Filter four.
const Nest kNests[] = {
    {"UPER Tree", asn1_uper_decode, kTree, "\1", "\0"s, ""},
    {"UPER Chain", asn1_uper_decode, kChain, "\xFF", "\0"s, ""},
    {"UPER Filter", asn1_uper_decode, kFilter, "\x55", "\0"s, ""},
    {"APER Tree", asn1_aper_decode, kTree, "\1", "\0"s, ""},
    {"APER Chain", asn1_aper_decode, kChain, "\xFF", "\0"s, ""},
    {"OER Tree", asn1_oer_decode, kTree, "\1\1", "\1\0"s, ""},
    {"OER Chain", asn1_oer_decode, kChain, "\x80", "\0"s, ""},
    {"OER Filter", asn1_oer_decode, kFilter, "\x81", "\x80", ""},
    {"OER Filter by lists", asn1_oer_decode, kFilter, "\x82\1\1", "\x80", ""},
    {"BER Tree", asn1_ber_decode, kTree, "\x30\x80", "\x30\0"s, "\0\0"s},
    {"BER Chain", asn1_ber_decode, kChain, "\xA0\x80", "", "\0\0"s, "\x30\x80", "\0\0"s},
    {"BER Filter", asn1_ber_decode, kFilter, "\xA1\x80", "\x80\0"s, "\0\0"s},
    {"BER Shell", asn1_ber_decode, kShell, "\x30\x80\2\1\1", "\x30\5\2\1\2\5\0"s, "\0\0"s},
    {"JER Tree", asn1_jer_decode, kTree, "[", "[]", "]"},
    {"JER Chain", asn1_jer_decode, kChain, "{\"next\":", "{}", "}"},
    {"JER Filter", asn1_jer_decode, kFilter, "{\"not\":", "{\"present\":null}", "}"},
    {"JER Shell", asn1_jer_decode, kShell, R"({"id":1,"value":)", R"({"id":2,"value":null})", "}"},
    {"GSER Tree", asn1_gser_decode, kTree, "{", "{}", "}"},
    {"GSER Chain", asn1_gser_decode, kChain, "{next", "{}", "}"},
    {"GSER Filter", asn1_gser_decode, kFilter, "not:", "present:NULL", ""},
    {"XER Tree", asn1_xer_decode, kTree, "<SEQUENCE_OF>", "<SEQUENCE_OF/>", "</SEQUENCE_OF>"},
    {"XER Chain", asn1_xer_decode, kChain, "<next>", "", "</next>", "<SEQUENCE>", "</SEQUENCE>"},
    {"XER Filter", asn1_xer_decode, kFilter, "<not>", "<present/>", "</not>", "<CHOICE>", "</CHOICE>"},
};
void PrintTo(const Nest& nest, std::ostream* out) { *out << nest.name; }

std::string repeat(const std::string& text, size_t times) {
    std::string all;
    for (all.reserve(text.size() * times); times > 0; --times) all += text;
    return all;
}

octets make(const Nest& nest, size_t depth) {
    std::string text =
        nest.before + repeat(nest.opening, depth) + nest.inside + repeat(nest.closing, depth) + nest.after;
    return octets(text.begin(), text.end());
}

// Decodes on a stack of this size, and releases what comes of it, if it isn't wanted.
decoded decode_on(size_t stack_size, const Nest& nest, const octets& input) {
    decoded result;
    void* value = nullptr;
    run_on_stack(stack_size, [&] {
        result.consumed = nest.decode(&value, nest.type, input.data(), input.size(), &result.error);
    });
    EXPECT_EQ(value == nullptr, result.consumed < 0);
    result.value = value_pointer(value, {nest.type});
    return result;
}

void expect_too_deep(const asn1_error& error) { EXPECT_STREQ(error.message, "value nested too deeply"); }

enum Outcome { kDone, kRefused };

// What takes a value. Each is called on a stack of its own.
struct Consumer {
    const char* name;
    std::function<Outcome(const asn1_type_desc*, const void*)> run;
    bool indents = false;  // what it makes grows with the square of the depth
};

template <typename Encode>
Outcome encode_with(Encode encode, const asn1_type_desc* type, const void* value) {
    uint8_t* data = nullptr;
    int64_t size = encode(&data, type, value);
    EXPECT_EQ(data == nullptr, size < 0);
    asn1_free(data);
    return size < 0 ? kRefused : kDone;
}

template <int64_t encode(uint8_t**, const asn1_type_desc*, const void*, asn1_error*)>
Outcome encode_and_report(const asn1_type_desc* type, const void* value) {
    asn1_error error;
    Outcome outcome =
        encode_with([&](auto... arguments) { return encode(arguments..., &error); }, type, value);
    if (outcome == kRefused) expect_too_deep(error);
    return outcome;
}

Outcome compare(const asn1_type_desc* type, const void* value) {
    EXPECT_EQ(asn1_cmp_value(type, value, value), 0);
    return kDone;
}

Outcome clone(const asn1_type_desc* type, const void* value) {
    void* copy = asn1_clone_value(type, value);
    if (copy == nullptr) return kRefused;
    EXPECT_EQ(asn1_cmp_value(type, value, copy), 0);
    asn1_free_value(type, copy);
    return kDone;
}

Outcome copy(const asn1_type_desc* type, const void* value) {
    void* record = asn1_mallocz_value(type);
    int result = asn1_copy_value(type, record, value);
    EXPECT_EQ(result == 0, asn1_cmp_value(type, value, record) == 0);
    asn1_free_value(type, record);
    return result == 0 ? kDone : kRefused;
}

Outcome check(const asn1_type_desc* type, const void* value) {
    asn1_error error;
    if (asn1_check_constraints(type, value, &error) == 1) return kDone;
    expect_too_deep(error);
    return kRefused;
}

std::vector<Consumer> consumers() {
    std::vector<Consumer> all = {{"compare", compare},
                                 {"clone", clone},
                                 {"copy", copy},
                                 {"check", check},
                                 {"UPER with a report", encode_and_report<asn1_uper_encode2>},
                                 {"OER with a report", encode_and_report<asn1_oer_encode2>}};
    for (const Rule& rule : all_rules()) {
        auto run = [&rule](const asn1_type_desc* type, const void* value) {
            return encode_with(rule.encode, type, value);
        };
        all.push_back({rule.name, run, strchr("JGX", rule.name[0]) != nullptr});
    }
    return all;
}

// Nobody tells how far a coroutine's stack goes: it is taken to bear an allowance.
TEST(Coroutine, DecodesWhatTheAllowanceBears) {
    Stack stack(kTightStack);
    for (const Nest& nest : kNests) {
        SCOPED_TRACE(nest.name);
        octets deep_input = make(nest, 5000), shallow_input = make(nest, 2);
        decoded deep, shallow;
        stack.run_as_coroutine([&] {
            deep = decode(nest.decode, nest.type, deep_input);
            shallow = decode(nest.decode, nest.type, shallow_input);
        });
        EXPECT_EQ(shallow.consumed, static_cast<int64_t>(shallow_input.size()));
        bool may_be_flat = std::string(nest.name) == "OER Filter";
        EXPECT_TRUE(deep.consumed < 0 || may_be_flat);
        if (deep.consumed < 0) expect_too_deep(deep.error);
    }
}

class Nesting : public testing::TestWithParam<Nest> {};

TEST_P(Nesting, DecodedHereUsedThere) {
    const Nest& nest = GetParam();
    // Even of the part of its stack that a sanitizer leaves, a kilobyte a level would be much.
    size_t bearable = kLargeStack / 8 / 1024;
    octets endless = make(nest, kTooDeep);
    for (size_t size : {kLeastStack, kTightStack, kSmallStack, kLargeStack}) {
        decoded beyond = decode_on(size, nest, endless);
        if (beyond.consumed < 0) {
            expect_too_deep(beyond.error);
        } else {
            bearable = kTooDeep;  // this one takes no stack
        }
    }
    size_t depth = bearable;
    for (size_t more = depth; more < kTooDeep && decode_on(kLargeStack, nest, make(nest, more)).consumed > 0;
         more += more / 8) {
        depth = more;
    }
    decoded deep = decode_on(kLargeStack, nest, make(nest, depth));
    ASSERT_GT(deep.consumed, 0) << deep.error.message;
    decoded shallow = decode_on(kTightStack, nest, make(nest, 5));
    ASSERT_GT(shallow.consumed, 0) << shallow.error.message;
    for (const Consumer& consumer : consumers()) {
        SCOPED_TRACE(consumer.name);
        for (size_t size : {kLeastStack, kTightStack}) {
            run_on_stack(size, [&] {
                Outcome outcome = consumer.run(nest.type, shallow.value.get());
                EXPECT_TRUE(outcome == kDone || size == kLeastStack);
                consumer.run(nest.type, deep.value.get());
            });
        }
        if (!consumer.indents) run_on_stack(kLargeStack, [&] { consumer.run(nest.type, deep.value.get()); });
    }
    run_on_stack(kLeastStack, [&] { deep.value.reset(); });
}

INSTANTIATE_TEST_SUITE_P(All, Nesting, testing::ValuesIn(kNests), [](const auto& info) {
    std::string name = info.param.name;
    std::erase(name, ' ');
    return name;
});

}  // namespace
}  // namespace orlenta::test
