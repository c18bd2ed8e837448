// SPDX-License-Identifier: Apache-2.0
// The library's allocator in the fuzzers: it counts the bytes alive, each block with one byte at the least, and holds
// them against a limit.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fuzz {

constexpr size_t kUnlimited = SIZE_MAX;

size_t live_bytes();

// From here on no more than `bytes` may be alive. A call for more ends the program, and its stack is then that of the
// culprit.
void forbid_above(size_t bytes);

// From here on calls for more than `bytes` alive are answered by null, as on a small machine.
void refuse_above(size_t bytes);

// Whether a call was refused since refuse_above().
bool has_refused();

}  // namespace fuzz
