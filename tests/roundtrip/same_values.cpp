// SPDX-License-Identifier: Apache-2.0
// Random values in UPER and JSON, which are the same on every machine: printed, or held against what another one printed.
#include <orlenta/jer.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/random.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

#include "tests/roundtrip/values.hpp"

namespace orlenta::test {
namespace {

constexpr struct {
    const char* region;
    const char* name;
} kTypes[] = {
    {"CN", "MessageFrame"},
    {"CN", "BasicSafetyMessage"},
    {"CN", "MapData"},
    {"CN", "SPAT"},
    {"CN", "RoadsideSafetyMessage"},
    {"CN", "RoadSideInformation"},
    {"EU", "CAM"},
    {"EU", "DENM"},
    {"EU", "MAPEM"},
    {"EU", "SPATEM"},
    {"EU", "IVIM"},
    {"EU", "SREM"},
    {"US", "MessageFrame"},
    {"US", "DL-DCCH-Message"},
    {"Kinds", "kReal"},
    {"Kinds", "kBig"},
    {"Kinds", "kDefaults"},
    {"Kinds", "kSomeBmp"},
    {"Kinds", "kPlainSet"},
};

std::string taken(uint8_t* bytes, int64_t size) {
    std::string text(reinterpret_cast<char*>(bytes), size < 0 ? 0 : static_cast<size_t>(size));
    asn1_free(bytes);
    return text;
}

// Types of no message set are known by their tables alone.
const asn1_type_desc* find(std::string_view region_name, std::string_view name) {
    for (const Region& region : all_regions()) {
        for (const auto& entry : region.entries) {
            if (region.name == region_name && (entry.name == name || entry.table == name)) return entry.type;
        }
    }
    return nullptr;
}

// "CN.SPAT 7 <UPER in hex> <JSON>"; ends early where a value or an encoding could not be had.
std::string line_of(const std::string& name, const asn1_type_desc* type, uint32_t seed) {
    Value value(orlenta_random_valid(type, seed), {type});
    std::string line = name + " " + std::to_string(seed);
    if (!value) return line;
    uint8_t* out = nullptr;
    int64_t size = asn1_uper_encode(&out, type, value.get());
    line += " ";
    for (char octet : taken(out, size)) {
        char hex[3];
        std::snprintf(hex, sizeof hex, "%02x", static_cast<uint8_t>(octet));
        line += hex;
    }
    asn1_jer_encode_options compact = {};
    size = asn1_jer_encode2(&out, type, value.get(), &compact);
    std::string json = taken(out, size);
    if (!json.empty()) json.pop_back();  // the line feed
    return line + " " + json;
}

int run(const char* other) {
    std::ifstream theirs(other ? other : "");
    int compared = 0, different = 0;
    for (const auto& [region, type_name] : kTypes) {
        const asn1_type_desc* type = find(region, type_name);
        if (!type && !other) return std::printf("no %s.%s\n", region, type_name), 1;
        std::string name = std::string(region) + "." + type_name;
        for (uint32_t seed = 1; seed <= 60; ++seed) {
            std::string their_line;
            if (other && !std::getline(theirs, their_line)) return std::printf("%s ends early\n", other), 1;
            if (!type) continue;  // of a region that is not built
            std::string line = line_of(name, type, seed);
            if (!other) {
                std::printf("%s\n", line.c_str());
                continue;
            }
            ++compared;
            if (line == their_line) continue;
            if (++different <= 5) std::printf("%s\n%s\n\n", line.c_str(), their_line.c_str());
        }
    }
    if (other) std::printf("%d values, %d different\n", compared, different);
    return different == 0 && (!other || compared > 0) ? 0 : 1;
}

}  // namespace
}  // namespace orlenta::test

int main(int argc, char** argv) { return orlenta::test::run(argc > 1 ? argv[1] : nullptr); }
