// SPDX-License-Identifier: Apache-2.0
#include "compiler/layout/catalogue.hpp"

#include <deque>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "compiler/model/references.hpp"

namespace orlentac {

using orlenta::catalogue::entry;

namespace {

// ---- names ------------------------------------------------------------------------------------------------

struct TextPool {
    std::string& texts;
    std::unordered_map<std::string, uint32_t> places;
};

uint32_t place_of(TextPool& pool, const std::string& text) {
    auto [at, is_new] = pool.places.try_emplace(text, static_cast<uint32_t>(pool.texts.size()));
    if (is_new) pool.texts.append(text).push_back('\0');
    return at->second;
}

// Where the name in C is another one, it stands behind that of the schema.
entry named_entry(TextPool& pool, const std::string& name, const std::string& table,
                  const std::string& module, const std::string& about) {
    entry made = {};
    made.module = place_of(pool, module);
    if (!about.empty()) made.about = place_of(pool, about);
    if (name == table) {
        made.name = place_of(pool, name);
        return made;
    }
    made.flags = orlenta::catalogue::kHasTableName;
    if (name.empty()) {  // the zero before it is the end of an empty text
        made.name = static_cast<uint32_t>(pool.texts.size()) - 1;
    } else {
        made.name = static_cast<uint32_t>(pool.texts.size());
        pool.texts.append(name).push_back('\0');
    }
    pool.texts.append(table).push_back('\0');
    return made;
}

// ---- ways -------------------------------------------------------------------------------------------------

struct Ways {
    CatalogueForm& out;
    std::vector<const Table*> listed;  // by entry
    std::unordered_map<const Table*, uint32_t> entries;
    std::vector<bool> has_way;
};

void add_pointer(Ways& ways, uint32_t index) {
    ways.out.entries[index].from = static_cast<uint32_t>(ways.out.types.size());
    ways.out.types.push_back(ways.listed[index]);
    ways.has_way[index] = true;
}

// From an entry that has a way to all that is reached from there, the shortest ways first.
void spread(Ways& ways, uint32_t start) {
    struct Reached {
        uint32_t index, length;
    };
    std::deque<Reached> waiting = {{start, 0}};
    for (; !waiting.empty(); waiting.pop_front()) {
        auto [index, length] = waiting.front();
        if (length == orlenta::catalogue::kLongestWay) continue;
        const std::vector<Word>& words = ways.listed[index]->words;
        for (size_t i = 1; i < words.size() && i <= UINT16_MAX; i++) {
            if (words[i].sort != Word::Sort::table) continue;
            auto found = ways.entries.find(words[i].table);
            if (found == ways.entries.end() || ways.has_way[found->second]) continue;
            ways.out.entries[found->second].from = index;
            ways.out.entries[found->second].word = static_cast<uint16_t>(i);
            ways.has_way[found->second] = true;
            waiting.push_back({found->second, length + 1});
        }
    }
}

// Pointers to what no listed table points at, and then to what is left: the ends of longer ways, and rings.
void find_ways(Ways& ways) {
    std::unordered_set<const Table*> reached;
    for (const Table* table : ways.listed)
        for (const Word& word : table->words)
            if (word.sort == Word::Sort::table && word.table != table) reached.insert(word.table);
    for (bool only_unreached : {true, false}) {
        for (uint32_t i = 0; i < ways.listed.size(); i++) {
            if (ways.has_way[i] || (only_unreached && reached.contains(ways.listed[i]))) continue;
            add_pointer(ways, i);
            spread(ways, i);
        }
    }
}

// By the way of the type that it stands for.
void add_alias(Ways& ways, TextPool& pool, const Alias& alias) {
    entry made = named_entry(pool, alias.schema_name, alias.name, alias.module, alias.about);
    auto target = ways.entries.find(alias.table);
    if (target != ways.entries.end()) {
        made.from = ways.out.entries[target->second].from;
        made.word = ways.out.entries[target->second].word;
    } else {
        made.from = static_cast<uint32_t>(ways.out.types.size());
        ways.out.types.push_back(alias.table);
    }
    ways.out.entries.push_back(made);
}

// ---- units ------------------------------------------------------------------------------------------------

uint32_t add_unit(CatalogueForm& out, TextPool& pool, const Unit& unit) {
    out.units.push_back({place_of(pool, unit.symbol), unit.scale, unit.offset, unit.digits,
                         out.specials.size(), unit.specials.size()});
    for (const SpecialNumbers& special : unit.specials) {
        int32_t is_limit = special.meaning == "orMore" ? 1 : special.meaning == "orLess" ? -1 : 0;
        out.specials.push_back({special.first, special.last, place_of(pool, special.meaning), is_limit});
    }
    return static_cast<uint32_t>(out.units.size() - 1);
}

using UnitPlace = orlenta::catalogue::unit_place;

// Types in place by the words of listed ones.
std::unordered_map<const Table*, UnitPlace> places_by_words(const Ways& ways) {
    std::unordered_map<const Table*, UnitPlace> places;
    for (uint32_t i = 0; i < ways.listed.size(); i++) {
        const std::vector<Word>& words = ways.listed[i]->words;
        for (size_t k = 1; k < words.size() && k < orlenta::catalogue::kByPointer; k++)
            if (words[k].sort == Word::Sort::table)
                places.try_emplace(words[k].table, UnitPlace{i, static_cast<uint16_t>(k), 0});
    }
    return places;
}

UnitPlace pointer_place(CatalogueForm& out, const Table* table) {
    out.types.push_back(table);
    return {static_cast<uint32_t>(out.types.size() - 1), orlenta::catalogue::kByPointer, 0};
}

void add_units(Ways& ways, TextPool& pool, const Layout& layout) {
    const std::unordered_map<const Table*, UnitPlace> by_words = places_by_words(ways);
    std::unordered_map<std::string, uint32_t> known;  // by what the schema says
    for (const Table* table : layout.tables) {
        if (table->kind != ASN1_KIND_INTEGER && table->kind != ASN1_KIND_REAL) continue;
        const Unit* unit = resolved(table->type)->unit;
        if (!unit) continue;
        auto [number, is_new] = known.try_emplace(unit->text, 0);
        if (is_new) number->second = add_unit(ways.out, pool, *unit);
        auto listed = ways.entries.find(table);
        auto by_word = by_words.find(table);
        UnitPlace place = listed != ways.entries.end() ? UnitPlace{listed->second, 0, 0}
                          : by_word != by_words.end()  ? by_word->second
                                                       : pointer_place(ways.out, table);
        place.unit = number->second;
        ways.out.unit_places.push_back(place);
    }
}

}  // namespace

CatalogueForm catalogue_form(const Layout& layout) {
    CatalogueForm out;
    TextPool pool = {out.texts, {}};
    place_of(pool, layout.region);
    Ways ways = {out, {}, {}, {}};
    std::unordered_set<const Table*> roots(layout.roots.begin(), layout.roots.end());
    for (const Table* table : layout.tables) {
        if (table->table_class == Table::Class::anonymous) continue;
        ways.entries.emplace(table, static_cast<uint32_t>(ways.listed.size()));
        ways.listed.push_back(table);
        out.entries.push_back(named_entry(pool, table->name, table->symbol.substr(layout.region.size() + 1),
                                          table->module, table->about));
        if (roots.contains(table)) out.entries.back().flags |= orlenta::catalogue::kIsRoot;
    }
    ways.has_way.resize(ways.listed.size());
    find_ways(ways);
    add_units(ways, pool, layout);
    if (layout.lists_aliases)
        for (const Alias& alias : layout.aliases) add_alias(ways, pool, alias);
    return out;
}

}  // namespace orlentac
