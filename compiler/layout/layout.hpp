// SPDX-License-Identifier: Apache-2.0
// From the model to tables: the words of every descriptor and constant of a region, under their names.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "compiler/model/diagnostics.hpp"
#include "compiler/model/model.hpp"

namespace orlentac {

struct Table;
struct Object;

struct Word {
    enum class Sort { number, table, text, object } sort = Sort::number;
    uint64_t number = 0;
    const Table* table = nullptr;
    const Object* object = nullptr;
    std::string text = {};
};

// A constant that a descriptor points at: a constraint object, the rows of an object set, or a value.
struct Object {
    // record: a structured value, word by word; octets: what a value in a record points at
    enum class Sort { constraint, rows, value, record, octets } sort = Sort::constraint;
    uint32_t local = 0;       // the number in its name
    std::vector<Word> words;  // constraint, rows, record
    Value value;              // value, in the layout of `type`; octets
    const Type* type = nullptr;
};

// A component, an alternative, or a list's element, as the table tells it.
struct Part {
    std::string name;
    const Type* type = nullptr;
    const Table* table = nullptr;
    size_t offset_word = 0;  // component: index of the word with the offset
    size_t extra_word = 0;   // component: index of the word with the presence word's offset
    bool has_presence = false;
};

// A descriptor.
struct Table {
    enum class Class { named, nested, anonymous } table_class = Class::named;
    std::string symbol;          // without "asn1_type_": CN_Latitude, US_Lpn_1, EU__local_17
    std::string name;            // the schema's, for a named one
    std::string module;          // of the type, or of the one around it
    std::string about;           // what the schema says of a named one
    const Type* type = nullptr;  // null for an OBJECT_CLASS; what is referred to for a TAGGED
    uint32_t kind = 0;           // ASN1_KIND_...
    std::vector<Word> words;
    std::vector<Part> parts;  // components, alternatives; one for a list's element or what a TAGGED holds
    std::vector<const Object*> objects;  // constants of this table alone, each before those that point at it
};

// Another name of a type.
struct Alias {
    std::string name;  // in C, behind the region
    const Table* table = nullptr;
    std::string schema_name = {};
    std::string module = {};
    std::string about = {};
};

struct Layout {
    std::string region;
    std::vector<const Table*> tables;  // schema order, nested ones before the type around them
    std::vector<const Table*> roots;   // named types that no other type refers to
    std::vector<Alias> aliases;        // type names without a table
    bool lists_aliases = true;         // the catalogue has them too
    std::deque<Table> table_pool;
    std::deque<Object> object_pool;
};

struct LayoutOptions {
    std::string region;
    uint32_t first_local = 1;   // the first number that an anonymous table or a constant gets
    bool module_names = false;  // every type has its module's name before its own
};

// False, with errors in `diags`, if something does not fit the format.
bool make_layout(const Schema& schema, const LayoutOptions& options, Layout& out, Diagnostics& diags);

// ---- reading a finished table -----------------------------------------------------------------------------

uint32_t word0(const Table& table);
// Offset of a component's value in its record, and of its presence word.
uint64_t part_offset(const Table& table, const Part& part);
uint64_t presence_offset(const Table& table, const Part& part);
// SEQUENCE, SET, CHOICE.
uint64_t record_size(const Table& table);
// SEQUENCE OF, SET OF: bytes of an element.
uint64_t stride(const Table& table);
// CHOICE.
uint64_t payload_offset(const Table& table);

}  // namespace orlentac
