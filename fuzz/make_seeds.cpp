// SPDX-License-Identifier: Apache-2.0
// make_fuzz_seeds FOLDER FILE...: inputs of fuzz_convert. Each row of the vector files goes out from some of the rules,
// the hand-made kinds from all.
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "fuzz/input.hpp"
#include "tests/roundtrip/values.hpp"
#include "tests/vectors/vector_file.hpp"

namespace {

using namespace fuzz;
namespace fs = std::filesystem;

constexpr int64_t kLongest = 2048;  // longer ones are slow to mutate, and add little

const std::map<std::string, uint16_t>& table_numbers() {
    static const std::map<std::string, uint16_t> numbers = [] {
        std::map<std::string, uint16_t> all;
        uint16_t number = 0;
        for (const Table& table : all_tables()) {
            if (table.entry->name[0])
                all.emplace(std::string(table.region) + "." + table.entry->name, number);
            ++number;
        }
        return all;
    }();
    return numbers;
}

// From each of the rules in turn, and then to the next ones.
Choice nth_choice(uint16_t table, int n) {
    int count = static_cast<int>(cli::all_rules().size());
    return {.table = table,
            .from = static_cast<uint8_t>(n % count),
            .to = static_cast<uint8_t>(n / count % count),
            .style = static_cast<uint8_t>(n)};
}

class Folder {
  public:
    explicit Folder(fs::path path) : path_(std::move(path)) { fs::create_directories(path_); }

    // The value as source_of(choice) encodes it.
    void add(const Choice& choice, const void* value) {
        uint8_t* data = nullptr;
        int64_t size =
            source_of(choice).encode(&data, table_of(choice).type(), value, style_of(choice), nullptr);
        if (size > 0 && size <= kLongest) {
            Bytes input = make_input(choice, {data, static_cast<size_t>(size)});
            std::ofstream(path_ / std::to_string(count_++), std::ios::binary)
                .write(reinterpret_cast<const char*>(input.data()),
                       static_cast<std::streamsize>(input.size()));
        }
        asn1_free(data);
    }

    size_t count() const { return count_; }

  private:
    fs::path path_;
    size_t count_ = 0;
};

// A type has several rows, so that together they come from all rules and go to all.
void add_row(Folder& folder, const orlenta::test::VectorRow& row, uint16_t table) {
    constexpr int kEach = 3;
    const asn1_type_desc* type = all_tables()[table].type();
    void* decoded = nullptr;
    cli::find_rules("uper")->decode(&decoded, type, row.uper.data(), row.uper.size(), nullptr);
    orlenta::test::Value value(decoded, {type});
    for (int i = row.line * kEach; value && i < (row.line + 1) * kEach; ++i)
        folder.add(nth_choice(table, i), value.get());
}

void add_kinds(Folder& folder) {
    for (uint16_t table = 0; table < all_tables().size(); ++table) {
        if (std::string_view(all_tables()[table].region) != "Kinds") continue;
        for (int i = 0; i < 64; ++i) {
            orlenta::test::Sample sample =
                orlenta::test::make_sample(all_tables()[table].type(), static_cast<uint32_t>(i));
            folder.add(nth_choice(table, i), sample.value.get());
        }
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) {
        std::fprintf(stderr, "usage: make_fuzz_seeds FOLDER FILE...\n");
        return 2;
    }
    Folder folder(arguments[1]);
    add_kinds(folder);
    for (int i = 2; i < count; ++i) {
        for (const orlenta::test::VectorRow& row : orlenta::test::read_vectors(arguments[i])) {
            auto found = table_numbers().find(row.region + "." + row.type);
            if (found != table_numbers().end()) add_row(folder, row, found->second);
        }
    }
    std::printf("%zu seeds\n", folder.count());
    return folder.count() > 1000 ? 0 : 1;
}
