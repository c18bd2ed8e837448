// Programs beside the walker: the same results, reports, bytes, values and blocks, whatever comes in.
#include <gtest/gtest.h>
#include <orlenta/codec.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <string.h>

#include <algorithm>
#include <map>
#include <random>

#include "core/descriptor.hpp"
#include "program/uper_decode.hpp"
#include "program/uper_encode.hpp"
#include "tests/per/per_types.hpp"
#include "tests/program/image.hpp"
#include "tests/roundtrip/values.hpp"
#include "tests/support/failing_allocator.hpp"
#include "tests/support/nesting.hpp"
#include "tests/vectors/vector_file.hpp"

namespace orlenta::test {
namespace {

struct FreeCodec {
    void operator()(orlenta_codec* codec) const { orlenta_codec_free(codec); }
};
using Codec = std::unique_ptr<orlenta_codec, FreeCodec>;

struct Tally {
    int decodes = 0, values = 0, encodes = 0;
    int whole = 0;        // valid encodings and values that a program takes
    int pieces = 0;       // parts of them that the walker took
    int values_left = 0;  // valid, and given up
};

bool operator==(const asn1_error& a, const asn1_error& b) {
    return a.line == b.line && a.bit_position == b.bit_position && strcmp(a.path, b.path) == 0 &&
           strcmp(a.message, b.message) == 0;
}

std::string text_of(const asn1_error& error, int64_t result) {
    return std::to_string(result) + " at bit " + std::to_string(error.bit_position) + ", " + error.path +
           ": " + error.message;
}

std::string hex_of(const Bytes& bytes) {
    std::string text = std::to_string(bytes.size()) + " octets ";
    char digits[3];
    for (size_t i = 0; i < std::min<size_t>(bytes.size(), 200); ++i) {
        snprintf(digits, sizeof digits, "%02x", bytes[i]);
        text += digits;
    }
    return text;
}

// A type under test.
class Subject {
  public:
    Subject(Type type, Tally& tally) : type_(type), codec_(orlenta_codec_new(type)), tally_(tally) {
        EXPECT_NE(codec_, nullptr);
    }

    // Decodes both ways; the walker's value, or null.
    Value decode(const Bytes& bytes) {
        // In a block of their own, so that a sanitizer sees a read behind the end.
        std::unique_ptr<uint8_t[]> copy(new uint8_t[bytes.size()]);
        std::copy(bytes.begin(), bytes.end(), copy.get());
        asn1_error error[2] = {};
        void* value[2] = {};
        int64_t result = asn1_uper_decode(&value[0], type_, copy.get(), bytes.size(), &error[0]);
        int64_t by_program =
            orlenta_uper_decode(codec_.get(), &value[1], copy.get(), bytes.size(), &error[1]);
        EXPECT_TRUE(result == by_program && error[0] == error[1] && !value[0] == !value[1])
            << hex_of(bytes) << "\nwalker:  " << text_of(error[0], result)
            << "\nprogram: " << text_of(error[1], by_program);
        ++tally_.decodes;
        Value walkers(value[0], {type_});
        if (value[0] && value[1]) {
            EXPECT_EQ(image_of(type_, value[0]), image_of(type_, value[1])) << hex_of(bytes);
            ++tally_.values;
        }
        orlenta_free_value(codec_.get(), value[1]);
        if (result < 0) {
            value[1] = &error;
            EXPECT_EQ(orlenta_uper_decode(codec_.get(), &value[1], copy.get(), bytes.size(), nullptr), -1);
            EXPECT_EQ(value[1], nullptr);
        }
        return walkers;
    }

    // Encodes both ways; the encoding, or nothing.
    Bytes encode(const void* value) {
        asn1_error error[2] = {};
        uint8_t* out[2] = {};
        int64_t size = asn1_uper_encode2(&out[0], type_, value, &error[0]);
        int64_t by_program = orlenta_uper_encode2(codec_.get(), &out[1], value, &error[1]);
        bool same = size == by_program && error[0] == error[1] && !out[0] == !out[1];
        EXPECT_TRUE(same) << "walker:  " << text_of(error[0], size)
                          << "\nprogram: " << text_of(error[1], by_program);
        Bytes bytes(out[0], out[0] + std::max<int64_t>(size, 0));
        EXPECT_TRUE(!same || std::equal(bytes.begin(), bytes.end(), out[1])) << hex_of(bytes);
        asn1_free(out[0]);
        asn1_free(out[1]);
        ++tally_.encodes;
        return bytes;
    }

    // A program takes what is valid, both ways.
    void expect_taken(const Bytes& bytes, const void* value) {
        void* decoded = nullptr;
        program::decode_result in =
            program::run_uper_decode(codec_.get(), &decoded, bytes.data(), bytes.size());
        orlenta_free_value(codec_.get(), decoded);
        uint8_t* encoded = nullptr;
        program::encode_result out = program::run_uper_encode(codec_.get(), &encoded, value);
        asn1_free(encoded);
        EXPECT_NE(in.how, program::kInvalid) << hex_of(bytes);
        tally_.values_left += (in.how != program::kDone) + !out.is_done;
        tally_.whole += 2;
        tally_.pieces += static_cast<int>(in.walker_pieces + out.walker_pieces);
    }

    // Encodes the value with one of its words changed, with a selector of no alternative, and with pointers null.
    void encode_changed(void* value, std::mt19937& random) {
        Holdings all = all_holdings(type_, value);
        if (!all.words.empty()) {
            uint32_t word = random() % 4 == 0 ? static_cast<uint32_t>(random()) : random() % 600 - 100;
            encode_with(value, all.words[random() % all.words.size()], word);
        }
        if (!all.selectors.empty()) {
            encode_with(value, all.selectors[random() % all.selectors.size()], random() | 0x1000);
        }
        for (const Block& block : all.blocks) {  // that of an open type or indirect component
            if (block.inner && block.stride == 0)
                encode_with(value, block.place, static_cast<void*>(nullptr));
        }
    }

    const orlenta_codec* codec() const { return codec_.get(); }

  private:
    template <typename Word>
    void encode_with(const void* value, void* place, Word word) {
        Word before;
        memcpy(&before, place, sizeof before);
        memcpy(place, &word, sizeof word);
        encode(value);
        memcpy(place, &before, sizeof before);
    }

    Type type_;
    Codec codec_;
    Tally& tally_;
};

Bytes damage(const Bytes& original, std::mt19937& random) {
    Bytes bytes = original;
    if (bytes.empty()) return bytes;
    uint32_t flips = random() % 4;
    if (flips == 0) bytes.resize(random() % bytes.size());
    for (uint32_t i = 0; i < flips; ++i)
        bytes[random() % bytes.size()] ^= static_cast<uint8_t>(1u << random() % 8);
    return bytes;
}

// A valid value and its encoding, then `rounds` damaged encodings and changed values.
void compare(Subject& subject, void* value, int rounds, std::mt19937& random) {
    Bytes bytes = subject.encode(value);
    subject.decode(bytes);
    if (bytes.empty() || bytes.size() > 20000) return;  // some values of recursive types
    subject.expect_taken(bytes, value);
    for (int i = 0; i < rounds; ++i) {
        Value decoded = subject.decode(damage(bytes, random));
        if (decoded) subject.encode(decoded.get());
        subject.encode_changed(value, random);
    }
}

void print(const char* name, const Tally& tally) {
    std::printf(
        "%s: %d decodes, %d of them to a value, %d encodes; of %d valid ones %d given up, %d parts by the "
        "walker\n",
        name, tally.decodes, tally.values, tally.encodes, tally.whole, tally.values_left, tally.pieces);
}

class Tables : public testing::TestWithParam<Region> {};

TEST_P(Tables, RandomValues) {
    std::mt19937 random(7);
    Tally tally;
    for (const orlenta_catalogue_entry& entry : GetParam().entries) {
        if (kind_of(entry.type) == ASN1_KIND_OBJECT_CLASS) continue;
        SCOPED_TRACE(entry.table);
        size_t before = live_blocks();
        {
            Subject subject(entry.type, tally);
            for (uint32_t round = is_recursive(entry.type); round < 2; ++round) {
                Sample sample = make_sample(entry.type, seed_of(entry, round));
                compare(subject, sample.value.get(), 4, random);
            }
        }
        ASSERT_EQ(live_blocks(), before);
        if (HasFailure()) return;
    }
    print(GetParam().name, tally);
    EXPECT_EQ(tally.values_left, 0);
}

INSTANTIATE_TEST_SUITE_P(Program, Tables, testing::ValuesIn(all_regions().begin(), all_regions().end()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace orlenta::test
