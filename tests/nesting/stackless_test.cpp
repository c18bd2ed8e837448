// SPDX-License-Identifier: Apache-2.0
// The ways round recursion, which compare and release take where the stack runs low, with and without the memory that
// they need: the results are those of recursion.
#include "core/stackless.hpp"

#include <gtest/gtest.h>
#include <orlenta/memory.h>

#include <cstdio>

#include "core/descriptor.hpp"
#include "tests/roundtrip/values.hpp"
#include "tests/support/failing_allocator.hpp"

namespace orlenta::test {
namespace {

// A stack on which no level may begin.
constexpr stack_guard kNoStack = {UINTPTR_MAX, true};

int sign(int order) { return (order > 0) - (order < 0); }

void expect_one_order(const asn1_type_desc* type, const void* a, const void* b, uint64_t failing_call) {
    int order = sign(asn1_cmp_value(type, a, b));
    EXPECT_EQ(sign(asn1_cmp_value(type, b, a)), -order);
    EXPECT_EQ(sign(compare_values(kNoStack, type, a, b)), order);
    run_with_failed_allocation(failing_call,
                               [&] { EXPECT_EQ(sign(compare_values(kNoStack, type, a, b)), order); });
}

// A copy in which an allocation failed; null if that was not within something that may lack.
void* copy_with_hole(const asn1_type_desc* type, const void* value, uint64_t failing_call) {
    allocator_fails_at(failing_call);
    void* copy = asn1_clone_value(type, value);
    allocator_never_fails();
    return copy;
}

// Pairs of copies with a hole each: of two differences the first decides.
int compare_copies(const asn1_type_desc* type, const void* value, uint64_t calls) {
    int pairs = 0;
    for (uint64_t call = 1; call <= calls; call += calls / 20 + 1) {
        size_t before = live_blocks();
        void* copy = copy_with_hole(type, value, call);
        void* other = copy_with_hole(type, value, call + 1 + call % 5);
        if (copy != nullptr && other != nullptr) {
            expect_one_order(type, copy, value, call % 3 + 1);
            expect_one_order(type, copy, other, call % 3 + 1);
            ++pairs;
        }
        release_value(kNoStack, type, copy);
        allocator_fails_from(call % 3 + 1);
        release_value(kNoStack, type, other);
        allocator_never_fails();
        EXPECT_EQ(live_blocks(), before) << "allocation " << call;
    }
    return pairs;
}

TEST(Stackless, GivesWhatRecursionGives) {
    int pairs = 0;
    for (const Region& region : all_regions()) {
        for (size_t i = 0; i < region.entries.size(); i += region.entries.size() / 500 + 1) {
            const asn1_type_desc* type = region.entries[i].type;
            if (kind_of(type) == ASN1_KIND_OBJECT_CLASS) continue;
            SCOPED_TRACE(region.entries[i].table);
            Sample sample = make_sample(type, seed_of(region.entries[i], 0));
            allocator_never_fails();
            asn1_free_value(type, asn1_clone_value(type, sample.value.get()));
            uint64_t calls = allocator_calls();
            if (calls > 20000) continue;
            Sample other = make_sample(type, seed_of(region.entries[i], 1));
            expect_one_order(type, sample.value.get(), other.value.get(), i % 3 + 1);
            pairs += compare_copies(type, sample.value.get(), calls);
        }
    }
    std::printf("%d pairs\n", pairs);
    EXPECT_GT(pairs, 0);
}

}  // namespace
}  // namespace orlenta::test
