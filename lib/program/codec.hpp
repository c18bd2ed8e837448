// A codec: the program of one type, all in one block.
#pragma once

#include <orlenta/codec.h>

#include "program/format.hpp"

struct orlenta_codec {
    const asn1_type_desc* type;
    uint64_t record_size;
    uint32_t root;  // op
    orlenta::program::program program;
};
