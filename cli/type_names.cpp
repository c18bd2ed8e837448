// SPDX-License-Identifier: Apache-2.0
#include "cli/type_names.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cli/spelling.hpp"

namespace cli {

// ---- the catalogue ----------------------------------------------------------------------------------------

static const orlenta_catalogue* chosen = nullptr;

void use_catalogue(const orlenta_catalogue* catalogue) { chosen = catalogue; }

const orlenta_catalogue* used_catalogue() { return chosen ? chosen : orlenta_catalogue_builtin(); }

std::span<const orlenta_type_entry> all_types() {
    static const std::vector<orlenta_type_entry> types = [] {
        std::vector<orlenta_type_entry> all(orlenta_catalogue_count(used_catalogue()));
        for (size_t i = 0; i < all.size(); ++i) orlenta_catalogue_get(used_catalogue(), i, &all[i]);
        return all;
    }();
    return types;
}

const orlenta_type_entry* entry_of(const asn1_type_desc* type) {
    static const std::unordered_map<const asn1_type_desc*, const orlenta_type_entry*> index = [] {
        std::unordered_map<const asn1_type_desc*, const orlenta_type_entry*> entries;
        for (const orlenta_type_entry& entry : all_types()) entries.emplace(entry.type, &entry);
        return entries;
    }();
    auto found = index.find(type);
    return found == index.end() ? nullptr : found->second;
}

// ---- full names -------------------------------------------------------------------------------------------

bool is_named(const orlenta_type_entry& entry) { return entry.name[0] != '\0'; }

// Whether the region has types of that name in several modules.
static bool is_shared_name(const orlenta_type_entry& entry) {
    static const std::set<std::pair<std::string_view, std::string_view>> shared = [] {
        std::set<std::pair<std::string_view, std::string_view>> seen, twice;
        for (const orlenta_type_entry& each : all_types())
            if (is_named(each) && !seen.emplace(each.region, each.name).second)
                twice.emplace(each.region, each.name);
        return twice;
    }();
    return shared.contains({entry.region, entry.name});
}

std::string full_name(const orlenta_type_entry& entry) {
    std::string start = entry.region[0] ? fmt::format("{}.", entry.region) : "";
    if (!is_named(entry)) return start + entry.table;
    bool needs_module = start.empty() ? entry.module[0] != '\0' : is_shared_name(entry);
    return needs_module ? fmt::format("{}{}.{}", start, entry.module, entry.name) : start + entry.name;
}

// ---- nearest names ----------------------------------------------------------------------------------------

static std::string nearest_names(const std::vector<std::string>& parts) {
    const std::string wanted = folded(parts.back());
    const std::string region = parts.size() > 1 ? folded(parts[0]) : "";
    struct Candidate {
        size_t distance;
        std::string name;
    };
    std::vector<Candidate> candidates;
    for (const orlenta_type_entry& entry : all_types()) {
        size_t other_region = !region.empty() && region != folded(entry.region);
        size_t distance = edit_distance(wanted, folded(is_named(entry) ? entry.name : entry.table));
        if (distance <= std::max<size_t>(2, wanted.size() / 3))
            candidates.push_back({2 * distance + other_region, full_name(entry)});
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.distance < b.distance; });
    std::string names;
    for (size_t i = 0; i < std::min<size_t>(3, candidates.size()); ++i)
        names += (i ? ", " : "") + candidates[i].name;
    return names;
}

// ---- looking up -------------------------------------------------------------------------------------------

// [Region.][Module.]Type, cut at the points; an asn1_type_ name is its region and the rest.
static std::vector<std::string> split_name(const std::string& name) {
    static constexpr std::string_view prefix = "asn1_type_";
    if (name.starts_with(prefix))
        for (size_t i = 0; i < orlenta_catalogue_region_count(used_catalogue()); ++i) {
            const char* region = orlenta_catalogue_region(used_catalogue(), i);
            std::string start = fmt::format("{}{}_", prefix, region);
            if (name.starts_with(start)) return {region, name.substr(start.size())};
        }
    std::vector<std::string> parts(1);
    for (char c : name) {
        if (c == '.')
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

// Names as they stand, or in any case and with hyphen and underscore alike.
static bool are_same(bool exactly, std::string_view a, std::string_view b) {
    return exactly ? a == b : a.size() == b.size() && folded(a) == folded(b);
}

static bool is_called(const std::vector<std::string>& parts, bool exactly, const orlenta_type_entry& entry) {
    const std::string& type = parts.back();
    if (!are_same(exactly, type, entry.name) && !are_same(exactly, type, entry.table)) return false;
    bool is_region = are_same(exactly, parts[0], entry.region);
    switch (parts.size()) {
        case 1: return true;
        case 2: return is_region || are_same(exactly, parts[0], entry.module);
        case 3: return is_region && are_same(exactly, parts[1], entry.module);
        default: return false;
    }
}

static std::vector<const orlenta_type_entry*> types_called(const std::vector<std::string>& parts,
                                                           bool exactly) {
    std::vector<const orlenta_type_entry*> found;
    for (const orlenta_type_entry& entry : all_types())
        if (is_called(parts, exactly, entry)) found.push_back(&entry);
    return found;
}

const orlenta_type_entry* find_type(const std::string& name, std::string* problem) {
    const std::vector<std::string> parts = split_name(name);
    std::vector<const orlenta_type_entry*> found = types_called(parts, true);
    if (found.empty()) found = types_called(parts, false);
    if (found.size() == 1) return found[0];

    std::string names;
    if (found.empty()) {
        names = nearest_names(parts);
        *problem = names.empty() ? fmt::format("no type is named {}; see orlenta types", name)
                                 : fmt::format("no type is named {}; the nearest: {}", name, names);
    } else {
        for (const orlenta_type_entry* type : found) names += (names.empty() ? "" : ", ") + full_name(*type);
        *problem = fmt::format("several types are named {}: {}", name, names);
    }
    return nullptr;
}

}  // namespace cli
