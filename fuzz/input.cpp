// SPDX-License-Identifier: Apache-2.0
#include "fuzz/input.hpp"

#include "core/descriptor.hpp"
#include "tests/roundtrip/values.hpp"

namespace fuzz {

std::span<const Table> all_tables() {
    static const std::vector<Table> tables = [] {
        std::vector<Table> all;
        for (const orlenta::test::Region& region : orlenta::test::all_regions())
            for (const orlenta::test::TableEntry& entry : region.entries)
                if (orlenta::kind_of(entry.type) != ASN1_KIND_OBJECT_CLASS)
                    all.push_back({region.name, &entry});
        return all;
    }();
    return tables;
}

Choice read_head(const uint8_t* data) {
    return {.table = static_cast<uint16_t>(data[0] | data[1] << 8),
            .from = static_cast<uint8_t>(data[2] & 15),
            .to = static_cast<uint8_t>(data[2] >> 4),
            .style = data[3]};
}

void write_head(const Choice& choice, uint8_t* data) {
    data[0] = static_cast<uint8_t>(choice.table);
    data[1] = static_cast<uint8_t>(choice.table >> 8);
    data[2] = static_cast<uint8_t>((choice.from & 15) | choice.to << 4);
    data[3] = choice.style;
}

Bytes make_input(const Choice& choice, std::span<const uint8_t> message) {
    Bytes input(kHeadBytes);
    write_head(choice, input.data());
    input.insert(input.end(), message.begin(), message.end());
    return input;
}

const Table& table_of(const Choice& choice) { return all_tables()[choice.table % all_tables().size()]; }

static const cli::Rules& rules_at(size_t index) { return cli::all_rules()[index % cli::all_rules().size()]; }
const cli::Rules& source_of(const Choice& choice) { return rules_at(choice.from); }
const cli::Rules& target_of(const Choice& choice) { return rules_at(choice.to); }

cli::Style style_of(const Choice& choice) {
    auto bit = [&](int n) { return (choice.style >> n & 1) != 0; };
    // XML without empty tags: bare items in a list are then not read back.
    return {.indent = bit(0) ? 2 : 0,
            .empty_tags = bit(1) || !bit(2) || !bit(3),
            .boolean_text = bit(2),
            .enumerated_text = bit(3),
            .indefinite = bit(4),
            .segment = 3 * (choice.style >> 5)};
}

}  // namespace fuzz
