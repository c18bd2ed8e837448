// SPDX-License-Identifier: Apache-2.0
// Mutation of fuzz_convert's inputs: bytes behind the head, the head alone, the same value in other rules, and a new
// random value.
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <algorithm>
#include <random>

#include "fuzz/input.hpp"
#include "tests/roundtrip/values.hpp"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

namespace fuzz {

using orlenta::test::Value;
using Random = std::minstd_rand;

static Bytes encode(const Choice& choice, const void* value) {
    uint8_t* data = nullptr;
    int64_t size = source_of(choice).encode(&data, table_of(choice).type(), value, style_of(choice), nullptr);
    Bytes bytes(data, data + std::max<int64_t>(size, 0));
    asn1_free(data);
    return bytes;
}

static size_t put(const Choice& choice, const Bytes& message, uint8_t* data, size_t max_size) {
    if (message.empty() || kHeadBytes + message.size() > max_size) return 0;
    write_head(choice, data);
    std::copy(message.begin(), message.end(), data + kHeadBytes);
    return kHeadBytes + message.size();
}

// The target becomes the source, so that what one rule has found is there for the others.
static size_t translate(uint8_t* data, size_t size, size_t max_size, Random& random) {
    Choice choice = read_head(data);
    const asn1_type_desc* type = table_of(choice).type();
    void* decoded = nullptr;
    source_of(choice).decode(&decoded, type, data + kHeadBytes, size - kHeadBytes, nullptr);
    if (!decoded) return 0;
    Value value(decoded, {type});
    choice.from = choice.to;
    choice.to = static_cast<uint8_t>(random());
    return put(choice, encode(choice, value.get()), data, max_size);
}

// A random value of any table. Those of recursive types are large and slow.
static size_t renew(uint8_t* data, size_t max_size, Random& random) {
    Choice choice = {.table = static_cast<uint16_t>(random()),
                     .from = static_cast<uint8_t>(random()),
                     .to = static_cast<uint8_t>(random()),
                     .style = static_cast<uint8_t>(random())};
    const asn1_type_desc* type = table_of(choice).type();
    if (orlenta::test::is_recursive(type)) return 0;
    return put(choice, encode(choice, orlenta::test::make_sample(type, random()).value.get()), data,
               max_size);
}

static size_t rechoose(uint8_t* data, size_t size, Random& random) {
    data[2 + random() % 2] = static_cast<uint8_t>(random());
    return size;
}

}  // namespace fuzz

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size, unsigned seed) {
    using namespace fuzz;
    Random random(seed);
    size_t result = 0;
    if (size >= kHeadBytes) {
        switch (random() % 32) {
            case 0: result = renew(data, max_size, random); break;
            case 1: result = translate(data, size, max_size, random); break;
            case 2: result = rechoose(data, size, random); break;
            case 3: break;
            default:
                result = kHeadBytes +
                         LLVMFuzzerMutate(data + kHeadBytes, size - kHeadBytes, max_size - kHeadBytes);
        }
    }
    return result != 0 ? result : LLVMFuzzerMutate(data, size, max_size);
}
