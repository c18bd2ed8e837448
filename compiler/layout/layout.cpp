#include "compiler/layout/layout.hpp"

#include <algorithm>

#include "compiler/layout/builder.hpp"

namespace orlentac {

// ---- tables in place, and wrappers ------------------------------------------------------------------------

namespace {

Table* new_table(Builder& builder, Table::Class table_class) {
    Table* table = &builder.out.table_pool.emplace_back();
    table->table_class = table_class;
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

}  // namespace

const Table* part_table(Builder& builder, const Type& type, uint32_t tag, bool in_place) {
    if (builder.references.wrapped.contains(&type))
        return wrapper(builder, type, plain_table(builder, &type), 0, tag);
    if (type.kind != Kind::reference || in_place)
        return in_place_table(builder, *resolved(&type), context_tag(tag));
    const Table* real = builder.named[real_type(type.target)];
    if (builder.references.indirect.contains(&type))
        return wrapper(builder, type, real, ASN1_WORD0_INDIRECT, tag);
    auto folded = builder.references.folded.find(type.target);
    if (folded != builder.references.folded.end() && folded->second == tag) return builder.named[type.target];
    return wrapper(builder, type, real, 0, tag);
}

const Table* plain_table(Builder& builder, const Type* type) {
    if (!type) return nullptr;
    if (type->kind == Kind::reference) return builder.named[real_type(type->target)];
    return in_place_table(builder, *type, universal_tag(*type));
}

// ---- the whole --------------------------------------------------------------------------------------------

namespace {

// Named tables are made before any is filled, for a table may point at those behind it.
void declare_all(Builder& builder, const Schema& schema) {
    auto declare = [&](const std::string& name) {
        Table* table = new_table(builder, Table::Class::named);
        table->name = name;
        table->symbol = builder.out.region + "_" + c_name(name);
        builder.symbols.insert(table->symbol);
        return table;
    };
    // An alias has a table only if it has a tag to hold.
    for (const NamedType* type : schema.types)
        if (!type->is_alias || builder.references.folded.contains(type))
            builder.named[type] = declare(type->name);
    for (const ObjectClass* object_class : schema.classes)
        builder.classes[object_class] = declare(object_class->name);
    for (const NamedType* type : schema.instances)
        builder.named[type] = new_table(builder, Table::Class::nested);
}

void fill_named(Builder& builder, const NamedType* type) {
    auto found = builder.named.find(type);
    if (found == builder.named.end()) return;
    Table& table = *found->second;
    builder.enclosing = c_name(type->name);
    auto folded = builder.references.folded.find(type);
    if (type->is_alias)
        fill_tagged(table, builder.named[real_type(type)], *type->type, 0, folded->second);
    else
        fill_table(builder, table, *type->type,
                   folded == builder.references.folded.end() ? universal_tag(*type->type)
                                                             : context_tag(folded->second));
    if (table.symbol.empty()) name_nested(builder, table);
    builder.out.tables.push_back(&table);
}

}  // namespace

bool make_layout(const Schema& schema, const LayoutOptions& options, Layout& out, Diagnostics& diags) {
    out.region = options.region;
    Builder builder = {.out = out,
                       .diags = diags,
                       .references = find_references(schema),
                       .records = {},
                       .next_local = options.first_local,
                       .named = {},
                       .classes = {},
                       .nested_count = {},
                       .symbols = {},
                       .enclosing = {}};
    builder.records.references = &builder.references;
    declare_all(builder, schema);
    for (const NamedType* type : schema.types) fill_named(builder, type);
    for (const NamedType* type : schema.instances) fill_named(builder, type);
    for (const ObjectClass* object_class : schema.classes) {
        builder.enclosing = c_name(object_class->name);
        fill_class(builder, *builder.classes[object_class], *object_class);
        out.tables.push_back(builder.classes[object_class]);
    }
    for (const NamedType* type : schema.types)
        if (!builder.named.contains(type))
            out.aliases.push_back({type->name, builder.named[real_type(type)]});
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

std::string c_name(const std::string& schema_name) {
    std::string name = schema_name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

}  // namespace orlentac
