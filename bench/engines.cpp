#include "bench/engines.hpp"

#include <orlenta/codec.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "program/uper_decode.hpp"
#include "program/uper_encode.hpp"

namespace bench {

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

static int64_t decode_uper(void** out, const asn1_type_desc* type, const uint8_t* data, size_t size,
                           asn1_error* error) {
    return orlenta_uper_decode(codec_of(type), out, data, size, error);
}

static int64_t encode_uper(uint8_t** out, const asn1_type_desc* type, const void* value, const cli::Style&,
                           asn1_error* error) {
    return orlenta_uper_encode2(codec_of(type), out, value, error);
}

static void release(const asn1_type_desc* type, void* value) { orlenta_free_value(codec_of(type), value); }

static int64_t decode_uper_arena(void** out, const asn1_type_desc* type, const uint8_t* data, size_t size,
                                 asn1_error* error) {
    orlenta_arena_value value;
    int64_t used = orlenta_uper_decode_arena(codec_of(type), arena(), &value, data, size, error);
    *out = const_cast<void*>(value.record);
    return used;
}

static void reset_arena(const asn1_type_desc*, void*) { orlenta_arena_reset(arena()); }

GivenUp given_up_by_program(const asn1_type_desc* type, const void* value) {
    namespace program = orlenta::program;
    GivenUp given_up;
    uint8_t* bytes = nullptr;
    program::encode_result out = program::run_uper_encode(codec_of(type), &bytes, value);
    given_up.messages += !out.is_done;
    given_up.parts += out.walker_pieces;
    void* decoded = nullptr;
    program::decode_result in =
        program::run_uper_decode(codec_of(type), nullptr, &decoded, bytes, out.octets);
    given_up.messages += in.how != program::kDone;
    given_up.parts += in.walker_pieces;
    release(type, decoded);
    asn1_free(bytes);
    return given_up;
}

// ---- all --------------------------------------------------------------------------------------------------

std::vector<Engine> all_engines() {
    std::vector<Engine> engines;
    for (const cli::Rules& rules : cli::all_rules()) {
        engines.push_back({&rules, "walker", rules.decode, asn1_free_value, rules.encode});
        if (std::strcmp(rules.name, "uper") != 0) continue;
        engines.push_back({&rules, "program", decode_uper, release, encode_uper});
        engines.push_back({&rules, "arena", decode_uper_arena, reset_arena, encode_uper});
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
