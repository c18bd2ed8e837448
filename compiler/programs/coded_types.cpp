// SPDX-License-Identifier: Apache-2.0
#include "compiler/programs/coded_types.hpp"

#include <orlenta/type.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <unordered_map>

#include "program/format.hpp"

namespace orlentac {

namespace {

struct RuleName {
    const char* name;
    orlenta::program::rule rule;
};
constexpr RuleName kRules[] = {{"uper", orlenta::program::kUnaligned},
                               {"aper", orlenta::program::kAligned},
                               {"oer", orlenta::program::kOer}};
static_assert(std::size(kRules) == orlenta::program::kRuleCount);

struct Finder {
    const Layout& layout;
    Diagnostics& diags;
    std::unordered_map<const Table*, uint32_t> found;  // with their rules
    uint32_t rules = (1u << orlenta::program::kRuleCount) - 1;
};

// "Message-Frame" or "Message_Frame".
const Table* find_named(const Layout& layout, const std::string& name) {
    size_t behind_region = layout.region.size() + 1;
    for (const Table* table : layout.tables) {
        if (table->table_class != Table::Class::named) continue;
        if (table->name == name || table->symbol.substr(behind_region) == name) return table;
    }
    for (const Alias& alias : layout.aliases)
        if (alias.name == name) return alias.table;
    return nullptr;
}

void add_alternatives(Finder& finder, const Table& table) {
    for (const Part& part : table.parts) {
        for (const Table* inner = part.table; inner; inner = inner->parts[0].table) {
            finder.found[inner] |= finder.rules;
            if (inner->kind != ASN1_KIND_TAGGED) break;
        }
    }
}

void add_type(Finder& finder, std::string entry, Place place) {
    bool alternatives = entry.ends_with(".*");
    if (alternatives) entry.resize(entry.size() - 2);
    const Table* table = find_named(finder.layout, entry);
    if (!table) return error(finder.diags, place, "no type is named {}", entry);
    if (!alternatives) return void(finder.found[table] |= finder.rules);
    if (table->kind != ASN1_KIND_CHOICE) return error(finder.diags, place, "{} is no CHOICE", entry);
    add_alternatives(finder, *table);
}

void add_all(Finder& finder, const std::vector<const Table*>& tables) {
    for (const Table* table : tables) finder.found[table] |= finder.rules;
}

void choose_rules(Finder& finder, std::istringstream& names, Place place) {
    finder.rules = 0;
    std::string name;
    while (names >> name) {
        auto is_named = [&](const RuleName& rule) { return rule.name == name; };
        auto found = std::find_if(std::begin(kRules), std::end(kRules), is_named);
        if (found == std::end(kRules))
            error(finder.diags, place, "no rules of programs are named {}", name);
        else
            finder.rules |= 1u << found->rule;
    }
}

void add_entry(Finder& finder, const std::string& entry, Place place) {
    if (entry == "roots") return add_all(finder, finder.layout.roots);
    if (entry == "rows") return add_all(finder, row_types(finder.layout));
    add_type(finder, entry, place);
}

void add_line(Finder& finder, const std::string& line, Place place) {
    std::istringstream words(line);
    std::string entry, more;
    if (!(words >> entry)) return;
    if (entry == "rules") return choose_rules(finder, words, place);
    if (words >> more) return error(finder.diags, place, "an entry is one word, not {} {}", entry, more);
    add_entry(finder, entry, place);
}

void add_list(Finder& finder, const SourceText& list) {
    std::istringstream text(list.text);
    std::string line;
    for (int number = 1; std::getline(text, line); number++)
        add_line(finder, line.substr(0, line.find('#')), {&list.name, number, 1});
}

}  // namespace

std::vector<const Table*> row_types(const Layout& layout) {
    std::vector<const Table*> types;
    for (const Table* table : layout.tables)
        for (const Object* object : table->objects)
            for (const Word& word : object->words)
                if (object->sort == Object::Sort::rows && word.sort == Word::Sort::table)
                    types.push_back(word.table);
    return types;
}

std::vector<CodedType> find_coded_types(const Layout& layout, const SourceText* list, Diagnostics& diags) {
    Finder finder = {layout, diags, {}};
    if (list) {
        add_list(finder, *list);
    } else {
        add_all(finder, layout.roots);
        add_all(finder, row_types(layout));
    }
    std::vector<CodedType> types;
    for (const Table* table : layout.tables) {
        auto found = finder.found.find(table);
        if (table->kind <= ASN1_KIND_ANY && found != finder.found.end())
            types.push_back({table, found->second});
    }
    return types;
}

}  // namespace orlentac
