// SPDX-License-Identifier: Apache-2.0
// Threads whose stack is small or large, and what is too deep for any.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>
#include <ucontext.h>

#include <algorithm>
#include <functional>

#include "core/stack.hpp"
#include "tests/support/recursive_types.hpp"

namespace orlenta::test {

// A million levels are more than any stack here bears.
constexpr size_t kTooDeep = 1000000;

// A stack on which something runs, of exactly `size` bytes: the C library would give a thread the larger one of a
// thread that ended. The page below it stops whatever overruns it.
class Stack {
  public:
    explicit Stack(size_t size) : size_(size) {
        void* block = mmap(nullptr, kPage + size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        EXPECT_NE(block, MAP_FAILED);
        lowest_ = static_cast<uint8_t*>(block) + kPage;
        EXPECT_EQ(mprotect(lowest_, size, PROT_READ | PROT_WRITE), 0);
    }
    ~Stack() { munmap(lowest_ - kPage, kPage + size_); }
    Stack(const Stack&) = delete;
    Stack& operator=(const Stack&) = delete;

    // Runs `body` on a thread of its own, to its end.
    void run(const std::function<void()>& body) {
        pthread_attr_t attributes;
        ASSERT_EQ(pthread_attr_init(&attributes), 0);
        ASSERT_EQ(pthread_attr_setstack(&attributes, lowest_, size_), 0);
        pthread_t thread;
        auto start = [](void* argument) -> void* {
            (*static_cast<const std::function<void()>*>(argument))();
            return nullptr;
        };
        ASSERT_EQ(pthread_create(&thread, &attributes, start, const_cast<std::function<void()>*>(&body)), 0);
        pthread_join(thread, nullptr);
        pthread_attr_destroy(&attributes);
    }

    // Runs `body` on the caller's thread, as a coroutine.
    void run_as_coroutine(const std::function<void()>& body) {
        static const std::function<void()>* current;
        current = &body;
        ucontext_t here, there;
        ASSERT_EQ(getcontext(&there), 0);
        there.uc_stack.ss_sp = lowest_;
        there.uc_stack.ss_size = size_;
        there.uc_link = &here;
        makecontext(
            &there, [] { (*current)(); }, 0);
        ASSERT_EQ(swapcontext(&here, &there), 0);
    }

    // The bytes of the stack that running `body` changes.
    size_t bytes_used(const std::function<void()>& body) {
        memset(lowest_, kPaint, size_);
        run(body);
        return size_ - static_cast<size_t>(std::find_if(lowest_, lowest_ + size_,
                                                        [](uint8_t byte) { return byte != kPaint; }) -
                                           lowest_);
    }

  private:
    static constexpr size_t kPage = 64 << 10;  // no page is larger
    static constexpr uint8_t kPaint = 0xA5;
    size_t size_;
    uint8_t* lowest_;
};

inline void run_on_stack(size_t size, const std::function<void()>& body) { Stack(size).run(body); }

// A sanitizer's frames are larger, and so is what its runtime takes.
#if defined(ORLENTA_WITH_ASAN)
constexpr size_t kStackScale = 8;
#else
constexpr size_t kStackScale = 1;
#endif
constexpr size_t kLeastStack = (32 << 10) * kStackScale, kTightStack = (64 << 10) * kStackScale,
                 kSmallStack = (256 << 10) * kStackScale, kLargeStack = 8 << 20;

}  // namespace orlenta::test
