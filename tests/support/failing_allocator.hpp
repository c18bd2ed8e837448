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

uint64_t allocator_calls();
bool allocator_has_failed();

// Blocks handed out and not freed yet, and their bytes as asked for, none counting as one.
size_t live_blocks();
size_t live_bytes();

// The most bytes that were alive at once since the peak was restarted.
void restart_peak();
size_t peak_bytes();

// Frees them all: for what a function is to leave behind, so that a leak checker stays quiet.
void free_live_blocks();

// Runs `operation` again and again, each time with its next allocation failing, alone and with all that follow, until
// a run needs no further one. The operation checks its own outcome, for which it may ask allocator_has_failed(), in a
// statement behind the call (the arguments of EXPECT_EQ have no order); here each run is held to leave as many live
// blocks as it found. Returns the allocations of an undisturbed run.
template <typename Operation>
uint64_t for_each_failed_allocation(Operation operation) {
    for (uint64_t call = 1;; ++call) {
        bool reached = false;
        for (void (*fail)(uint64_t) : {allocator_fails_at, allocator_fails_from}) {
            size_t before = live_blocks();
            fail(call);
            operation();
            reached = allocator_has_failed();
            allocator_never_fails();
            EXPECT_EQ(live_blocks(), before)
                << "allocation " << call << (reached ? " failed" : " not reached");
        }
        if (!reached || ::testing::Test::HasFatalFailure()) return call - 1;
    }
}

}  // namespace orlenta::test
