// SPDX-License-Identifier: Apache-2.0
// types, show, roots: the commands that tell what types there are.
#include <fmt/format.h>
#include <fnmatch.h>
#include <orlenta/value.h>

#include <algorithm>
#include <cctype>
#include <unordered_set>

#include "cli/commands.hpp"
#include "cli/notation.hpp"
#include "cli/references.hpp"
#include "cli/registry.hpp"
#include "core/descriptor.hpp"

namespace cli {

// A pattern with wildcards must match the whole name, one without may match a part. Case makes no difference.
static bool matches(const std::string& pattern, const std::string& name) {
    bool glob = pattern.find_first_of("*?[") != std::string::npos;
    return fnmatch((glob ? pattern : "*" + pattern + "*").c_str(), name.c_str(), FNM_CASEFOLD) == 0;
}

int run_types(const TypesOptions& options) {
    struct Row {
        std::string name, summary;
        int64_t size;
    };
    std::vector<Row> rows;
    size_t name_width = 0, summary_width = 0;
    for (const Region& region : all_regions())
        for (const Entry& entry : region.entries) {
            std::string name = full_name(region, entry);
            if ((!options.all && !is_listed(entry)) || !matches(options.pattern, name)) continue;
            bool has_values = orlenta::kind_of(entry.type) != ASN1_KIND_OBJECT_CLASS;
            rows.push_back({name, summary_text(entry.type), has_values ? asn1_get_size(entry.type) : -1});
            name_width = std::max(name_width, name.size());
            summary_width = std::max(summary_width, std::min<size_t>(rows.back().summary.size(), 60));
        }
    for (const Row& row : rows) {
        fmt::print("{:<{}}  {}", row.name, name_width, row.summary);
        if (row.size >= 0) {
            size_t gap = summary_width - std::min(summary_width, row.summary.size());
            fmt::print("{:{}}  {} byte{}", "", gap, row.size, row.size == 1 ? "" : "s");
        }
        fmt::print("\n");
    }
    if (!rows.empty()) return kDone;
    report(fmt::format("no type matches {}", options.pattern));
    return kBadInput;
}

// The named types that a definition mentions: directly, or in the types in place inside it.
static void collect_mentioned(const asn1_type_desc* type, std::vector<const Entry*>* mentioned) {
    for (const asn1_type_desc* referred : referred_types(type)) {
        const Entry* entry = entry_of(referred);
        if (entry && is_named(*entry))
            mentioned->push_back(entry);
        else
            collect_mentioned(referred, mentioned);
    }
}

int run_show(const ShowOptions& options) {
    std::string problem;
    Type root = find_type(options.type, &problem);
    if (!root.entry) {
        report(problem);
        return kBadUsage;
    }
    std::vector<const Entry*> level = {root.entry};
    std::unordered_set<const Entry*> seen = {root.entry};
    for (unsigned depth = 0; !level.empty(); ++depth) {
        std::vector<const Entry*> next;
        for (const Entry* entry : level) {
            fmt::print("{}{}", entry == root.entry ? "" : "\n", definition_text(*entry));
            if (depth >= options.depth) continue;
            std::vector<const Entry*> mentioned;
            collect_mentioned(entry->type, &mentioned);
            for (const Entry* each : mentioned)
                if (seen.insert(each).second) next.push_back(each);
        }
        level = std::move(next);
    }
    return kDone;
}

int run_roots(const std::string& name) {
    const Region* region = find_region(name);
    if (!region) {
        std::string names;
        for (const Region& each : all_regions())
            names += fmt::format("{}{}", names.empty() ? "" : ", ", each.name);
        report(fmt::format("no region is named {}; there are: {}", name, names));
        return kBadUsage;
    }
    std::unordered_set<const asn1_type_desc*> referred;
    for (const Entry& entry : region->entries)
        for (const asn1_type_desc* type : referred_types(entry.type))
            if (type != entry.type) referred.insert(type);
    for (const Entry& entry : region->entries)
        if (is_listed(entry) && !referred.contains(entry.type)) fmt::print("{}\n", full_name(*region, entry));
    return kDone;
}

}  // namespace cli
