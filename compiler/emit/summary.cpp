// SPDX-License-Identifier: Apache-2.0
#include "compiler/emit/summary.hpp"

#include <fmt/format.h>
#include <orlenta/type.h>

#include <algorithm>
#include <iterator>

namespace orlentac {

namespace {

constexpr const char* kKindNames[18] = {
    "SEQUENCE",          "SEQUENCE_OF",  "SET",          "SET_OF",      "CHOICE", "INTEGER",
    "BOOLEAN",           "BIT_STRING",   "OCTET_STRING", "ENUMERATED",  "NULL",   "TAGGED",
    "OBJECT_IDENTIFIER", "RELATIVE_OID", "REAL",         "CHAR_STRING", "ANY",    "OBJECT_CLASS"};

void count_object(Summary& summary, const Object& object) {
    switch (object.sort) {
        case Object::Sort::value:
        case Object::Sort::record:
        case Object::Sort::octets: summary.values++; break;
        case Object::Sort::rows: summary.rows++; break;
        case Object::Sort::constraint:
            if (object.words[0].number == ASN1_CONSTRAINT_TABLE)
                summary.table_constraints++;
            else
                summary.containing_constraints++;
    }
}

}  // namespace

Summary summarise(const Layout& layout) {
    Summary summary;
    for (const Table* table : layout.tables) {
        switch (table->table_class) {
            case Table::Class::named: summary.named++; break;
            case Table::Class::nested: summary.nested++; break;
            case Table::Class::anonymous: summary.anonymous++; break;
        }
        summary.kinds[table->kind]++;
        summary.words += table->words.size();
        summary.without_pointers +=
            std::all_of(table->words.begin(), table->words.end(),
                        [](const Word& word) { return word.sort == Word::Sort::number; });
        for (const Object* object : table->objects) count_object(summary, *object);
    }
    return summary;
}

std::string summary_text(const Summary& summary) {
    std::string text;
    auto put = [&](const char* what, size_t count) {
        fmt::format_to(std::back_inserter(text), "{:<24}{:>8}\n", what, count);
    };
    put("tables", summary.named + summary.nested + summary.anonymous);
    put("  named", summary.named);
    put("  nested", summary.nested);
    put("  anonymous", summary.anonymous);
    put("  without pointers", summary.without_pointers);
    put("words", summary.words);
    for (size_t kind = 0; kind < summary.kinds.size(); kind++)
        if (summary.kinds[kind] != 0) put(kKindNames[kind], summary.kinds[kind]);
    put("table constraints", summary.table_constraints);
    put("containing constraints", summary.containing_constraints);
    put("constant values", summary.values);
    put("row arrays", summary.rows);
    return text;
}

}  // namespace orlentac
