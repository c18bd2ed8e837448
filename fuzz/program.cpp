// SPDX-License-Identifier: Apache-2.0
// Any bytes, for any table: a program and the walker come to the same, on the heap and in an arena. The inputs are those
// of fuzz_convert, whose rules play no part here.
#include <orlenta/codec.h>
#include <orlenta/memory.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/value.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

#include "fuzz/input.hpp"

namespace {

struct Rules {
    decltype(&asn1_uper_decode) walk;
    decltype(&asn1_uper_encode2) walk_back;
    decltype(&orlenta_uper_decode) decode;
    decltype(&orlenta_uper_encode2) encode;
    decltype(&orlenta_uper_decode_arena) decode_in_arena;
};

constexpr Rules kRules[] = {
    {asn1_uper_decode, asn1_uper_encode2, orlenta_uper_decode, orlenta_uper_encode2,
     orlenta_uper_decode_arena},
    {asn1_aper_decode, asn1_aper_encode2, orlenta_aper_decode, orlenta_aper_encode2,
     orlenta_aper_decode_arena},
    {asn1_oer_decode, asn1_oer_encode2, orlenta_oer_decode, orlenta_oer_encode2, orlenta_oer_decode_arena},
};

struct Report {
    asn1_error error = {};
    int64_t result = -1;
};

}  // namespace

static const orlenta::test::TableEntry* entry;

static void require(bool condition, const char* text, const Report& walker, const Report& program) {
    if (condition) return;
    std::fprintf(stderr, "%s: %s\n", entry->table, text);
    for (const Report* report : {&walker, &program})
        std::fprintf(stderr, "%lld, bit %d, at \"%s\": %s\n", static_cast<long long>(report->result),
                     report->error.bit_position, report->error.path, report->error.message);
    std::abort();
}

static void require_same(const Report& walker, const Report& program) {
    require(walker.result == program.result, "another result", walker, program);
    require(walker.error.line == program.error.line &&
                walker.error.bit_position == program.error.bit_position &&
                std::strcmp(walker.error.path, program.error.path) == 0 &&
                std::strcmp(walker.error.message, program.error.message) == 0,
            "another report", walker, program);
}

static const orlenta_codec* codec_of(const asn1_type_desc* type) {
    static auto& codecs = *new std::unordered_map<const asn1_type_desc*, orlenta_codec*>;  // to the end
    orlenta_codec*& codec = codecs[type];
    if (!codec) codec = orlenta_codec_new(type);
    return codec;
}

static void compare_encodings(const Rules& rules, const orlenta_codec* codec, const void* value) {
    Report walker, program;
    uint8_t* bytes[2] = {};
    walker.result = rules.walk_back(&bytes[0], entry->type, value, &walker.error);
    program.result = rules.encode(codec, &bytes[1], value, &program.error);
    require_same(walker, program);
    bool same =
        walker.result <= 0 || std::memcmp(bytes[0], bytes[1], static_cast<size_t>(walker.result)) == 0;
    require(same, "other bytes", walker, program);
    for (uint8_t* each : bytes) asn1_free(each);
}

static void compare(const Rules& rules, const orlenta_codec* codec, const uint8_t* data, size_t size) {
    static orlenta_arena* const arena = orlenta_arena_create(512);
    Report walker, program, in_arena;
    void* value[2] = {};
    orlenta_arena_value kept = {};
    walker.result = rules.walk(&value[0], entry->type, data, size, &walker.error);
    program.result = rules.decode(codec, &value[1], data, size, &program.error);
    in_arena.result = rules.decode_in_arena(codec, arena, &kept, data, size, &in_arena.error);
    require_same(walker, program);
    require_same(walker, in_arena);
    if (walker.result >= 0) {
        require(asn1_cmp_value(entry->type, value[0], value[1]) == 0, "another value", walker, program);
        require(asn1_cmp_value(entry->type, value[0], kept.record) == 0, "another value in the arena", walker,
                in_arena);
        for (const Rules& each : kRules) compare_encodings(each, codec, value[0]);
        compare_encodings(rules, codec, kept.record);
    }
    orlenta_free_value(codec, value[0]);
    asn1_free_value(entry->type, value[1]);
    orlenta_arena_reset(arena);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < fuzz::kHeadBytes) return 0;
    entry = fuzz::table_of(fuzz::read_head(data)).entry;
    const orlenta_codec* codec = codec_of(entry->type);
    for (const Rules& rules : kRules) {
        compare(rules, codec, data + fuzz::kHeadBytes, size - fuzz::kHeadBytes);
    }
    return 0;
}
