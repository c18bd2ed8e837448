// SPDX-License-Identifier: Apache-2.0
#include "bench/engines.hpp"

#include <orlenta/codec.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/stackless.hpp"
#include "oer/walk.hpp"
#include "per/walk.hpp"
#include "program/oer_decode.hpp"
#include "program/oer_encode.hpp"
#include "program/per_decode.hpp"
#include "program/per_encode.hpp"

namespace bench {

// ---- the walkers, of rules whose entry points may run programs -----------------------------------------------

template <int kAlignment>
static int64_t walk_per(void** out, const asn1_type_desc* type, const uint8_t* data, size_t size,
                        asn1_error* error) {
    return orlenta::per::asn1_per_decode(out, type, data, size, kAlignment, error);
}

template <int kAlignment>
static int64_t write_per(uint8_t** out, const asn1_type_desc* type, const void* value, const cli::Style&,
                         asn1_error* error) {
    return orlenta::per::asn1_per_encode(out, type, value, error, kAlignment);
}

static int64_t walk_oer(void** out, const asn1_type_desc* type, const uint8_t* data, size_t size,
                        asn1_error* error) {
    return orlenta::oer::decode(out, type, data, size, error);
}

static int64_t write_oer(uint8_t** out, const asn1_type_desc* type, const void* value, const cli::Style&,
                         asn1_error* error) {
    return orlenta::oer::encode(out, type, value, error);
}

static void walk_and_release(const asn1_type_desc* type, void* value) {
    orlenta::release_value(orlenta::begin_stack(), type, value);
}

// ---- programs ---------------------------------------------------------------------------------------------

// Of a chunk that holds any of the messages.
static orlenta_arena* arena() {
    static orlenta_arena* const one = orlenta_arena_create(256 * 1024);
    return one;
}

// Made, and the arena with it, at the first message of a type, outside of what is measured; one comparison finds it at
// the others.
static const orlenta_codec* codec_of(const asn1_type_desc* type) {
    static const asn1_type_desc* last = nullptr;
    static orlenta_codec* codec = nullptr;
    if (type == last) return codec;
    orlenta_codec_free(codec);
    codec = orlenta_codec_new(type);
    last = type;
    arena();
    return codec;
}

template <auto kDecode>
static int64_t decode(void** out, const asn1_type_desc* type, const uint8_t* data, size_t size,
                      asn1_error* error) {
    return kDecode(codec_of(type), out, data, size, error);
}

template <auto kEncode>
static int64_t encode(uint8_t** out, const asn1_type_desc* type, const void* value, const cli::Style&,
                      asn1_error* error) {
    return kEncode(codec_of(type), out, value, error);
}

static void release(const asn1_type_desc* type, void* value) { orlenta_free_value(codec_of(type), value); }

template <auto kDecode>
static int64_t decode_in_arena(void** out, const asn1_type_desc* type, const uint8_t* data, size_t size,
                               asn1_error* error) {
    orlenta_arena_value value;
    int64_t used = kDecode(codec_of(type), arena(), &value, data, size, error);
    *out = const_cast<void*>(value.record);
    return used;
}

static void reset_arena(const asn1_type_desc*, void*) { orlenta_arena_reset(arena()); }

// One way there and back.
template <auto kDecode, auto kEncode>
static void add_given_up(const asn1_type_desc* type, const void* value, GivenUp& given_up) {
    namespace program = orlenta::program;
    uint8_t* bytes = nullptr;
    program::encode_result out = kEncode(codec_of(type), &bytes, value);
    given_up.messages += !out.is_done;
    given_up.parts += out.walker_pieces;
    void* decoded = nullptr;
    program::decode_result in = kDecode(codec_of(type), nullptr, &decoded, bytes, out.octets);
    given_up.messages += in.how != program::kDone;
    given_up.parts += in.walker_pieces;
    release(type, decoded);
    asn1_free(bytes);
}

GivenUp given_up_by_program(const asn1_type_desc* type, const void* value) {
    namespace program = orlenta::program;
    GivenUp given_up;
    add_given_up<program::run_uper_decode, program::run_uper_encode>(type, value, given_up);
    add_given_up<program::run_aper_decode, program::run_aper_encode>(type, value, given_up);
    add_given_up<program::run_oer_decode, program::run_oer_encode>(type, value, given_up);
    return given_up;
}

// ---- all --------------------------------------------------------------------------------------------------

struct Programs {
    const char* rules;
    decltype(Engine::decode) walk, decode, decode_in_arena;
    decltype(Engine::encode) write, encode;
};

constexpr Programs kPrograms[] = {
    {"uper", walk_per<0>, decode<orlenta_uper_decode>, decode_in_arena<orlenta_uper_decode_arena>,
     write_per<0>, encode<orlenta_uper_encode2>},
    {"aper", walk_per<1>, decode<orlenta_aper_decode>, decode_in_arena<orlenta_aper_decode_arena>,
     write_per<1>, encode<orlenta_aper_encode2>},
    {"oer", walk_oer, decode<orlenta_oer_decode>, decode_in_arena<orlenta_oer_decode_arena>, write_oer,
     encode<orlenta_oer_encode2>},
};

static const Programs* programs_of(const cli::Rules& rules) {
    for (const Programs& programs : kPrograms)
        if (std::strcmp(rules.name, programs.rules) == 0) return &programs;
    return nullptr;
}

std::vector<Engine> all_engines() {
    std::vector<Engine> engines;
    for (const cli::Rules& rules : cli::all_rules()) {
        const Programs* programs = programs_of(rules);
        if (!programs) {
            engines.push_back({&rules, "walker", rules.decode, asn1_free_value, rules.encode});
            continue;
        }
        engines.push_back({&rules, "walker", programs->walk, walk_and_release, programs->write});
        engines.push_back({&rules, "library", rules.decode, asn1_free_value, rules.encode});
        engines.push_back({&rules, "program", programs->decode, release, programs->encode});
        engines.push_back({&rules, "arena", programs->decode_in_arena, reset_arena, programs->encode});
    }
    return engines;
}

std::string encode_by(const Engine& engine, const asn1_type_desc* type, const void* value) {
    uint8_t* data = nullptr;
    asn1_error error = {};
    int64_t size = engine.encode(&data, type, value, {.indent = 0}, &error);
    if (size < 0) {
        std::fprintf(stderr, "%s refuses a value: %s: %s\n", engine.rules->name, error.path, error.message);
        std::exit(1);
    }
    std::string bytes(reinterpret_cast<const char*>(data), static_cast<size_t>(size));
    asn1_free(data);
    return bytes;
}

}  // namespace bench
