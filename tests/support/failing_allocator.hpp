// SPDX-License-Identifier: Apache-2.0
// An allocator that fails on demand. Linking failing_allocator.cpp into a test program replaces asn1_malloc,
// asn1_realloc and asn1_free for the whole library. Not for tests with threads.
#pragma once

#include <gtest/gtest.h>
#include <stddef.h>
#include <stdint.h>

namespace orlenta::test {

// Each of these three starts a new count of calls. Calls count from 1; asn1_free is no call.
void allocator_never_fails();
void allocator_fails_at(uint64_t call);
void allocator_fails_from(uint64_t call);

// From here on no allocation fails; the count goes on, and allocator_has_failed() still tells of those before.
void allocator_recovers();

uint64_t allocator_calls();
bool allocator_has_failed();

// Blocks handed out and not freed yet, and their bytes as asked for, none counting as one.
size_t live_blocks();
size_t live_bytes();

// The most bytes that were alive at once since the peak was restarted.
void restart_peak();
size_t peak_bytes();

// Bytes that were asked for; the block must be alive.
size_t size_of_block(const void* block);

// Frees them all: for what a function is to leave behind, so that a leak checker stays quiet.
void free_live_blocks();

// Runs `operation` with the allocation `call` failing, alone and with all that follow. Whether there was such a call.
template <typename Operation>
bool run_with_failed_allocation(uint64_t call, Operation operation) {
    bool reached = false;
    for (void (*fail)(uint64_t) : {allocator_fails_at, allocator_fails_from}) {
        size_t before = live_blocks();
        fail(call);
        operation();
        reached = allocator_has_failed();
        allocator_never_fails();
        EXPECT_EQ(live_blocks(), before) << "allocation " << call << (reached ? " failed" : " not reached");
    }
    return reached;
}

// Runs `operation` again and again, each time with its next allocation failing, alone and with all that follow, until
// a run needs no further one. The operation checks its own outcome, for which it may ask allocator_has_failed(), in a
// statement behind the call (the arguments of EXPECT_EQ have no order); here each run is held to leave as many live
// blocks as it found. Returns the allocations of an undisturbed run.
template <typename Operation>
uint64_t for_each_failed_allocation(Operation operation) {
    for (uint64_t call = 1;; ++call) {
        bool reached = run_with_failed_allocation(call, operation);
        if (!reached || ::testing::Test::HasFatalFailure()) return call - 1;
    }
}

// The same for at most `limit` of the operation's allocations, the first and others at even distances, after an
// undisturbed run. Returns how many failed.
template <typename Operation>
uint64_t for_some_failed_allocations(uint64_t limit, Operation operation) {
    allocator_never_fails();
    operation();
    uint64_t calls = allocator_calls(), count = calls < limit ? calls : limit;
    for (uint64_t i = 0; i < count; ++i) {
        EXPECT_TRUE(run_with_failed_allocation(1 + i * calls / count, operation));
    }
    return count;
}

}  // namespace orlenta::test
