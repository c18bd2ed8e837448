// SPDX-License-Identifier: Apache-2.0
#include "compiler/emit/open_types.hpp"

#include <fmt/format.h>
#include <orlenta/type.h>

#include <algorithm>
#include <optional>
#include <set>

#include "compiler/emit/c_types.hpp"
#include "compiler/layout/names.hpp"
#include "compiler/layout/records.hpp"

namespace orlentac {

namespace {

const TableConstraint* constraint_of(const Part& part) {
    const Type* type = resolved(part.type);
    return type->kind == Kind::open_type && type->table ? &*type->table : nullptr;
}

bool is_plain_key(const Part& part) {
    const Type* type = resolved(part.type);
    bool is_word = type->kind == Kind::enumerated || (type->kind == Kind::integer && !is_big_integer(*type));
    return is_word && !part.has_presence;
}

// Where the rows stand in the tables: the fourth word of the constraint object, which is the table's last.
const Object* rows_of(const Part& part) {
    const Table& table = unwrapped(*part.table);
    if (table.words.back().sort != Word::Sort::object) return nullptr;
    const Word& rows = table.words.back().object->words[3];
    return rows.sort == Word::Sort::object ? rows.object : nullptr;
}

std::optional<int64_t> key_of(const RowEntry& entry) {
    if (!entry.value) return std::nullopt;
    const Value& value = *entry.value;
    if (value.sort == Value::Sort::item) return static_cast<int64_t>(value.item);
    if (value.sort != Value::Sort::number || value.number < INT32_MIN || value.number > INT32_MAX)
        return std::nullopt;
    return static_cast<int64_t>(value.number);
}

// What is in place has the name of its kind.
std::string type_name(const std::string& region, const Table& table) {
    const Table& described = unwrapped(table);
    if (has_record(described)) return described.symbol.substr(region.size() + 1);
    std::string name(kind_name(resolved(described.type)->kind));
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

KeyedComponent keyed_component(const std::string& region, size_t component, const Part& part,
                               const TableConstraint& constraint) {
    KeyedComponent found = {component, static_cast<size_t>(constraint.selectors[0].path[0]), {}};
    const Object* rows = rows_of(part);
    if (!rows) return found;
    size_t columns = constraint.object_set->object_class->fields.size();
    std::set<std::string> names;
    for (size_t row = 0; row < constraint.object_set->rows.size(); row++) {
        const Word& type = rows->words[row * columns + static_cast<size_t>(constraint.column)];
        std::optional<int64_t> key =
            key_of(constraint.object_set->rows[row][static_cast<size_t>(constraint.selectors[0].column)]);
        if (type.sort != Word::Sort::table || !key) continue;
        std::string name = type_name(region, *type.table);
        while (!names.insert(name).second) name += fmt::format("_{}", *key < 0 ? -*key : *key);
        found.types.push_back({name, *key, type.table});
    }
    return found;
}

}  // namespace

std::vector<KeyedComponent> keyed_components(const std::string& region, const Table& table) {
    std::vector<KeyedComponent> found;
    if (table.kind != ASN1_KIND_SEQUENCE && table.kind != ASN1_KIND_SET) return found;
    for (size_t i = 0; i < table.parts.size(); i++) {
        const TableConstraint* constraint = constraint_of(table.parts[i]);
        if (!constraint || constraint->selectors.size() != 1) continue;
        const Selector& selector = constraint->selectors[0];
        if (selector.levels_up != 0 || selector.path.size() != 1) continue;
        if (!is_plain_key(table.parts[static_cast<size_t>(selector.path[0])])) continue;
        KeyedComponent component = keyed_component(region, i, table.parts[i], *constraint);
        if (!component.types.empty()) found.push_back(std::move(component));
    }
    return found;
}

}  // namespace orlentac
