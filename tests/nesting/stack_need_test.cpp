// SPDX-License-Identifier: Apache-2.0
// The stack that each operation takes on values of the message sets, held against what docs/limits.md says.
#include <orlenta/check.h>
#include <orlenta/memory.h>
#include <orlenta/random.h>

#include <algorithm>
#include <map>
#include <string>

#include "core/descriptor.hpp"
#include "tests/roundtrip/rules.hpp"
#include "tests/roundtrip/values.hpp"
#include "tests/support/nesting.hpp"

namespace orlenta::test {
namespace {

constexpr size_t kKilobyte = 1024;
// The table of docs/limits.md.
[[maybe_unused]] constexpr size_t kDecode = 8 * kKilobyte, kEncode = 6 * kKilobyte, kOther = 4 * kKilobyte;

// The levels of records, lists and open types of a type that does not contain itself.
size_t depth_of(const asn1_type_desc* type) {
    static std::map<const asn1_type_desc*, size_t> known;
    if (auto found = known.find(type); found != known.end()) return found->second;
    size_t below = 0;
    switch (kind_of(type)) {
        case ASN1_KIND_TAGGED: below = depth_of(tagged_inner(type)); break;
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: below = depth_of(list_of(type).element); break;
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET:
            for (uint32_t i = 0; i < component_count(type); ++i)
                below = std::max(below, depth_of(field_type(components(type) + i)));
            break;
        case ASN1_KIND_CHOICE:
            for (uint32_t i = 0; i < choice_of(type).total; ++i)
                below = std::max(below, depth_of(alternative_type(choice_of(type), i)));
            break;
        default: break;
    }
    return known[type] = below + 1;
}

// The deepest tables of a region, and all kinds of scalars.
std::vector<const asn1_type_desc*> deepest_types() {
    std::vector<const asn1_type_desc*> types;
    for (const Region& region : all_regions()) {
        std::vector<const asn1_type_desc*> all;
        for (const TableEntry& entry : region.entries)
            if (kind_of(entry.type) != ASN1_KIND_OBJECT_CLASS && !is_recursive(entry.type))
                all.push_back(entry.type);
        size_t count = std::min<size_t>(all.size(), 60);
        std::partial_sort(all.begin(), all.begin() + static_cast<ptrdiff_t>(count), all.end(),
                          [](auto a, auto b) { return depth_of(a) > depth_of(b); });
        types.insert(types.end(), all.begin(), all.begin() + static_cast<ptrdiff_t>(count));
    }
    return types;
}

class Meter {
  public:
    void measure(const std::string& operation, size_t limit, const std::function<void()>& body) {
        size_t used = stack_.bytes_used(body) - idle_;
        most_[operation] = std::max(most_[operation], used);
        EXPECT_LE(used, limit) << operation;
    }
    ~Meter() {
        for (const auto& [operation, used] : most_) printf("%-20s %5zu bytes\n", operation.c_str(), used);
    }

  private:
    Stack stack_{kLeastStack};
    size_t idle_ = stack_.bytes_used([] {});  // by the thread itself
    std::map<std::string, size_t> most_;
};

void measure_rule(Meter& meter, const Rule& rule, const asn1_type_desc* type, const void* value) {
    uint8_t* data = nullptr;
    int64_t size = -1;
    meter.measure(rule.name + std::string(" encode"), kEncode,
                  [&] { size = rule.encode(&data, type, value); });
    ASSERT_GE(size, 0) << rule.name;
    // Whole, and cut in the middle, so that there is something to report.
    for (int64_t length : {size, size / 2}) {
        void* decoded = nullptr;
        asn1_error error;
        meter.measure(rule.name + std::string(" decode"), kDecode,
                      [&] { rule.decode(&decoded, type, data, static_cast<uint64_t>(length), &error); });
        asn1_free_value(type, decoded);
    }
    asn1_free(data);
}

TEST(StackNeed, OfTheDeepestTypes) {
#if defined(ORLENTA_WITH_ASAN) || !defined(__OPTIMIZE__)
    GTEST_SKIP() << "frames are larger than those of an optimised build";
#endif
    Meter meter;
    for (const asn1_type_desc* type : deepest_types()) {
        for (uint32_t seed = 1; seed <= 2; ++seed) {
            void* copy = nullptr;
            meter.measure("random", kOther, [&] { copy = asn1_random(type, seed); });
            asn1_free_value(type, copy);
            Sample sample = make_sample(type, seed);
            const void* value = sample.value.get();
            meter.measure("clone", kOther, [&] { copy = asn1_clone_value(type, value); });
            meter.measure("compare", kOther, [&] { asn1_cmp_value(type, value, copy); });
            meter.measure("release", kOther, [&] { asn1_free_value(type, copy); });
            meter.measure("check", kOther, [&] { asn1_check_constraints(type, value, nullptr); });
            for (const Rule& rule : all_rules()) measure_rule(meter, rule, type, value);
        }
    }
}

}  // namespace
}  // namespace orlenta::test
