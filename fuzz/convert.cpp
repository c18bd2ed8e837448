// SPDX-License-Identifier: Apache-2.0
// Any bytes, for any table, from any rules to any others: decode, check, copy, compare, encode, decode, compare.
#include <orlenta/check.h>
#include <orlenta/explain.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz/counting_allocator.hpp"
#include "fuzz/input.hpp"
#include "fuzz/value_facts.hpp"
#include "tests/roundtrip/values.hpp"

namespace fuzz {

using orlenta::test::Value;

// What a decode may hold besides the outermost record: docs/security.md.
constexpr size_t kHeldAlways = 1024 * 1024, kHeldPerOctet = 4096;
// What everything else may: text grows with depth times size.
constexpr size_t kEnough = 64 * 1024 * 1024;

// Nesting that the sanitizers' large frames bear in all rules.
constexpr unsigned kEasyDepth = 200;

// Told at the end: fuzzing in which few values come back finds little.
static struct Tally {
    size_t inputs = 0, values = 0, encodings = 0, came_back = 0;
    ~Tally() {
        std::fprintf(stderr, "%zu inputs: %zu values, %zu encodings of them, %zu came back\n", inputs, values,
                     encodings, came_back);
    }
} tally;

static Choice choice;
static asn1_error error;

static void fail(const char* text) {
    const Table& table = table_of(choice);
    std::fprintf(stderr, "%s.%s from %s to %s, style 0x%02x: %s\n", table.region, table.entry->table,
                 source_of(choice).name, target_of(choice).name, choice.style, text);
    if (error.message[0]) std::fprintf(stderr, "at \"%s\": %s\n", error.path, error.message);
    std::abort();
}

static void require(bool condition, const char* text) {
    if (!condition) fail(text);
}

static bool is_terminated(const char (&text)[256]) { return std::memchr(text, 0, sizeof text) != nullptr; }

static void require_report(size_t size) {
    require(is_terminated(error.message) && is_terminated(error.path), "a text without an end");
    require(error.line >= 1, "no line");
    require(error.bit_position >= 0 && static_cast<size_t>(error.bit_position) <= 8 * size,
            "a position behind the input");
}

struct Decoded {
    Value value;
    int64_t used;
};

static Decoded decode(const cli::Rules& rules, const asn1_type_desc* type, std::span<const uint8_t> message) {
    std::memset(&error, 0, sizeof error);
    void* value = &error;
    forbid_above(live_bytes() + kHeldAlways + kHeldPerOctet * message.size() +
                 static_cast<size_t>(asn1_get_size(type)));
    size_t before = live_bytes();
    int64_t used = rules.decode(&value, type, message.data(), message.size(), &error);
    forbid_above(kUnlimited);
    if (used < 0) {
        require(used == -1 && value == nullptr, "a failure with a value");
        require(live_bytes() == before, "a failure that leaves a block");
        require_report(message.size());
    } else {
        require(value != nullptr && static_cast<size_t>(used) <= message.size(), "more used than there is");
        require(error.line == 0 && error.message[0] == '\0', "a success with a message");
    }
    return {Value(value, {type}), used};
}

// False if there is no encoding.
static bool encode(const cli::Rules& rules, const asn1_type_desc* type, const void* value, Bytes& out) {
    std::memset(&error, 0, sizeof error);
    size_t before = live_bytes();
    uint8_t* data = reinterpret_cast<uint8_t*>(&error);
    refuse_above(before + kEnough);
    int64_t size = rules.encode(&data, type, value, style_of(choice), &error);
    if (size < 0) {
        require(size == -1 && data == nullptr, "a failure with an encoding");
        require(live_bytes() == before, "a failed encoder that leaves a block");
        return false;
    }
    require(data != nullptr || size == 0, "an encoding, and no block");
    require(!has_refused(), "an encoding though memory ran out");
    out.assign(data, data + size);
    asn1_free(data);
    require(live_bytes() == before, "an encoder that leaves a block");
    return true;
}

static bool is(const char* message) { return std::strcmp(error.message, message) == 0; }

// A value may hold more than its shortest encoding pays for, or nest deeper than other rules bear. Not all rules tell.
static bool is_excused(const Facts& facts, size_t held) {
    if (has_refused() || (is("not enough memory") && held > kHeldAlways / 2)) return true;
    return facts.depth > kEasyDepth && (is("value nested too deeply") || is(""));
}

static bool is_one_of(const cli::Rules& rules, std::initializer_list<const char*> names) {
    return std::any_of(names.begin(), names.end(),
                       [&](const char* name) { return !std::strcmp(rules.name, name); });
}

// Encoders need not refuse such a value, but what they make of it is no encoding.
static bool cannot_be_written(const cli::Rules& rules, const Facts& facts) {
    if (facts.breaks_constraint && is_one_of(rules, {"uper", "aper", "oer", "jer"})) return true;
    return facts.has_unknown || (rules.is_text() && (facts.has_odd_oid || facts.has_odd_text));
}

// BER finds the end of raw octets by their being BER, which those of other rules are not; JSON and XML write them and
// read only what has a type.
static bool cannot_be_read(const cli::Rules& rules, const Facts& facts) {
    return facts.has_raw && is_one_of(rules, {"ber", "der", "jer", "xer"});
}

static void use(const asn1_type_desc* type, const void* value) {
    Value copy(asn1_clone_value(type, value), {type});
    require(copy != nullptr, "no copy");
    require(asn1_cmp_value(type, value, copy.get()) == 0, "a copy differs");
}

// The rules of bits as orlenta_explain() has them, or -1.
static int explained_rules(const char* name) {
    if (std::strcmp(name, "uper") == 0) return ORLENTA_RULES_UPER;
    if (std::strcmp(name, "aper") == 0) return ORLENTA_RULES_APER;
    if (std::strcmp(name, "oer") == 0) return ORLENTA_RULES_OER;
    return std::strcmp(name, "ber") == 0 || std::strcmp(name, "der") == 0 ? ORLENTA_RULES_BER : -1;
}

static void take_bits(void* user, const orlenta_bits* bits) {
    uint64_t& told = *static_cast<uint64_t*>(user);
    require(bits->offset == told, "bits told twice, or left out");
    require(bits->width <= 8 || bits->kind != ORLENTA_BITS_PADDING, "more padding than an octet");
    told += bits->width;
}

// Whatever the message is, all its bits are told, and the result is the decoder's.
static void explain(const asn1_type_desc* type, std::span<const uint8_t> message, int64_t used) {
    int rules = explained_rules(source_of(choice).name);
    if (rules < 0) return;
    uint64_t told = 0;
    require(orlenta_explain(type, rules, message.data(), message.size(), take_bits, &told, nullptr) == used,
            "explained, the message is another one");
    require(told == 8 * message.size(), "bits that are not told");
}

static void convert(std::span<const uint8_t> message) {
    const asn1_type_desc* type = table_of(choice).type();
    size_t before = live_bytes();
    Decoded first = decode(source_of(choice), type, message);
    explain(type, message, first.used);
    ++tally.inputs;
    if (first.used < 0) return;
    ++tally.values;
    size_t held = live_bytes() - before;
    use(type, first.value.get());
    Facts facts = facts_of(type, first.value.get());

    const cli::Rules& rules = target_of(choice);
    Bytes encoded, again;
    if (!encode(rules, type, first.value.get(), encoded)) {
        require(cannot_be_written(rules, facts) || is_excused(facts, held), "no encoding");
        return;
    }
    ++tally.encodings;
    Decoded second = decode(rules, type, encoded);
    bool may_differ = cannot_be_written(rules, facts) || cannot_be_read(rules, facts);
    if (second.used < 0) {
        require(may_differ || is_excused(facts, held), "an encoding is not taken back");
        return;
    }
    if (may_differ && asn1_cmp_value(type, first.value.get(), second.value.get()) != 0) return;
    require(asn1_cmp_value(type, first.value.get(), second.value.get()) == 0, "another value comes back");
    // No bits are one octet in PER, of which none is used (X.691 clause 11.1).
    bool is_whole =
        static_cast<size_t>(second.used) == encoded.size() || (second.used == 0 && encoded == Bytes{0});
    require(is_whole || may_differ, "a part of an encoding is not used");
    require(encode(rules, type, second.value.get(), again) && again == encoded,
            "encoded again, the bytes differ");
    ++tally.came_back;
}

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < fuzz::kHeadBytes) return 0;
    size_t before = fuzz::live_bytes();
    fuzz::choice = fuzz::read_head(data);
    fuzz::convert({data + fuzz::kHeadBytes, size - fuzz::kHeadBytes});
    fuzz::require(fuzz::live_bytes() == before, "a block is left");
    return 0;
}
