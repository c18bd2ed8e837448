// SPDX-License-Identifier: Apache-2.0
#include "core/stack.hpp"

#include <stddef.h>

#if defined(__EMSCRIPTEN__)
#include <emscripten/stack.h>
#elif __has_include(<pthread.h>)
#include <pthread.h>
#if defined(__linux__) && !defined(__GLIBC__)
#define ORLENTA_COUNTS_GROWN_STACK 1
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif
#else
#define ORLENTA_NO_THREADS 1
#endif

namespace orlenta {

#if defined(ORLENTA_COUNTS_GROWN_STACK)
// Of a process's first thread musl tells what its stack has grown to and not what it may grow to, for which the kernel
// keeps 128 MiB free at the least.
static size_t size_to_grow_to(size_t grown) {
    constexpr rlim_t kMost = 64 * 1024 * 1024;
    rlimit limit;
    if (syscall(SYS_gettid) != getpid() || getrlimit(RLIMIT_STACK, &limit) != 0) return grown;
    size_t size = static_cast<size_t>(limit.rlim_cur < kMost ? limit.rlim_cur : kMost);
    return size > grown ? size : grown;
}
#endif

// The lowest byte of the current thread's stack, 0 if it can't be found or `address` lies on another stack. For the
// main thread glibc takes the resource limit and the nearest mapping below into account.
static uintptr_t lowest_stack_byte(uintptr_t address) {
    uintptr_t lowest = 0;
#if defined(__EMSCRIPTEN__)
    if (address >= emscripten_stack_get_end() && address < emscripten_stack_get_base())
        lowest = emscripten_stack_get_end();
#elif defined(__linux__) && !defined(ORLENTA_NO_THREADS)
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return 0;
    void* base = nullptr;
    size_t size = 0;
    size_t guard = 0;
    if (pthread_attr_getstack(&attributes, &base, &size) == 0) {
        uintptr_t first = reinterpret_cast<uintptr_t>(base);
#if defined(ORLENTA_COUNTS_GROWN_STACK)
        uintptr_t top = first + size;
        size = size_to_grow_to(size);
        first = top - size;
#endif
        // Some C libraries count the guard pages as a part of the stack.
        if (pthread_attr_getguardsize(&attributes, &guard) != 0 || guard > size) guard = 0;
        if (address >= first && address - first < size) lowest = first + guard;
    }
    pthread_attr_destroy(&attributes);
#elif defined(__APPLE__) && !defined(ORLENTA_NO_THREADS)
    uintptr_t top = reinterpret_cast<uintptr_t>(pthread_get_stackaddr_np(pthread_self()));
    size_t size = pthread_get_stacksize_np(pthread_self());
    if (address < top && top - address < size) lowest = top - size;
#else
    static_cast<void>(address);
#endif
    return lowest;
}

ORLENTA_NOINLINE bool look_up_stack(stack_guard* guard) {
    uintptr_t address = stack_address();
    if (!guard->is_known) {
        uintptr_t lowest = lowest_stack_byte(address);
        // A stack that is not the thread's own, as a coroutine's, and that of a process without /proc are taken to bear
        // the allowance and no more.
        if (lowest != 0) guard->lowest = lowest + kStackReserve;
        guard->is_known = true;
    }
    return address >= guard->lowest;
}

}  // namespace orlenta
