// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <orlenta/integer.h>
#include <orlenta/memory.h>
#include <string.h>

#include <boost/multiprecision/cpp_int.hpp>
#include <ctime>
#include <iterator>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "tests/support/failing_allocator.hpp"

namespace {

using boost::multiprecision::cpp_int;
using orlenta::test::allocator_has_failed;
using orlenta::test::for_each_failed_allocation;
using orlenta::test::live_blocks;

// A record that a test owns.
struct number : asn1_integer {
    number() { asn1_integer_init(this); }
    explicit number(const std::string& text) : number() {
        const char* cursor = text.c_str();
        EXPECT_EQ(asn1_integer_from_str(this, &cursor), 0);
    }
    explicit number(const std::vector<uint32_t>& limbs_of) : number() {
        EXPECT_EQ(asn1_integer_resize(this, limbs_of.size()), 0);
        for (size_t i = 0; i < limbs_of.size(); ++i) limbs[i] = limbs_of[i];
    }
    number(const number&) = delete;
    ~number() { asn1_integer_clear(this); }
};

std::string text_of(const asn1_integer& a) {
    char* block;
    size_t length;
    std::string text = asn1_integer_to_str(&a, &block, &length);
    EXPECT_EQ(text.size(), length);
    asn1_free(block);
    return text;
}

std::vector<uint32_t> limbs_of(const asn1_integer& a) {
    return std::vector<uint32_t>(a.limbs, a.limbs + a.size);
}

bool is_normalised(const asn1_integer& a) { return a.size == 0 ? a.negative == 0 : a.limbs[a.size - 1] != 0; }

const char* const kNumbers[] = {
    // clang-format off
    "0", "1", "-1", "2", "127", "-128", "-129", "255", "1000000000", "2147483647", "2147483648", "-2147483648",
    "-2147483649", "4294967295", "-4294967295", "4294967296", "-4294967296", "9223372036854775807",
    "9223372036854775808", "-9223372036854775808", "-9223372036854775809", "18446744073709551615",
    "18446744073709551616", "-18446744073709551616", "79228162514264337593543950335",
    "-79228162514264337593543950336",
    // clang-format on
};

TEST(BigInteger, SetFromMachineIntegers) {
    number a;
    for (int64_t value : {INT64_C(0), INT64_C(-1), INT64_C(1) << 32, INT64_MAX, INT64_MIN}) {
        ASSERT_EQ(asn1_integer_set_si64(&a, value), 0);
        EXPECT_EQ(text_of(a), std::to_string(value));
        EXPECT_TRUE(is_normalised(a));
    }
    asn1_integer_set_si(&a, INT32_MIN);
    EXPECT_EQ(text_of(a), "-2147483648");
    asn1_integer_set_ui(&a, UINT32_MAX);
    EXPECT_EQ(text_of(a), "4294967295");
    asn1_integer_set_ui64(&a, UINT64_MAX);
    EXPECT_EQ(asn1_integer_set(&a, &a), 0);
    EXPECT_EQ(text_of(a), "18446744073709551615");
    asn1_integer_set_ui(&a, 0);
    EXPECT_TRUE(is_normalised(a));
}

TEST(BigInteger, ResizeGrowsByHalfUpToTheLimit) {
    number a;
    const struct { uint32_t n, capacity; } steps[] = {{1, 1}, {10, 10}, {3, 10}, {11, 15}, {100, 100}};
    for (const auto& step : steps) {
        ASSERT_EQ(asn1_integer_resize(&a, step.n), 0);
        EXPECT_EQ(a.size, step.n);
        EXPECT_EQ(a.capacity, step.capacity);
    }
    for (uint32_t n : {UINT32_C(0x4000000), UINT32_MAX}) {
        EXPECT_EQ(asn1_integer_resize(&a, n), -1);
        EXPECT_EQ(a.size, 100u);
        EXPECT_EQ(a.capacity, 100u);
    }
}

TEST(BigInteger, OrderAndSumsAgreeWithBoost) {
    for (const char* x : kNumbers) {
        const number a{std::string(x)};
        const cpp_int p(x);
        for (const char* y : kNumbers) {
            const number b{std::string(y)};
            const cpp_int q(y);
            EXPECT_EQ(asn1_integer_cmp(&a, &b), (p > q) - (p < q)) << x << " " << y;
            for (int sub : {0, 1}) {
                number into_a{std::string(x)}, into_b{std::string(y)};
                ASSERT_EQ(asn1_integer_add_internal(&into_a, &into_a, &b, sub), 0);
                ASSERT_EQ(asn1_integer_add_internal(&into_b, &a, &into_b, sub), 0);
                for (const number* result : {&into_a, &into_b}) {
                    EXPECT_EQ(text_of(*result), (sub != 0 ? cpp_int(p - q) : cpp_int(p + q)).str());
                    EXPECT_TRUE(is_normalised(*result)) << x << " " << y;
                }
            }
        }
        for (int sub : {0, 1}) {
            number all{std::string(x)};
            ASSERT_EQ(asn1_integer_add_internal(&all, &all, &all, sub), 0);
            EXPECT_EQ(text_of(all), (sub != 0 ? cpp_int(0) : cpp_int(p * 2)).str());
            EXPECT_TRUE(is_normalised(all));
        }
        for (int32_t v : {INT32_MIN, -1, 0, 1, INT32_MAX}) {
            EXPECT_EQ(asn1_integer_cmp_si(&a, v), (p > v) - (p < v)) << x << " " << v;
        }
    }
    EXPECT_EQ(live_blocks(), 0u);
}

TEST(BigInteger, CarriesAndBorrowsRunFar) {
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        auto draw = [&] {
            std::vector<uint32_t> limbs(1 + random() % 6);
            for (uint32_t& limb : limbs)
                limb = random() % 3 == 0 ? random() : random() % 2 == 0 ? UINT32_MAX : 0;
            limbs.back() |= 1;
            return limbs;
        };
        number a{draw()}, b{draw()}, r;
        a.negative = random() & 1;
        b.negative = random() & 1;
        int sub = random() & 1;
        cpp_int p(text_of(a)), q(text_of(b));
        ASSERT_EQ(asn1_integer_add_internal(&r, &a, &b, sub), 0);
        ASSERT_EQ(cpp_int(text_of(r)), sub != 0 ? cpp_int(p - q) : cpp_int(p + q));
        uint32_t divisor = random() | 1;
        a.negative = 0;
        cpp_int magnitude = abs(p);
        ASSERT_EQ(asn1_integer_div_ui(&a, divisor), static_cast<uint32_t>(cpp_int(magnitude % divisor)));
        ASSERT_EQ(cpp_int(text_of(a)), magnitude / divisor);
    }
    number small{"-5"};
    EXPECT_EQ(asn1_integer_div_ui(&small, 7), 5u);
    EXPECT_EQ(small.size, 0u);
    EXPECT_EQ(small.negative, 1);
}

template <typename T>
void expect_fit(int (*get)(const asn1_integer*, T*), const number& a, const cpp_int& p) {
    T value = 77;
    bool fits = p >= std::numeric_limits<T>::min() && p <= std::numeric_limits<T>::max();
    EXPECT_EQ(get(&a, &value), fits ? 0 : -1) << p;
    EXPECT_EQ(value, fits ? p : 77);
}

TEST(BigInteger, ToMachineIntegers) {
    for (const char* x : kNumbers) {
        number a{std::string(x)};
        cpp_int p(x);
        expect_fit(asn1_integer_get_si_ov, a, p);
        expect_fit(asn1_integer_get_ui_ov, a, p);
        expect_fit(asn1_integer_get_si64_ov, a, p);
        expect_fit(asn1_integer_get_ui64_ov, a, p);
        EXPECT_EQ(asn1_integer_get_ui64_ov(&a, nullptr), -1);
        cpp_int magnitude = abs(p);
        EXPECT_EQ(asn1_integer_get_bit_size(&a), magnitude == 0 ? 0 : msb(magnitude) + 1) << x;
    }
}

TEST(BigInteger, TwosComplement) {
    for (const char* x : kNumbers) {
        number a{std::string(x)};
        cpp_int p(x);
        asn1_integer tmp;
        uint32_t bits = 0, width = 0;
        const asn1_integer* form = asn1_integer_to_2comp(&tmp, &a, &bits);
        ASSERT_NE(form, nullptr);
        cpp_int below = p < 0 ? cpp_int(-p - 1) : p;
        EXPECT_EQ(bits, below == 0 ? 0 : msb(below) + 1) << x;
        EXPECT_EQ(form == &a, p >= 0);
        EXPECT_EQ(form->size, (bits + 31) / 32) << x;

        // with a limb of sign bits on top, the form reads back
        std::vector<uint32_t> limbs = limbs_of(*form);
        limbs.push_back(p < 0 ? UINT32_MAX : 0);
        number back{limbs};
        EXPECT_EQ(asn1_integer_from_2comp(&back), 0);
        EXPECT_EQ(text_of(back), x);
        EXPECT_TRUE(is_normalised(back));
        if (form == &tmp) asn1_integer_clear(&tmp);

        EXPECT_EQ(asn1_integer_get_bit_size_2comp(&width, &a), 0);
        cpp_int bound = p < 0 ? cpp_int(1 - p) : p;
        EXPECT_EQ(width, bound == 0 ? 1 : msb(bound) + 2) << x;
    }
    number lowest{std::vector<uint32_t>{0x80000000}}, zero{std::vector<uint32_t>{0, 0}};
    asn1_integer_from_2comp(&lowest);
    EXPECT_EQ(text_of(lowest), "-2147483648");
    zero.negative = 1;
    for (int round = 0; round < 2; ++round) {  // of two limbs, then of none
        EXPECT_EQ(asn1_integer_from_2comp(&zero), 0);
        EXPECT_EQ(zero.size, 0u);
    }
    EXPECT_EQ(zero.negative, 0);
}

// Limbs of 0 on top say nothing.
TEST(BigInteger, HighZeros) {
    number a{std::vector<uint32_t>{7, 0, 0}};
    EXPECT_EQ(text_of(a), "7");
    EXPECT_EQ(asn1_integer_get_bit_size(&a), 64u);  // of a normal one alone
    EXPECT_EQ(text_of(number{std::string(700, '0')}), "0");
}

TEST(BigInteger, FromText) {
    const struct {
        const char *text, *value, *rest;
    } cases[] = {
        // clang-format off
        {"12a", "12", "a"}, {"-0", "0", ""}, {"-000000000000", "0", ""}, {"00000000000007", "7", ""},
        {"+1", "0", "+1"}, {" 1", "0", " 1"}, {"", "0", ""}, {"--1", "0", "-1"},
        // clang-format on
    };
    for (const auto& c : cases) {
        number a{"-99999999999999999999"};  // what was there before goes
        const char* cursor = c.text;
        ASSERT_EQ(asn1_integer_from_str(&a, &cursor), 0);
        EXPECT_EQ(text_of(a), c.value) << c.text;
        EXPECT_STREQ(cursor, c.rest);
    }
    EXPECT_TRUE(is_normalised(number{"-000"}));
    number minus{"-"};
    EXPECT_EQ(minus.size, 0u);
    EXPECT_EQ(minus.negative, 1);
}

// All lengths at which the way of conversion changes, with digits that carry far in either base.
TEST(BigInteger, TextOfAnyLengthAgreesWithBoost) {
    std::mt19937 random(2);
    std::vector<size_t> sizes(70);
    std::iota(sizes.begin(), sizes.end(), 1);
    for (size_t size : {95, 96, 97, 128, 129, 257, 640, 1025}) sizes.push_back(size);
    auto expect_both_ways = [](const cpp_int& value) {
        std::string text = value.str();
        std::vector<uint32_t> limbs;
        export_bits(value, std::back_inserter(limbs), 32, false);
        EXPECT_EQ(text_of(number{limbs}), text) << limbs.size() << " limbs";
        EXPECT_EQ(limbs_of(number{text}), limbs) << text.size() << " digits";
    };
    for (size_t size : sizes) {
        cpp_int drawn = 1;
        for (size_t i = 1; i < size; ++i) drawn = drawn << 32 | random();
        cpp_int power = cpp_int(1) << 32 * size;
        cpp_int decimal = pow(cpp_int(10), static_cast<unsigned>(9 * size));
        for (const cpp_int& value : {drawn, power, cpp_int(power - 1), decimal, cpp_int(decimal - 1)}) {
            expect_both_ways(value);
        }
    }
}

uint64_t remainder_of(const std::string& text, uint64_t divisor) {
    uint64_t remainder = 0;
    for (char digit : text) remainder = (remainder * 10 + static_cast<uint64_t>(digit - '0')) % divisor;
    return remainder;
}

// 200 KiB of a number, in far less than the square of its digits would take.
TEST(BigInteger, TextOfALongNumberTakesLittleTime) {
    std::mt19937 random(3);
    std::vector<uint32_t> limbs(51200);
    for (uint32_t& limb : limbs) limb = random() | 1;
    std::clock_t start = std::clock();
    std::string text = text_of(number{limbs});
    EXPECT_EQ(limbs_of(number{text}), limbs);
    EXPECT_LT(std::clock() - start, 4 * CLOCKS_PER_SEC);
    number rest{limbs};
    for (uint32_t divisor : {4294967291u, 2147483647u}) {
        asn1_integer_set(&rest, &static_cast<const asn1_integer&>(number{limbs}));
        EXPECT_EQ(asn1_integer_div_ui(&rest, divisor), remainder_of(text, divisor));
    }
}

TEST(BigInteger, PrintsToAStream) {
    number a{"-18446744073709551616"};
    char text[64] = "";
    FILE* stream = fmemopen(text, sizeof text, "w");
    EXPECT_EQ(asn1_integer_out_str(stream, &a), 0);
    for_each_failed_allocation([&] {
        bool failed = asn1_integer_out_str(stream, &a) != 0;
        EXPECT_EQ(failed, allocator_has_failed());
        rewind(stream);
    });
    fclose(stream);
    EXPECT_STREQ(text, "-18446744073709551616");
}

TEST(BigInteger, WithoutMemory) {
    const number large{"-340282366920938463463374607431768211455"}, one{"1"};
    for_each_failed_allocation([&] {
        number r, shorter, sum, none;
        bool failed = asn1_integer_set(&shorter, &one) != 0 ||
                      asn1_integer_add_internal(&shorter, &shorter, &large, 1) != 0 ||
                      asn1_integer_add_internal(&sum, &large, &none, 0) != 0 ||
                      asn1_integer_add_internal(&r, &large, &one, 1) != 0;
        EXPECT_EQ(failed, allocator_has_failed());
    });
    for_each_failed_allocation([&] {
        asn1_integer tmp = {};
        uint32_t bits;
        bool failed = asn1_integer_to_2comp(&tmp, &large, &bits) == nullptr;
        EXPECT_EQ(failed, allocator_has_failed());
        if (!failed) asn1_integer_clear(&tmp);
    });
    for_each_failed_allocation([&] {
        uint32_t bits;
        bool failed = asn1_integer_get_bit_size_2comp(&bits, &large) != 0;
        EXPECT_EQ(failed, allocator_has_failed());
    });
    for (size_t digits : {18, 30, 600}) {
        const std::string text(digits, '7');
        const number written{text};
        for_each_failed_allocation([&] {
            char* block = nullptr;
            bool failed = asn1_integer_to_str(&written, &block, nullptr) == nullptr;
            EXPECT_EQ(failed, allocator_has_failed());
            EXPECT_EQ(block == nullptr, failed);
            asn1_free(block);
        });
        for_each_failed_allocation([&] {
            number a;
            const char* cursor = text.c_str();
            bool failed = asn1_integer_from_str(&a, &cursor) != 0;
            EXPECT_EQ(failed, allocator_has_failed());
        });
    }
}

}  // namespace
