// SPDX-License-Identifier: Apache-2.0
#include "compiler/layout/layout.hpp"

#include <algorithm>

#include "compiler/layout/builder.hpp"
#include "compiler/layout/names.hpp"
#include "compiler/model/tags.hpp"

namespace orlentac {

// ---- tables in place, and wrappers ------------------------------------------------------------------------

namespace {

Table* new_table(Builder& builder, Table::Class table_class) {
    Table* table = &builder.out.table_pool.emplace_back();
    table->table_class = table_class;
    table->module = builder.module;
    return table;
}

void name_nested(Builder& builder, Table& table) {
    do {
        table.symbol = fmt::format("{}_{}_{}", builder.out.region, builder.enclosing,
                                   ++builder.nested_count[builder.enclosing]);
    } while (!builder.symbols.insert(table.symbol).second);
}

void name_anonymous(Builder& builder, Table& table) {
    table.symbol = fmt::format("{}__local_{}", builder.out.region, builder.next_local++);
}

// Kinds that are structured enough to get a name of their own inside the type around them. An INTEGER is, if it
// narrows a named one.
bool is_nested_kind(const Type& type) {
    switch (type.kind) {
        case Kind::sequence:
        case Kind::set:
        case Kind::sequence_of:
        case Kind::set_of:
        case Kind::choice:
        case Kind::enumerated: return true;
        case Kind::integer: return type.from != nullptr;
        default: return false;
    }
}

const Table* in_place_table(Builder& builder, const Type& type, uint32_t tag) {
    bool nested = is_nested_kind(type);
    Table* table = new_table(builder, nested ? Table::Class::nested : Table::Class::anonymous);
    fill_table(builder, *table, type, tag);
    nested ? name_nested(builder, *table) : name_anonymous(builder, *table);
    builder.out.tables.push_back(table);
    return table;
}

const Table* wrapper(Builder& builder, const Type& type, const Table* inner, uint32_t flags, uint32_t tag) {
    Table* table = new_table(builder, Table::Class::anonymous);
    fill_tagged(*table, inner, type, flags, tag);
    name_anonymous(builder, *table);
    builder.out.tables.push_back(table);
    return table;
}

uint32_t explicit_flag(bool is_explicit) { return is_explicit ? ASN1_WORD0_EXPLICIT : 0; }

// How many of the tags on the wire stand in a type's own descriptor; the others are TAGGED around it. An open type
// takes any tag for its own, so it has none.
size_t own_tags(const Builder& builder, const Type& type, size_t count) {
    if (count == 0) return 0;
    return type.kind == Kind::open_type && !builder.schema.shipped_forms ? 0 : 1;
}

// A type in place: its descriptor, and those of explicit tags around it from `first` on.
const Table* table_in_place(Builder& builder, const Type& type, const std::vector<uint32_t>& tags,
                            size_t first = 0) {
    size_t around = tags.size() - own_tags(builder, type, tags.size());
    const Table* table = in_place_table(builder, type, around < tags.size() ? tags.back() : 0);
    while (around > first) table = wrapper(builder, type, table, ASN1_WORD0_EXPLICIT, tags[--around]);
    return table;
}

// A referred type under the tags of the reference. A pointer is held by the outermost.
const Table* table_behind(Builder& builder, const Type& type, const Table* table, size_t first = 0) {
    for (size_t i = type.tags.size(); i-- > first;) {
        bool pointer = i == 0 && builder.references.indirect.contains(&type);
        uint32_t flags = explicit_flag(type.tags[i].is_explicit) | (pointer ? ASN1_WORD0_INDIRECT : 0);
        table = wrapper(builder, type, table, flags, type.tags[i].word);
    }
    return table;
}

const Table* reference_table(Builder& builder, const Type& type) {
    const Table* real = builder.named[real_type(type.target)];
    bool pointer = builder.references.indirect.contains(&type);
    if (type.tags.empty()) {
        if (!pointer) return real;
        std::vector<uint32_t> tags = wire_tags(type);
        return wrapper(builder, type, real, ASN1_WORD0_INDIRECT, tags.empty() ? 0 : tags[0]);
    }
    auto folded = builder.references.folded.find(type.target);
    bool is_folded = !pointer && folded != builder.references.folded.end();
    if (is_folded && folded->second == type.tags[0].word) return builder.named[type.target];
    return table_behind(builder, type, real);
}

}  // namespace

const Table* type_table(Builder& builder, const Type* type, bool in_place) {
    if (!type) return nullptr;
    if (builder.references.wrapped.contains(type)) {
        const Table* inner = in_place_table(builder, *type, universal_tag(*type));
        return wrapper(builder, *type, inner, 0, type->tags[0].word);
    }
    if (type->kind == Kind::reference && !in_place) return reference_table(builder, *type);
    return table_in_place(builder, *resolved(type), wire_tags(*type));
}

// ---- the whole --------------------------------------------------------------------------------------------

namespace {

// A name with a point is none that a module can have.
std::string shown_module(const std::string& module) {
    return module.find('.') == std::string::npos ? module : "";
}

// Named tables are made before any is filled, for a table may point at those behind it.
void declare_all(Builder& builder, const Schema& schema) {
    auto declare = [&](const auto& named) {
        builder.module = shown_module(named.module);
        Table* table = new_table(builder, Table::Class::named);
        table->name = named.name;
        table->symbol = builder.out.region + "_" + builder.names.at(&named);
        builder.symbols.insert(table->symbol);
        return table;
    };
    // An alias has a table only if it has a tag to hold.
    for (const NamedType* type : schema.types)
        if (!type->is_alias || builder.references.folded.contains(type)) builder.named[type] = declare(*type);
    for (const ObjectClass* object_class : schema.classes)
        builder.classes[object_class] = declare(*object_class);
    for (const NamedType* type : schema.instances) {
        builder.module = shown_module(type->module);
        builder.named[type] = new_table(builder, Table::Class::nested);
    }
}

// The table of a name: the type itself, or the outermost tag before it.
void fill_tables_of(Builder& builder, Table& table, const NamedType& named) {
    const Type& type = *named.type;
    auto folded = builder.references.folded.find(&named);
    if (named.is_alias)
        return fill_tagged(table, builder.named[real_type(&named)], type,
                           explicit_flag(!has_tag(*real_type(&named)->type)), folded->second);
    if (folded != builder.references.folded.end()) return fill_table(builder, table, type, folded->second);
    if (type.kind == Kind::reference) {
        const Table* real = builder.named[real_type(type.target)];
        return fill_tagged(table, table_behind(builder, type, real, 1), type,
                           explicit_flag(type.tags[0].is_explicit), type.tags[0].word);
    }
    std::vector<uint32_t> tags = wire_tags(type);
    bool is_whole =
        type.kind == Kind::choice || type.kind == Kind::open_type ? tags.empty() : tags.size() == 1;
    if (is_whole) return fill_table(builder, table, type, tags.empty() ? 0 : tags[0]);
    const Table* inner = nullptr;
    if (type.kind == Kind::choice || type.kind == Kind::open_type) {
        // A tag before the name may be implicit: this one must not be the CHOICE's own, which stays.
        inner = in_place_table(builder, type, 0);
        for (size_t i = tags.size(); i-- > 1;)
            inner = wrapper(builder, type, inner, ASN1_WORD0_EXPLICIT, tags[i]);
    } else {
        inner = table_in_place(builder, type, tags, 1);
    }
    fill_tagged(table, inner, type, ASN1_WORD0_EXPLICIT, tags[0]);
}

void fill_named(Builder& builder, const NamedType* type) {
    auto found = builder.named.find(type);
    if (found == builder.named.end()) return;
    Table& table = *found->second;
    builder.enclosing = builder.names.at(type);
    builder.module = table.module;
    table.about = type->about;
    fill_tables_of(builder, table, *type);
    if (table.symbol.empty()) name_nested(builder, table);
    builder.out.tables.push_back(&table);
}

}  // namespace

bool make_layout(const Schema& schema, const LayoutOptions& options, Layout& out, Diagnostics& diags) {
    out.region = options.region;
    Builder builder = {.schema = schema,
                       .out = out,
                       .diags = diags,
                       .references = find_references(schema),
                       .records = {},
                       .next_local = options.first_local,
                       .names = region_names(schema, options.module_names, diags),
                       .named = {},
                       .classes = {},
                       .nested_count = {},
                       .symbols = {},
                       .enclosing = {},
                       .module = {}};
    builder.records.references = &builder.references;
    declare_all(builder, schema);
    for (const NamedType* type : schema.types) fill_named(builder, type);
    for (const NamedType* type : schema.instances) fill_named(builder, type);
    for (const ObjectClass* object_class : schema.classes) {
        builder.enclosing = builder.names.at(object_class);
        builder.module = shown_module(object_class->module);
        fill_class(builder, *builder.classes[object_class], *object_class);
        out.tables.push_back(builder.classes[object_class]);
    }
    for (const NamedType* type : schema.types)
        if (!builder.named.contains(type))
            out.aliases.push_back({builder.names.at(type), builder.named[real_type(type)], type->name,
                                   shown_module(type->module), type->about});
    out.lists_aliases = !schema.shipped_forms;
    for (const NamedType* type : builder.references.roots) out.roots.push_back(builder.named[type]);
    sort_errors(diags);
    return diags.errors.empty();
}

// ---- reading a finished table -----------------------------------------------------------------------------

uint32_t word0(const Table& table) { return static_cast<uint32_t>(table.words[0].number); }

uint64_t part_offset(const Table& table, const Part& part) {
    return table.words[part.offset_word].number & ASN1_FIELD_OFFSET_MASK;
}

uint64_t presence_offset(const Table& table, const Part& part) { return table.words[part.extra_word].number; }

static size_t choice_size_word(const Table& table) { return word0(table) & ASN1_WORD0_EXTENSIBLE ? 3 : 2; }

uint64_t record_size(const Table& table) {
    return table.words[table.kind == ASN1_KIND_CHOICE ? choice_size_word(table) : 2].number;
}

uint64_t stride(const Table& table) {
    return table.words[word0(table) & ASN1_WORD0_HAS_UPPER ? 3 : 2].number;
}

uint64_t payload_offset(const Table& table) { return table.words[choice_size_word(table) + 2].number; }

}  // namespace orlentac
