// SPDX-License-Identifier: Apache-2.0
// How much memory a decode holds at the most, and how much it may.
#pragma once

#include <gtest/gtest.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <string>

#include "tests/support/failing_allocator.hpp"
#include "tests/support/octet_codec.hpp"

namespace orlenta::test {

constexpr size_t bound_for(size_t octets) { return (size_t{1} << 20) + 4096 * octets; }

struct Held {
    bool succeeded;
    std::string message;
    size_t bytes;  // all blocks together at their peak, but for the outermost record
};

// Decodes, holds the peak against the bound and releases the value.
inline Held decode_counted(decode_function function, const asn1_type_desc* type, const octets& input) {
    size_t blocks = live_blocks(), before = live_bytes();
    asn1_error error = {};
    void* value = nullptr;
    restart_peak();
    bool succeeded = function(&value, type, input.data(), input.size(), &error) >= 0;
    size_t held = peak_bytes() - before - static_cast<size_t>(asn1_get_size(type));
    EXPECT_LE(held, bound_for(input.size())) << input.size() << " octets";
    if (succeeded) asn1_free_value(type, value);
    EXPECT_EQ(live_blocks(), blocks);
    return {succeeded, error.message, held};
}

}  // namespace orlenta::test
