// SPDX-License-Identifier: Apache-2.0
// The resolved schema: what the front end hands to layout and emitters. Every reference is resolved, every
// parameterised type is instantiated, every bound is a number. Source order is kept everywhere.
#pragma once

#include <boost/multiprecision/cpp_int.hpp>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "compiler/model/place.hpp"
#include "compiler/model/unit.hpp"

namespace orlentac {

using Number = boost::multiprecision::cpp_int;

enum class Kind {
    sequence,
    sequence_of,
    set,
    set_of,
    choice,
    integer,
    boolean,
    bit_string,
    octet_string,
    enumerated,
    null,
    object_identifier,
    relative_oid,
    real,
    char_string,
    open_type,  // a field of class type under a table constraint, or ANY-like
    reference,  // to a named type; `target` says which
};

// As messages and comments name it: "SEQUENCE OF".
std::string_view kind_name(Kind kind);

// As word 1 of a CHAR_STRING descriptor.
enum class StringKind {
    numeric,
    printable,
    visible,
    ia5,
    bmp,
    universal,
    utf8,
    general,
    graphic,
    teletex,
    videotex
};

std::string_view string_kind_name(StringKind kind);

// Effective bounds of a value or of a size; an absent one is MIN or MAX. A size without constraint has neither.
struct Bounds {
    std::optional<Number> lower;
    std::optional<Number> upper;
    bool extensible = false;  // the constraint has the extension marker
};

struct CodeRange {
    uint32_t first = 0;
    uint32_t last = 0;
};

struct NamedNumber {
    std::string name;
    Number value;
    Place place;
};

struct Type;
struct NamedType;
struct ObjectClass;
struct MemberValue;

// A tag, X.680 clause 31.
struct Tag {
    uint32_t word = 0;  // class and number, as in a descriptor
    bool is_explicit = false;
    bool is_automatic = false;  // given by AUTOMATIC TAGS
    bool on_parameter = false;  // stands directly before a dummy reference
    Place place;
};

// A resolved DEFAULT or object-set value; `enumerated` and identifiers are resolved to the item's index.
struct Value {
    // constructed: of a SEQUENCE, SET, CHOICE, a list or an open type
    enum class Sort {
        boolean,
        number,
        item,
        null,
        bits,
        octets,
        text,
        real,
        oid,
        constructed
    } sort = Sort::null;
    bool boolean = false;
    Number number;         // number
    double real = 0;       // real
    size_t item = 0;       // index of the ENUMERATED item in the type's list
    std::string bytes;     // octets; bits (first bit is bit 7 of the first byte); text; OID contents octets
    size_t bit_count = 0;  // bits
    // constructed: the alternative, or the components, by name; of others the text in `bytes` is all that is known
    std::vector<MemberValue> members;
    Place place;
};

struct MemberValue {
    std::string name;
    Value value;
};

enum class Presence { mandatory, optional, defaulted };

// A component of a SEQUENCE or SET: those of the root first, then the additions.
struct Component {
    std::string name;
    Type* type = nullptr;
    Presence presence = Presence::mandatory;
    std::optional<Value> default_value;
    std::string default_text;   // as written
    bool addition = false;      // extension addition
    bool opens_group = false;   // first member of an extension addition group
    bool closes_group = false;  // last member; a group of one has both
    Place place;
};

struct Alternative {
    std::string name;
    Type* type = nullptr;
    bool addition = false;  // behind the extension marker; root alternatives come first, in canonical order
    Place place;
};

struct Item {
    std::string name;
    Number value;
    bool addition = false;  // root items come first in the list
    Place place;
};

struct ClassField {
    std::string name;  // with the ampersand
    bool is_type_field = false;
    Type* type = nullptr;  // a value field's type; a type field's default type or null
    bool unique = false;
    std::optional<Value> default_value;
};

struct ObjectClass {
    std::string name;
    std::string module;
    std::vector<ClassField> fields;
    Place place;
};

// One row: an entry per class field, either a value or a type; neither stands for the class's default.
struct RowEntry {
    std::optional<Value> value;
    Type* type = nullptr;
};
struct ObjectSet {
    std::string name;  // empty for one in place
    ObjectClass* object_class = nullptr;
    bool extensible = false;
    std::vector<std::vector<RowEntry>> rows;
    Place place;
};

// The relation of an open type to a key component (X.682 clause 10).
struct Selector {
    int levels_up = 0;      // SEQUENCEs to go up from the innermost one
    std::vector<int> path;  // component indices
    int column = 0;         // class field that the component equals
};
struct TableConstraint {
    ObjectSet* object_set = nullptr;
    int column = 0;  // class field that gives the open type
    std::vector<Selector> selectors;
};

struct Type {
    Kind kind = Kind::null;
    Place place;

    // Before the kind's own tag, or before those of the type referred to: outermost first, automatic ones among them.
    // When all is resolved, only the innermost can be implicit.
    std::vector<Tag> tags;

    NamedType* target =
        nullptr;  // reference (never carries constraints: a constrained reference is resolved into
                  // the constrained type itself, with `from` set)
    NamedType* from =
        nullptr;  // the named type that this one constrains in place, e.g. ITIScodes (523..541); a
                  // constraint that leaves no trace, e.g. WITH COMPONENTS, leaves a plain reference

    Bounds bounds;            // integer: values; strings, sequence_of, set_of: sizes
    bool extensible = false;  // sequence, set, choice, enumerated: the extension marker is there

    std::vector<Component> components;      // sequence, set
    std::vector<Alternative> alternatives;  // choice
    std::vector<Item> items;                // enumerated
    Type* element = nullptr;                // sequence_of, set_of
    std::string element_name;               // sequence_of, set_of: the identifier, if the schema gives one

    StringKind string_kind = StringKind::utf8;
    std::vector<CodeRange> alphabet;         // effective permitted alphabet, ascending, types 0 to 5
    std::optional<uint32_t> universal_tag;   // if it differs from the kind's own, e.g. 24 for GeneralizedTime
    std::vector<NamedNumber> named_numbers;  // integer: named numbers; bit_string: named bits
    const Unit* unit = nullptr;              // integer, real; in the schema's pool
    Type* contained = nullptr;               // CONTAINING
    std::optional<TableConstraint> table;    // open_type
    ObjectClass* fixed_from = nullptr;       // the type was written CLASS.&field: which class
    int fixed_column = 0;                    // and which field of it
};

// A type assignment, or an instance of a parameterised type. References name the alias where the schema does: that
// list elements, object set rows and contents then mean the type behind it is left to the layout. Name ::= Other {X}
// is the type that the instance makes, under its own name; an instance in place is one NamedType for each use, and
// exists only for SEQUENCE, SET, lists, CHOICE and ENUMERATED: of other kinds it is an anonymous type.
struct NamedType {
    std::string name;  // schema name with its hyphens; for an instance that of the parameterised type
    std::string module;
    std::string about;  // the first paragraph of the comment above it
    Type* type = nullptr;
    bool is_instance = false;  // a numbered instance of a parameterised type: exported as name_k
    bool is_alias =
        false;  // `type` is a plain reference: Name ::= OtherName, without a tag or a constraint that
                // leaves a trace
    Place place;
};

struct ValueAssignment {
    std::string name;
    Type* type = nullptr;
    Value value;
    Place place;
};

// One region: several modules, in the order in which the files were given.
struct Schema {
    bool shipped_forms = false;  // see SchemaOptions
    std::vector<std::string> modules;
    std::vector<NamedType*> types;      // schema order: file order, then source order
    std::vector<NamedType*> instances;  // of parameterised types, in order of first use
    std::vector<ObjectClass*> classes;
    std::vector<ValueAssignment> values;

    // Everything above points into these.
    std::deque<Type> type_pool;
    std::deque<NamedType> named_pool;
    std::deque<ObjectClass> class_pool;
    std::deque<ObjectSet> set_pool;
    std::deque<Unit> unit_pool;
    std::deque<std::string> file_names;
};

}  // namespace orlentac
