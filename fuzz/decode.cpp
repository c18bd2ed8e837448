// Any bytes must decode to an error or to a value that can be used: checked, copied, compared, encoded and decoded
// again to the same.
#include <orlenta/check.h>
#include <orlenta/cn.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "cli/rules.hpp"

static const cli::Rules& rules = *cli::find_rules(FUZZ_RULES);
static const asn1_type_desc* const type = asn1_type_CN_MessageFrame;

static void require(bool condition, const char* text) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", text);
    std::abort();
}

static void* decode(const uint8_t* data, size_t size) {
    asn1_error error;
    asn1_error_init(&error);
    void* value = nullptr;
    int64_t used = rules.decode(&value, type, data, size, &error);
    require(used <= static_cast<int64_t>(size), "more bytes used than there are");
    require((used < 0) == (value == nullptr), "a value and a failure, or neither");
    return value;
}

// Empty if the value has no encoding, as one with a number outside its range may not.
static std::string encode(const void* value) {
    uint8_t* data = nullptr;
    int64_t size = rules.encode(&data, type, value, {.indent = 0}, nullptr);
    if (size < 0) return {};
    std::string encoded(reinterpret_cast<const char*>(data), static_cast<size_t>(size));
    asn1_free(data);
    return encoded;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    void* value = decode(data, size);
    if (!value) return 0;
    asn1_check_constraints(type, value, nullptr);
    void* copy = asn1_clone_value(type, value);
    require(copy && asn1_cmp_value(type, value, copy) == 0, "a copy differs");
    std::string encoded = encode(value);
    if (!encoded.empty()) {
        void* again = decode(reinterpret_cast<const uint8_t*>(encoded.data()), encoded.size());
        require(again && asn1_cmp_value(type, value, again) == 0, "an encoding decodes to another value");
        asn1_free_value(type, again);
    }
    asn1_free_value(type, copy);
    asn1_free_value(type, value);
    return 0;
}
