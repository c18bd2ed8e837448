// Decoding PER by a program.
#pragma once

#include "program/codec.hpp"

namespace orlenta::program {

enum outcome {
    kDone,
    kInvalid,      // no decoder can make a value of the input
    kOutOfMemory,  // or the bound of what a decode may hold is reached
    kGaveUp        // the walker has to tell
};

struct decode_result {
    outcome how;
    uint64_t bits;           // read, of a value that is done
    uint64_t memory;         // out of memory: bytes held when no more were to be had
    bool has_record;         // out of memory: the outermost record was to be had
    uint32_t walker_pieces;  // parts of the value that the walker decoded
};

// A new value in `*out`, and null there if there is none. Its blocks are the arena's, if that is not null; those of a
// decode that failed are left there.
decode_result run_uper_decode(const orlenta_codec* codec, orlenta_arena* arena, void** out,
                              const uint8_t* data, uint64_t size);
decode_result run_aper_decode(const orlenta_codec* codec, orlenta_arena* arena, void** out,
                              const uint8_t* data, uint64_t size);

}  // namespace orlenta::program
