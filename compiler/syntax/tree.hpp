// SPDX-License-Identifier: Apache-2.0
// What the parser makes of the text: names are words yet, and what stands in braces where only the governor can tell
// its meaning (objects, object sets, values, actual parameters) is kept as a run of tokens.
#pragma once

#include <deque>
#include <set>
#include <string>
#include <vector>

#include "compiler/model/diagnostics.hpp"
#include "compiler/model/model.hpp"
#include "compiler/model/tags.hpp"
#include "compiler/syntax/lexer.hpp"

namespace orlentac {

struct AstType;
struct Scope;  // of the resolver

// Name or Module.Name, with actual parameters if it is of something parameterised.
struct AstReference {
    std::string module;
    std::string name;
    bool has_actuals = false;
    std::vector<TokenRange> actuals;
    Place place;
};

struct AstValue {
    enum class Sort { number, real, boolean, null, bits, hex, text, reference, braces, choice, from_object };
    Sort sort = Sort::null;
    Number number;
    double real = 0;
    bool boolean = false;
    std::string text;  // bits, hex, text; the alternative's name
    AstReference
        reference;  // a value's name, or that of an item, named number or named bit; from_object: the object
    std::vector<std::string> fields;  // from_object: object.&object.&value
    TokenRange braces;                // behind the opening brace up to the closing one
    AstValue* inner = nullptr;
    Place place;
};

// X.682 clause 10: "@a.b" counts from the outermost SEQUENCE (0 dots), "@.a" from the innermost one.
struct AstAtNotation {
    int dots = 0;
    std::vector<std::string> names;
    Place place;
};

struct AstConstraint {
    enum class Sort {
        range,  // a single value has both ends equal; null is MIN or MAX
        size,
        alphabet,
        contained_subtype,
        contents,  // CONTAINING
        braces,    // {Set} or {Set}{@key}, or a value in braces
        no_trace,  // WITH COMPONENT(S), PATTERN, CONSTRAINED BY, ENCODED BY, SETTINGS
        all_of,    // intersection
        any_of,    // union
        except,    // parts: what stays, or nothing for ALL EXCEPT
    };
    Sort sort = Sort::no_trace;
    bool extensible = false;
    AstValue* lower = nullptr;
    AstValue* upper = nullptr;
    bool lower_open = false;  // 1<..5
    bool upper_open = false;
    AstType* type = nullptr;            // contained_subtype, contents
    std::vector<AstConstraint*> parts;  // size, alphabet: one
    TokenRange braces;
    std::vector<AstAtNotation> keys;
    const Scope* scope = nullptr;  // of its names, if it is an actual parameter
    Place place;
};

struct AstComponent {
    std::string name;
    AstType* type = nullptr;
    Presence presence = Presence::mandatory;
    AstValue* default_value = nullptr;
    bool components_of = false;  // COMPONENTS OF type
    bool addition = false;
    int group = 0;  // number of the version brackets within the type, 0 outside of any
    Place place;
};

// Item of an ENUMERATED, named number, named bit.
struct AstItem {
    std::string name;
    AstValue* value = nullptr;
    bool addition = false;
    Place place;
};

struct AstTag {
    enum class Mode { by_default, is_implicit, is_explicit };
    TagClass tag_class = TagClass::context;
    AstValue* number = nullptr;
    Mode mode = Mode::by_default;
    Place place;
};

struct AstType {
    enum class Sort { builtin, reference, class_field, selection };
    Sort sort = Sort::builtin;
    Kind kind = Kind::null;                     // builtin
    StringKind string_kind = StringKind::utf8;  // builtin char_string
    std::optional<uint32_t> universal_tag;      // builtin of a tag that is not the kind's own
    AstReference reference;                // reference; class_field: the class, an object or an object set
    std::vector<std::string> fields;       // class_field: CLASS.&objects.&Type
    std::string alternative;               // selection
    std::vector<AstTag> tags;              // outermost first
    std::vector<AstComponent> components;  // sequence, set, choice
    std::vector<AstItem> items;            // enumerated, integer, bit_string
    AstType* inner = nullptr;              // element; selection: the CHOICE
    std::string element_name;
    bool extensible = false;
    std::vector<AstConstraint*> constraints;  // in the order in which they apply
    std::optional<Unit> unit;
    Place place;
};

struct AstField {
    enum class Sort {
        type,
        value,           // of a fixed type, or an object
        set,             // of values of a fixed type, or of objects
        variable_value,  // of the type that another field of the object gives
        variable_set,
    };
    Sort sort = Sort::type;
    std::string name;
    AstType* type = nullptr;  // of values; the class of objects; a type field's default type or null
    AstValue* default_value = nullptr;
    TokenRange default_set;  // behind the opening brace up to the closing one
    bool has_default_set = false;
    bool unique = false;
    bool optional = false;
    Place place;
};

// WITH SYNTAX: words and fields in order, and parts that may be left out.
struct AstSyntax {
    enum class Sort { literal, field, optional_group };
    Sort sort = Sort::literal;
    std::string text;
    std::vector<AstSyntax> group;
};

struct AstClass {
    std::vector<AstField> fields;
    bool has_syntax = false;
    std::vector<AstSyntax> syntax;
};

struct AstParameter {
    AstType* governor = nullptr;  // a type or a class; null for a type or class parameter
    std::string name;
    Place place;
};

struct AstAssignment {
    enum class Sort {
        type,   // or another name of a class
        value,  // or an object
        set,    // value set or object set
        object_class,
        broken,  // not understood; the name is known, so that its users are spared an error
    };
    Sort sort = Sort::broken;
    std::string name;
    std::vector<AstParameter> parameters;
    bool has_parameters = false;
    AstType* type = nullptr;  // the type itself or the governor
    AstValue* value = nullptr;
    TokenRange braces;  // set: as in AstValue
    AstClass* object_class = nullptr;
    std::string about;  // the comment above it
    Place place;
};

struct AstSymbol {
    std::string name;
    Place place;
};

struct AstImport {
    std::vector<AstSymbol> symbols;
    AstSymbol module;
};

struct AstModule {
    std::string name;
    std::string tags;  // "AUTOMATIC", "EXPLICIT", "IMPLICIT" or nothing
    bool extensibility_implied = false;
    bool exports_all = true;
    std::vector<AstSymbol> exports;
    std::vector<AstImport> imports;
    std::vector<AstAssignment*> assignments;
    Place place;
    Place tags_place;
};

// Owns all nodes. Deques, so that pointers stay.
struct Ast {
    std::deque<std::vector<Token>> files;
    std::deque<AstModule> modules;
    std::deque<AstAssignment> assignments;
    std::deque<AstType> types;
    std::deque<AstValue> values;
    std::deque<AstConstraint> constraints;
    std::deque<AstClass> classes;
    std::set<std::string> useful_types;  // EXTERNAL and the like, as far as they occur
    std::vector<Diagnostic> notes;       // of what has another effect than its writer may think
};

}  // namespace orlentac
