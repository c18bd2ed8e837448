// SPDX-License-Identifier: Apache-2.0
#include "cli/detect.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "cli/text_bytes.hpp"
#include "cli/type_names.hpp"

namespace cli {

// ---- the header of ETSI messages --------------------------------------------------------------------------

struct Component {
    const asn1_type_desc* type = nullptr;
    const void* value = nullptr;
};

static Component component(Component of, std::string_view name) {
    orlenta_component part;
    for (uint32_t i = 0; of.type && orlenta_type_component(of.type, i, &part) == 0; ++i) {
        if (part.name != name) continue;
        orlenta_type_facts facts;
        orlenta_type_describe(part.type, &facts);
        return {facts.type, static_cast<const char*>(of.value) + part.offset};
    }
    return {};
}

static uint32_t number(Component of) {
    uint32_t word;
    memcpy(&word, of.value, sizeof word);
    return word;
}

static int64_t message_id(Component header) {
    Component id = component(header, "messageID");
    return id.value ? int64_t{number(id)} : -1;
}

// ---- candidates -------------------------------------------------------------------------------------------

void Detector::add(const std::string& region, const char* name, std::vector<uint32_t> ids) {
    std::string full = fmt::format("{}.{}", region, name), problem;
    const orlenta_type_entry* entry = find_type(full, &problem);
    if (entry) candidates_.push_back({coded(entry->type, std::move(full)), std::move(ids)});
}

Detector::Detector(const std::string& region) {
    auto is_asked_for = [&](const char* name) { return region.empty() || region == name; };
    for (const char* name : {"CN", "US"})
        if (is_asked_for(name)) add(name, "MessageFrame", {});
    if (!is_asked_for("EU")) return;
    // VAM is 14 in TS 103 300-3 and 16 in the common data dictionary; drafts of CPM had 14.
    add("EU", "DENM", {1});
    add("EU", "CAM", {2});
    add("EU", "SPATEM", {4});
    add("EU", "MAPEM", {5});
    add("EU", "IVIM", {6});
    add("EU", "SREM", {9});
    add("EU", "SSEM", {10});
    add("EU", "RTCMEM", {13});
    add("EU", "VAM", {14, 16});
    add("EU", "CPM", {14});
    std::string problem;
    const orlenta_type_entry* header = find_type("EU.ItsPduHeader", &problem);
    if (header) header_ = coded(header->type, "EU.ItsPduHeader");
}

// ---- detection --------------------------------------------------------------------------------------------

// The header, where the rules let it be read by itself, and else how the message begins.
Problem Detector::no_type(const Rules& rules, std::string_view input) const {
    Problem problem;
    problem.text = "no type fits";
    if (rules.is_text()) return problem;
    Problem ignored;
    Value header;
    if (header_.type) header = decode(rules, header_, nullptr, input, true, &ignored);
    if (header) {
        Component value = {header_.type, header.get()};
        problem.text += fmt::format("; as an ETSI header: protocolVersion {}, messageID {}",
                                    number(component(value, "protocolVersion")), message_id(value));
    }
    std::string octets;
    append_bytes_as(TextForm::hex, input.substr(0, 8), &octets);
    problem.text += fmt::format("; it begins with {}", octets.empty() ? "nothing" : octets);
    return problem;
}

const CodedType* Detector::detect(const Rules& rules, orlenta_arena* arena, std::string_view input,
                                  Value* value, Problem* problem) const {
    const CodedType* found = nullptr;
    std::string names;
    for (const Candidate& candidate : candidates_) {
        Problem ignored;
        Value decoded = decode(rules, candidate.type, arena, input, false, &ignored);
        if (!decoded || !check(decoded, &ignored)) continue;
        int64_t id = message_id(component({candidate.type.type, decoded.get()}, "header"));
        const auto& ids = candidate.ids;
        if (!ids.empty() && std::find(ids.begin(), ids.end(), id) == ids.end()) continue;
        names += (found ? ", " : "") + candidate.type.name;
        found = &candidate.type;
        *value = std::move(decoded);
    }
    if (found && names == found->name) return found;
    *problem =
        found ? Problem{fmt::format("several types fit: {}", names), {}, -1, 0, 0} : no_type(rules, input);
    return nullptr;
}

}  // namespace cli
