// SPDX-License-Identifier: Apache-2.0
// What the files of the layout share: the tables under construction, and who makes which.
#pragma once

#include <orlenta/type.h>

#include <string>
#include <unordered_map>
#include <unordered_set>

#include "compiler/layout/layout.hpp"
#include "compiler/layout/records.hpp"
#include "compiler/model/references.hpp"

namespace orlentac {

struct Builder {
    const Schema& schema;
    Layout& out;
    Diagnostics& diags;
    References references;
    Records records;
    uint32_t next_local;
    std::unordered_map<const void*, std::string> names;  // of types and classes in C, behind the region
    std::unordered_map<const NamedType*, Table*> named;
    std::unordered_map<const ObjectClass*, Table*> classes;
    std::unordered_map<std::string, int> nested_count;  // by enclosing type
    std::unordered_set<std::string> symbols;
    std::string enclosing;  // C name of the type that nested tables are named after
    std::string module;     // and its module
};

// ---- layout.cpp: which table a reference means ------------------------------------------------------------

// The descriptor of a component, an alternative, an element or the like, with its tags; null for null. `in_place` makes
// even a referred type a descriptor of its own.
const Table* type_table(Builder& builder, const Type* type, bool in_place = false);

// ---- constants.cpp: what tables point at ------------------------------------------------------------------

const Object* add_object(Builder& builder, Table& table, Object object);
// Whether such a constant can be made.
bool is_constant(const Builder& builder, const Value& value, const Type& type);
// A constant in the layout of values of the type.
const Object* add_value(Builder& builder, Table& table, const Value& value, const Type& type);
const Object* add_number(Builder& builder, Table& table, const Number& number, const Type& type);

Word number_word(uint64_t number);
Word object_word(const Object* object);
// The 32-bit pattern of a number.
uint32_t pattern(const Number& number);

// ---- table_words.cpp: the words of a table ----------------------------------------------------------------

// Fill an empty table, whose name is set if it has one. `tag` is the one that stands in word 0; `type` says what a
// TAGGED holds, as `inner` may not be filled yet.
void fill_table(Builder& builder, Table& table, const Type& type, uint32_t tag);
void fill_tagged(Table& table, const Table* inner, const Type& type, uint32_t flags, uint32_t tag);
void fill_class(Builder& builder, Table& table, const ObjectClass& object_class);

}  // namespace orlentac
