// SPDX-License-Identifier: Apache-2.0
// Keeps a recursive walk off the end of its thread's stack: an input may nest deeper than the stack bears.
#pragma once

#include <stdint.h>

#if defined(__SANITIZE_ADDRESS__)
#define ORLENTA_WITH_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORLENTA_WITH_ASAN 1
#endif
#endif

// Keeps what needs a frame out of a walk's switch, so that the switch and its leaves do without one.
#define ORLENTA_NOINLINE __attribute__((noinline))

namespace orlenta {

// Starts out at a small allowance below the walk's entry point, so that an ordinary message costs one comparison a
// level. Only a walk that uses the allowance up asks the system how far the stack really goes.
struct stack_guard {
    uintptr_t lowest;  // the lowest address at which a level of the walk may begin
    bool is_known;     // `lowest` comes from the system
};

// Bytes that the caller's thread must have left at the entry point: an allowance for the levels, twice what the deepest
// types of the message sets take, and below that a reserve for what a level calls that does not come back here:
// formatting, the allocator, qsort, the caller's hook, a signal handler. A sanitizer's frames take more.
#if defined(ORLENTA_WITH_ASAN)
constexpr uintptr_t kStackAllowance = 64 * 1024, kStackReserve = 64 * 1024;
#else
constexpr uintptr_t kStackAllowance = 12 * 1024, kStackReserve = 16 * 1024;
#endif

inline uintptr_t stack_address() { return reinterpret_cast<uintptr_t>(__builtin_frame_address(0)); }

// Begins a walk here.
inline stack_guard begin_stack() { return {stack_address() - kStackAllowance, false}; }

// Finds the real limit, once, and holds the current address against it.
bool look_up_stack(stack_guard* guard);

// Whether the walk may go down one more level. Values of recursive types pass through a list, an indirect component or
// an open type, so that these are the places to ask; what a type nests in place the reserve bears.
inline bool has_stack(stack_guard* guard) {
    return __builtin_expect(stack_address() >= guard->lowest, 1) || look_up_stack(guard);
}

}  // namespace orlenta
