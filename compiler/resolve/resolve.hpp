// SPDX-License-Identifier: Apache-2.0
// From the syntax trees of a region to the model: what the parts of the resolver share.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "compiler/model/diagnostics.hpp"
#include "compiler/model/model.hpp"
#include "compiler/syntax/parser.hpp"
#include "compiler/syntax/tree.hpp"

namespace orlentac {

struct Scope;
struct ModuleNames;

// An actual parameter: the tokens and where their names belong; parsed at first use, when its sort is known.
struct Binding {
    const AstParameter* parameter = nullptr;
    TokenRange tokens;
    const Scope* scope = nullptr;  // of the tokens
    const Scope* inner = nullptr;  // of the parameter itself and its governor
    std::string key;               // equal for equal actual parameters
    AstType* type = nullptr;
    AstValue* value = nullptr;
    ObjectSet* set = nullptr;
};

// Where a name is looked up: the parameters first, then the module.
struct Scope {
    const ModuleNames* module = nullptr;
    std::vector<Binding*> bindings;
    std::string key;  // of the bindings together
    int depth = 0;    // of instances within instances
};

// What a name stands for: an assignment in a module or a parameter; neither if it is unknown.
struct Meaning {
    const AstAssignment* assignment = nullptr;
    const ModuleNames* module = nullptr;
    Binding* binding = nullptr;
    explicit operator bool() const { return assignment || binding; }
};

struct ModuleNames {
    const AstModule* ast = nullptr;
    std::unordered_map<std::string, const AstAssignment*> own;
    std::unordered_map<std::string, Meaning> imported;
    std::unordered_map<std::string, Diagnostic>
        missing;  // what was imported in vain: told if something uses it
    Scope scope;
};

// A class with the syntax of its objects and the scope of its field types.
struct ClassInfo {
    ObjectClass* object_class = nullptr;
    const AstClass* ast = nullptr;
    const Scope* scope = nullptr;
    std::vector<int> columns = {};  // by field as written: its place in the ObjectClass, or -1
    bool filled = false;
};

// What an object says of a field.
struct Setting {
    bool present = false;
    const AstType* type = nullptr;
    const AstValue* value = nullptr;  // or an object
    TokenRange set;                   // of values or objects
    const Scope* scope = nullptr;
};

struct InfoObject {
    const ClassInfo* info = nullptr;
    std::vector<RowEntry> row;      // by field of the ObjectClass
    std::vector<Setting> settings;  // by field as written
};

// CLASS.&field, object.&field or Set.&field.
struct FieldTarget {
    const ClassInfo* info = nullptr;
    int index = 0;
    const InfoObject* object = nullptr;
    std::vector<const InfoObject*> objects = {};  // all that the set has; empty for a class
    bool extensible = false;                      // the set
    const AstField& field() const { return info->ast->fields[index]; }
    explicit operator bool() const { return info; }
};

// Of the definitions that X.680 and X.681 give themselves: no module can have this name.
constexpr const char* kUsefulModule = "ASN.1";

// Selectors can be found only when all components are known.
struct PendingTable {
    Type* type = nullptr;
    std::vector<Type*> enclosing;  // SEQUENCEs and SETs around it, outermost first
    size_t in_contents = 0;
    const std::vector<AstAtNotation>* keys = nullptr;
    ObjectClass* object_class = nullptr;
};

// Thrown where a schema makes more than its length bears: instances and copies may double at every step.
struct TooLarge {
    Place place;
};

// One level of values or objects that refer to others, for as long as it lives.
struct Reference {
    explicit Reference(struct Resolver& resolver, Place place);
    ~Reference();
    struct Resolver& resolver;
};

struct Resolver {
    Ast& ast;
    Schema& schema;
    Diagnostics& diags;
    std::deque<ModuleNames> modules = {};
    std::unordered_map<std::string, ModuleNames*> module_names = {};
    std::unordered_map<std::string, std::vector<const ModuleNames*>> region_names = {};  // who defines a name
    std::deque<Scope> scopes = {};
    std::deque<Binding> bindings = {};

    std::unordered_map<const AstAssignment*, NamedType*> named = {};
    std::unordered_map<const AstAssignment*, ClassInfo> classes = {};
    std::unordered_map<const AstAssignment*, std::map<std::string, ClassInfo>> class_instances =
        {};  // by parameters
    std::map<std::pair<const AstAssignment*, std::string>, ObjectSet*> sets =
        {};  // with the key of the parameters
    std::map<std::pair<const Token*, const Scope*>, const InfoObject*> objects = {};
    std::deque<InfoObject> object_pool = {};
    std::unordered_map<const ObjectSet*, std::vector<const InfoObject*>> members = {};
    std::unordered_set<const ObjectSet*> filling = {};
    int object_depth = 0;
    int reference_depth = 0;
    size_t most_types = 0;
    bool are_classes_declared = false;
    std::map<std::pair<const AstAssignment*, std::string>, NamedType*> open_instances = {};  // being resolved
    std::set<std::pair<const ModuleNames*, std::string>> unknown = {};  // names that were told of
    std::unordered_set<const void*> busy = {};  // guards against values and sets of themselves
    std::set<std::pair<const AstType*, const Scope*>> copying = {};  // and against copies within themselves
    bool endless = false;  // an instance was found to go on for ever

    std::map<std::pair<const AstType*, const Scope*>, const AstType*> value_types = {};  // by path

    std::vector<Type*> enclosing = {};
    size_t in_contents = 0;  // how many of them are around the innermost CONTAINING
    std::vector<PendingTable> tables = {};
    std::vector<std::function<void()>> later = {};  // checks that need all types
};

// A type expression at the end of its references: a builtin type or an open class field; null if there is none.
struct Base {
    const AstType* type = nullptr;
    const Scope* scope = nullptr;
    bool is_open = false;
    explicit operator bool() const { return type; }
};

// ---- names.cpp --------------------------------------------------------------------------------------------

// Names, exports and imports of all modules.
void declare_modules(Resolver& resolver);
// Null for an unknown name, which is told; `what` for the error: "type", "value" ...
Meaning find_name(Resolver& resolver, const Scope& scope, const AstReference& reference,
                  std::string_view what);
// The same without an error.
Meaning peek_name(const Resolver& resolver, const Scope& scope, const AstReference& reference);
const Scope& scope_of(const Meaning& meaning);

// ---- instances.cpp ----------------------------------------------------------------------------------------

// The scope in which the body of a parameterised type is read; null, and told, if the parameters do not fit.
const Scope* bind_parameters(Resolver& resolver, const Scope& scope, const AstReference& reference,
                             const Meaning& meaning);
AstType* binding_type(Resolver& resolver, Binding& binding);
const Scope& type_scope(const Binding& binding);
AstValue* binding_value(Resolver& resolver, Binding& binding);
// A reference to a parameterised type in place.
Type* resolve_instance(Resolver& resolver, const AstType& type, const Scope& scope, const Meaning& meaning);

// ---- types.cpp --------------------------------------------------------------------------------------------

Type* new_type(Resolver& resolver, Kind kind, Place place);
// A plain reference, or a type in place.
Type* resolve_type(Resolver& resolver, const AstType& type, const Scope& scope);
// Never a reference; `from` and the constraints on the way are those of the references.
Type* resolve_in_place(Resolver& resolver, const AstType& type, const Scope& scope);
Base base_of(Resolver& resolver, const AstType& type, const Scope& scope);
Kind base_kind(const Base& base);
const Type& behind_references(const Type& type);

// ---- tags.cpp ---------------------------------------------------------------------------------------------

// Puts the tags written before `ast` before those that the type has.
void add_tags(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope);
void add_automatic_tag(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope, size_t number);
// When all types are known: decides which tags are explicit, and brings root alternatives and the root components of
// SETs into canonical order.
void settle_tags(Resolver& resolver);

// ---- structure.cpp ----------------------------------------------------------------------------------------

void fill_components(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope);
void fill_alternatives(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope);
void fill_items(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope);
void fill_named_numbers(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope);
// Root items first, in the order of their numbers; an item without one is a fault that was told.
struct NumberedItem {
    const AstItem* ast = nullptr;
    std::optional<Number> number;
};
std::vector<NumberedItem> numbered_items(Resolver& resolver, const AstType& enumerated, const Scope& scope);

// ---- values.cpp -------------------------------------------------------------------------------------------

// A value of the type that `governor` is; none, and told, if it is not one.
std::optional<Value> resolve_value(Resolver& resolver, const AstValue& value, const Scope& scope,
                                   const AstType& governor, const Scope& governor_scope);
std::optional<Number> resolve_number(Resolver& resolver, const AstValue& value, const Scope& scope);
std::string value_text(const AstValue& value);
// The characters of UTF-8 text; stray bytes stand for themselves.
std::vector<uint32_t> characters(const std::string& text);
// Looks whether the value is within the bounds of its type; all types must be known.
void check_value(Resolver& resolver, const Type& type, const Value& value, std::string_view what);
void check_value_later(Resolver& resolver, const Type* type, const Value& value, std::string what);

// ---- constraints.cpp --------------------------------------------------------------------------------------

// Whether tables tell anything of the constraint on a type of that kind.
bool leaves_trace(const AstConstraint& constraint, Kind kind);
void apply_constraint(Resolver& resolver, Type& type, const AstConstraint& constraint, const Base& base,
                      const Scope& scope);
std::vector<CodeRange> full_alphabet(StringKind kind);

// ---- classes.cpp ------------------------------------------------------------------------------------------

// Null, without an error, if the name is not that of a class.
const ClassInfo* peek_class(Resolver& resolver, const Scope& scope, const AstReference& reference);
const ClassInfo* find_class(Resolver& resolver, const Scope& scope, const AstReference& reference);
bool is_class(Resolver& resolver, const Scope& scope, const AstType& type);
void declare_classes(Resolver& resolver);
void fill_classes(Resolver& resolver);
// Index of the field as written, or -1, and told.
int find_field(Resolver& resolver, const ClassInfo& info, const std::string& name, Place place);

// ---- objects.cpp ------------------------------------------------------------------------------------------

// Null, and told, if there is none.
const InfoObject* object_value(Resolver& resolver, const Scope& scope, const AstValue& value,
                               const ClassInfo& info);
const InfoObject* find_object(Resolver& resolver, const Scope& scope, const AstReference& reference,
                              const ClassInfo& info);
// Of whatever class, which `info` becomes.
const InfoObject* find_any_object(Resolver& resolver, const Scope& scope, const AstReference& reference,
                                  const ClassInfo*& info);
FieldTarget find_field_target(Resolver& resolver, const AstType& type, const Scope& scope);
// The type that a field of values has: under the values of the objects, if it is taken from some (X.681 clause 15).
const AstType* type_of_values(Resolver& resolver, const AstType& path, const Scope& scope,
                              const FieldTarget& target);
ObjectSet* find_set(Resolver& resolver, const Scope& scope, const AstReference& reference,
                    const ClassInfo& info);
// For CLASS.&objects.&Type: the set of what the objects of `set` have in their field &objects.
ObjectSet* set_behind_fields(Resolver& resolver, ObjectSet* set, const ClassInfo& info, const AstType& type);
// {Set}, {object | object, ...}: the run of tokens between the braces.
ObjectSet* resolve_set(Resolver& resolver, const Scope& scope, TokenRange braces, const ClassInfo& info,
                       Place place);

// ---- tables.cpp -------------------------------------------------------------------------------------------

// What a field gives as a type, without its tags: CLASS.&field with its table constraint, object.&Type, Set.&values.
Type* resolve_class_field(Resolver& resolver, const AstType& type, const Scope& scope);
void resolve_tables(Resolver& resolver);

// ---- checks.cpp -------------------------------------------------------------------------------------------

// Name ::= Name, also over several steps; such names count as broken from then on.
void check_alias_cycles(Resolver& resolver);
// Types of which no value ends.
void check_finite(Resolver& resolver);

// ---- resolve.cpp ------------------------------------------------------------------------------------------

void resolve(Resolver& resolver);

}  // namespace orlentac
