// SPDX-License-Identifier: Apache-2.0
#include "cli/registry.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <numeric>
#include <set>
#include <unordered_map>

#include "cli/regions.hpp"

#define REGION_DECLARATION(name)                                     \
    extern const orlenta_catalogue_entry orlenta_catalogue_##name[]; \
    extern const size_t orlenta_catalogue_##name##_count;
#define REGION_ROW(name) {#name, {orlenta_catalogue_##name, orlenta_catalogue_##name##_count}},

CLI_REGIONS(REGION_DECLARATION)

namespace cli {

static std::vector<Region>& regions() {
    static std::vector<Region> all = {CLI_REGIONS(REGION_ROW)};
    return all;
}

std::span<const Region> all_regions() { return regions(); }

void replace_regions(const Region& region) { regions() = {region}; }

const Region* find_region(std::string_view name) {
    for (const Region& region : all_regions())
        if (name == region.name) return &region;
    return nullptr;
}

bool is_named(const Entry& entry) { return entry.name[0] != '\0'; }

bool is_listed(const Entry& entry) { return std::string_view(entry.table).substr(0, 7) != "_local_"; }

// Whether the region has types of that name in several modules.
static bool is_shared_name(const Region& region, const Entry& entry) {
    static const std::set<std::pair<std::string_view, std::string_view>> shared = [] {
        std::set<std::pair<std::string_view, std::string_view>> seen, twice;
        for (const Region& each : all_regions())
            for (const Entry& one : each.entries)
                if (is_named(one) && !seen.emplace(each.name, one.name).second)
                    twice.emplace(each.name, one.name);
        return twice;
    }();
    return shared.contains({region.name, entry.name});
}

std::string full_name(const Region& region, const Entry& entry) {
    std::string start = region.name[0] ? fmt::format("{}.", region.name) : "";
    if (!is_named(entry)) return start + entry.table;
    bool needs_module = start.empty() ? entry.module[0] != '\0' : is_shared_name(region, entry);
    return needs_module ? fmt::format("{}{}.{}", start, entry.module, entry.name) : start + entry.name;
}

// ---- nearest names ----------------------------------------------------------------------------------------

static std::string folded(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        c = c == '_' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

// How many characters must be put in, taken out or changed to get from `a` to `b`.
static size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            size_t change = diagonal + (a[i - 1] != b[j - 1]);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, change});
        }
    }
    return row.back();
}

// [Region.][Module.]Type, cut at the points; an asn1_type_ name is its region and the rest.
static std::vector<std::string> split_name(const std::string& name) {
    static constexpr std::string_view prefix = "asn1_type_";
    if (name.starts_with(prefix))
        for (const Region& region : all_regions()) {
            std::string start = fmt::format("{}{}_", prefix, region.name);
            if (name.starts_with(start)) return {region.name, name.substr(start.size())};
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

static bool is_called(const std::vector<std::string>& parts, bool exactly, const Region& region,
                      const Entry& entry) {
    const std::string& type = parts.back();
    if (!are_same(exactly, type, entry.name) && !are_same(exactly, type, entry.table)) return false;
    bool is_region = are_same(exactly, parts[0], region.name);
    switch (parts.size()) {
        case 1: return true;
        case 2: return is_region || are_same(exactly, parts[0], entry.module);
        case 3: return is_region && are_same(exactly, parts[1], entry.module);
        default: return false;
    }
}

static std::vector<Type> types_called(const std::vector<std::string>& parts, bool exactly) {
    std::vector<Type> found;
    for (const Region& region : all_regions())
        for (const Entry& entry : region.entries)
            if (is_called(parts, exactly, region, entry)) found.push_back({&region, &entry});
    return found;
}

static std::string nearest_names(const std::string& region_name, const std::string& rest) {
    const std::string wanted = folded(rest);
    struct Candidate {
        size_t distance;
        std::string name;
    };
    std::vector<Candidate> candidates;
    for (const Region& region : all_regions()) {
        size_t other_region = !region_name.empty() && folded(region_name) != folded(region.name);
        for (const Entry& entry : region.entries) {
            if (!is_listed(entry)) continue;
            size_t distance = edit_distance(wanted, folded(is_named(entry) ? entry.name : entry.table));
            if (distance <= std::max<size_t>(2, wanted.size() / 3))
                candidates.push_back({2 * distance + other_region, full_name(region, entry)});
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.distance < b.distance; });
    std::string names;
    for (size_t i = 0; i < std::min<size_t>(3, candidates.size()); ++i)
        names += (i ? ", " : "") + candidates[i].name;
    return names;
}

Type find_type(const std::string& name, std::string* problem) {
    const std::vector<std::string> parts = split_name(name);
    std::vector<Type> found = types_called(parts, true);
    if (found.empty()) found = types_called(parts, false);
    if (found.size() == 1) return found[0];

    std::string names;
    if (found.empty()) {
        names = nearest_names(parts.size() > 1 ? parts[0] : "", parts.back());
        *problem = names.empty() ? fmt::format("no type is named {}; see orlenta types", name)
                                 : fmt::format("no type is named {}; the nearest: {}", name, names);
    } else {
        for (const Type& type : found)
            names += (names.empty() ? "" : ", ") + full_name(*type.region, *type.entry);
        *problem = fmt::format("several types are named {}: {}", name, names);
    }
    return {};
}

const Entry* entry_of(const asn1_type_desc* type) {
    static const std::unordered_map<const asn1_type_desc*, const Entry*> index = [] {
        std::unordered_map<const asn1_type_desc*, const Entry*> entries;
        for (const Region& region : all_regions())
            for (const Entry& entry : region.entries) entries.emplace(entry.type, &entry);
        return entries;
    }();
    auto found = index.find(type);
    return found == index.end() ? nullptr : found->second;
}

}  // namespace cli
