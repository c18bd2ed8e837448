// Each allocation of an encoding and of a decoding fails in turn: a report, and nothing left behind.
#include "tests/per/per_types.hpp"
#include "tests/support/failing_allocator.hpp"

namespace orlenta::test {
namespace {

// A value of every kind that takes memory somewhere, with a group, an addition and an open type around it.
struct Rich {
    asn1_integer big;
    asn1_string octets, letters;
    asn1_bit_string flags;
    asn1_array list;
    double real;
    void* indirect;
    asn1_open_value any;
    uint32_t key, has_real, has_indirect, has_list;
    asn1_integer by_default;
};

struct RichType {
    uint32_t key = 1;
    uint32_t limbs[2] = {5, 1};
    asn1_integer zero = {}, top = {limbs, 2, 2, 0}, standard = {limbs, 1, 1, 0};
    Words big_integer = {head(ASN1_KIND_INTEGER, kBounds | ASN1_WORD0_BIG), big(&zero), big(&top)};
    Words letters = char_string(ASN1_STRING_NUMERIC, 0, 9, {{' ', ' '}, {'0', '9'}});
    Words flags = string_of(ASN1_KIND_BIT_STRING, 0, -1);
    Words list = list_type(0, 9, sizeof(asn1_string), kOctets);
    Words tagged = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(0)), ref(list.data())};
    Words id = integer(0, 7);
    Words object_class = {head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME),
                          num(2),  //
                          num(ASN1_CLASS_FIELD_VALUE),
                          ref(id.data()),
                          num(0),
                          txt("&id"),  //
                          num(ASN1_CLASS_FIELD_TYPE),
                          num(0),
                          num(0),
                          txt("&Type"),
                          txt("CLASS")};
    Words rows = {{.address = &key}, ref(list.data())};
    Words constraint = {num(ASN1_CONSTRAINT_TABLE),
                        ref(object_class.data()),
                        num(1),
                        ref(rows.data()),
                        num(1),
                        num(1),
                        num(0),
                        num(ASN1_SELECTOR_LAST),
                        num(0)};
    Words any = {head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED), ref(constraint.data())};
    Words free_integer = {head(ASN1_KIND_INTEGER, ASN1_WORD0_BIG)};
    Words rich = sequence(
        sizeof(Rich),
        {mandatory(offsetof(Rich, key), id, "key"),
         mandatory(offsetof(Rich, big), big_integer, "big"),
         {field(offsetof(Rich, by_default), ASN1_OPTION_DEFAULT), free_integer, big(&standard), "by-default"},
         mandatory(offsetof(Rich, octets), kOctets, "octets"),
         mandatory(offsetof(Rich, letters), letters, "letters"),
         mandatory(offsetof(Rich, flags), flags, "flags"),
         mandatory(offsetof(Rich, any), any, "any"),
         {field(offsetof(Rich, list), ASN1_OPTION_OPTIONAL, kOpens), list, num(offsetof(Rich, has_list)),
          "list"},
         {field(offsetof(Rich, real), ASN1_OPTION_OPTIONAL, kCloses), kReal, num(offsetof(Rich, has_real)),
          "real"},
         {field(offsetof(Rich, indirect), ASN1_OPTION_OPTIONAL, kAddition), tagged,
          num(offsetof(Rich, has_indirect)), "indirect"}},
        kExt);
};
const RichType kRich;

struct RichValue : Rich {
    uint32_t limbs[1] = {99};
    uint8_t data[5] = {1, 2, 3, 4, 5};
    asn1_string strings[2] = {{data, 5}, {data, 3}};
    asn1_array inner = {strings, 2};
    explicit RichValue() : Rich{} {
        big = {limbs, 1, 1, 0};
        octets = strings[0];
        letters = {reinterpret_cast<uint8_t*>(const_cast<char*>("12 3")), 4};
        flags = {data, 33};
        data[4] = 0x80;
        list = inner;
        real = 0.5;
        indirect = &inner;
        any = {kRich.list.data(), &inner, 0};
        key = has_real = has_indirect = has_list = 1;
        by_default = kRich.standard;
    }
};

TEST(PerAllocation, Encoding) {
    RichValue value;
    for (bool aligned : {false, true}) {
        Bytes whole = encoded(aligned, kRich.rich, &value);
        uint64_t allocations = for_each_failed_allocation([&] {
            uint8_t* out = nullptr;
            asn1_error error = {};
            int64_t size = per_encode(aligned, &out, kRich.rich, &value, &error);
            if (!allocator_has_failed()) {
                EXPECT_EQ(hex(Bytes(out, out + size)), hex(whole));
                asn1_free(out);
                return;
            }
            EXPECT_EQ(size, -1);
            EXPECT_EQ(out, nullptr);
            // Presence arrays and what lies inside open types fail without a text.
            std::string message = error.message;
            EXPECT_TRUE(message == "not enough memory" || message.empty()) << message;
        });
        EXPECT_GT(allocations, 10u);
    }
}

TEST(PerAllocation, BufferGrowthIsToldAtTheEnd) {
    const Bytes data(1000, 0x5A);
    asn1_string value = str(data);
    for_each_failed_allocation([&] {
        uint8_t* out = nullptr;
        asn1_error error = {};
        int64_t size = per_encode(true, &out, kOctets, &value, &error);
        EXPECT_EQ(size, allocator_has_failed() ? -1 : 1002);
        EXPECT_STREQ(error.message, allocator_has_failed() ? "not enough memory" : "");
        asn1_free(out);
    });
}

TEST(PerAllocation, Decoding) {
    RichValue value;
    for (bool aligned : {false, true}) {
        Bytes whole = encoded(aligned, kRich.rich, &value);
        uint64_t allocations = for_each_failed_allocation([&] {
            void* out = nullptr;
            asn1_error error = {};
            int64_t used = per_decode(aligned, &out, kRich.rich, whole, &error);
            if (!allocator_has_failed()) {
                EXPECT_EQ(used, static_cast<int64_t>(whole.size()));
                EXPECT_EQ(asn1_cmp_value(kRich.rich.data(), static_cast<Rich*>(&value), out), 0);
                asn1_free_value(kRich.rich.data(), out);
                return;
            }
            EXPECT_EQ(used, -1);
            EXPECT_EQ(out, nullptr);
            EXPECT_STREQ(error.message, "not enough memory");
        });
        EXPECT_GT(allocations, 20u);
    }
}

}  // namespace
}  // namespace orlenta::test
