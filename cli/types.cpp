// SPDX-License-Identifier: Apache-2.0
// types, show, roots: the commands that tell what types there are.
#include <fmt/format.h>
#include <fnmatch.h>

#include <algorithm>
#include <cctype>
#include <unordered_set>

#include "cli/commands.hpp"
#include "cli/notation.hpp"
#include "cli/references.hpp"
#include "cli/type_names.hpp"

namespace cli {

static bool has_wildcards(const std::string& pattern) {
    return pattern.find_first_of("*?[") != std::string::npos;
}

// A pattern with wildcards must match the whole name, one without may match a part. Case makes no difference.
static bool matches(const std::string& pattern, const std::string& name) {
    bool glob = has_wildcards(pattern);
    return fnmatch((glob ? pattern : "*" + pattern + "*").c_str(), name.c_str(), FNM_CASEFOLD) == 0;
}

int run_types(const std::string& pattern) {
    struct Row {
        std::string name, summary;
        uint64_t size;
    };
    std::vector<Row> rows;
    size_t name_width = 0, summary_width = 0;
    for (const orlenta_type_entry& entry : all_types()) {
        std::string name = full_name(entry);
        if (!matches(pattern, name)) continue;
        orlenta_type_facts facts;
        orlenta_type_describe(entry.type, &facts);
        rows.push_back({name, summary_text(entry.type), facts.record_size});
        name_width = std::max(name_width, name.size());
        summary_width = std::max(summary_width, std::min<size_t>(rows.back().summary.size(), 60));
    }
    for (const Row& row : rows) {
        fmt::print("{:<{}}  {}", row.name, name_width, row.summary);
        if (row.size > 0) {
            size_t gap = summary_width - std::min(summary_width, row.summary.size());
            fmt::print("{:{}}  {} byte{}", "", gap, row.size, row.size == 1 ? "" : "s");
        }
        fmt::print("\n");
    }
    if (!rows.empty()) return kDone;
    report(fmt::format("no type matches {}", pattern));
    return kBadInput;
}

// The named types that a definition mentions: directly, or in the types in place inside it.
static void collect_mentioned(const asn1_type_desc* type, std::vector<const orlenta_type_entry*>* mentioned) {
    for (const asn1_type_desc* referred : referred_types(type)) {
        const orlenta_type_entry* entry = entry_of(referred);
        if (entry && is_named(*entry))
            mentioned->push_back(entry);
        else
            collect_mentioned(referred, mentioned);
    }
}

// The type of a name, or the named types that match a pattern; none if a line on standard error tells why.
static std::vector<const orlenta_type_entry*> shown_types(const std::string& name) {
    std::vector<const orlenta_type_entry*> types;
    std::string problem;
    if (has_wildcards(name)) {
        for (const orlenta_type_entry& entry : all_types())
            if (is_named(entry) && matches(name, full_name(entry))) types.push_back(&entry);
        problem = fmt::format("no type matches {}", name);
    } else if (const orlenta_type_entry* type = find_type(name, &problem)) {
        types.push_back(type);
    }
    if (types.empty()) report(problem);
    return types;
}

int run_show(const ShowOptions& options) {
    std::vector<const orlenta_type_entry*> level = shown_types(options.type);
    if (level.empty()) return kBadUsage;
    std::unordered_set<const orlenta_type_entry*> seen(level.begin(), level.end());
    const char* gap = "";
    for (unsigned depth = 0; !level.empty(); ++depth) {
        std::vector<const orlenta_type_entry*> next;
        for (const orlenta_type_entry* entry : level) {
            fmt::print("{}{}", gap, definition_text(*entry));
            gap = "\n";
            if (depth >= options.depth) continue;
            std::vector<const orlenta_type_entry*> mentioned;
            collect_mentioned(entry->type, &mentioned);
            for (const orlenta_type_entry* each : mentioned)
                if (seen.insert(each).second) next.push_back(each);
        }
        level = std::move(next);
    }
    return kDone;
}

int run_roots(const std::string& region) {
    std::string names;
    bool is_known = false;
    for (size_t i = 0; i < orlenta_catalogue_region_count(used_catalogue()); ++i) {
        const char* each = orlenta_catalogue_region(used_catalogue(), i);
        names += fmt::format("{}{}", names.empty() ? "" : ", ", each);
        is_known |= region == each;
    }
    if (!is_known) {
        report(fmt::format("no region is named {}; there are: {}", region, names));
        return kBadUsage;
    }
    for (const orlenta_type_entry& entry : all_types())
        if (entry.is_root && region == entry.region) fmt::print("{}\n", full_name(entry));
    return kDone;
}

}  // namespace cli
