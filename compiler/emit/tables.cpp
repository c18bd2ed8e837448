// SPDX-License-Identifier: Apache-2.0
#include "compiler/emit/tables.hpp"

#include <fmt/format.h>
#include <orlenta/type.h>

#include <iterator>
#include <set>

#include "compiler/emit/c_types.hpp"
#include "compiler/emit/put.hpp"
#include "compiler/layout/constant_form.hpp"

namespace orlentac {

namespace {

using Text = std::string;

// ---- words ------------------------------------------------------------------------------------------------

Text object_name(const Object& object) {
    const char* sort = object.sort == Object::Sort::constraint ? "constraint" : "value";
    return fmt::format("asn1_{}__local_{}", sort, object.local);
}

Text initializer(const Word& word) {
    switch (word.sort) {
        case Word::Sort::number:
            return word.number < 10 ? fmt::format("{{.number = {}}}", word.number)
                                    : fmt::format("{{.number = 0x{:X}}}", word.number);
        case Word::Sort::table: return fmt::format("{{.type = asn1_type_{}}}", word.table->symbol);
        case Word::Sort::text: return fmt::format("{{.text = \"{}\"}}", word.text);
        case Word::Sort::object: break;
    }
    Text name = object_name(*word.object);
    switch (form_of(*word.object).record) {
        case ConstantForm::Record::words: return fmt::format("{{.type = {}}}", name);
        case ConstantForm::Record::octets: return fmt::format("{{.address = {}}}", name);
        case ConstantForm::Record::integer: return fmt::format("{{.integer = &{}}}", name);
        default: return fmt::format("{{.address = &{}}}", name);
    }
}

// The words, several a line.
void put_words(Text& out, const std::vector<Word>& words) {
    constexpr size_t kLine = 110;
    size_t column = kLine;
    for (const Word& word : words) {
        Text text = initializer(word) + ",";
        if (column + text.size() + 1 > kLine) {
            out += "\n    ";
            column = 4;
        } else {
            out += ' ';
            column++;
        }
        out += text;
        column += text.size();
    }
    out += "\n};\n";
}

// ---- constants --------------------------------------------------------------------------------------------

void put_limbs(Text& out, const Object& object, const ConstantForm& form) {
    Text data = "nullptr";
    if (!form.limbs.empty()) {
        data = fmt::format("asn1_value__local{}_data", object.local);
        put(out, "static constinit const uint32_t {}[{}] = {{", data, form.limbs.size());
        for (uint32_t limb : form.limbs) put(out, "0x{:X}, ", limb);
        out.replace(out.size() - 2, 2, "};\n");
        data = "const_cast<uint32_t*>(" + data + ")";
    }
    put(out, "static constinit const asn1_integer {} = {{{}, {}, {}, {}}};\n", object_name(object), data,
        form.limbs.size(), form.limbs.size(), form.negative ? 1 : 0);
}

void put_bytes(Text& out, const Text& name, const std::string& bytes) {
    put(out, "static constinit const uint8_t {}[{}] = {{", name, bytes.size());
    for (char byte : bytes) put(out, "0x{:02X}, ", static_cast<uint8_t>(byte));
    out.replace(out.size() - 2, 2, "};\n");
}

void put_string(Text& out, const Object& object, const ConstantForm& form, const char* record) {
    Text data = "nullptr";
    if (!form.bytes.empty()) {
        data = fmt::format("asn1_value__local{}_data", object.local);
        put_bytes(out, data, form.bytes);
        data = "const_cast<uint8_t*>(" + data + ")";
    }
    put(out, "static constinit const {} {} = {{{}, {}}};\n", record, object_name(object), data, form.length);
}

void put_object(Text& out, const Object& object) {
    ConstantForm form = form_of(object);
    switch (form.record) {
        case ConstantForm::Record::word:
            return put(out, "static constinit const uint32_t {} = 0x{:X};\n", object_name(object), form.word);
        case ConstantForm::Record::null:
            return put(out, "static constinit const uint8_t {} = 0;\n", object_name(object));
        case ConstantForm::Record::integer: return put_limbs(out, object, form);
        case ConstantForm::Record::string: return put_string(out, object, form, "asn1_string");
        case ConstantForm::Record::bit_string: return put_string(out, object, form, "asn1_bit_string");
        case ConstantForm::Record::octets:
            out += "alignas(4) ";
            return put_bytes(out, object_name(object), form.bytes);
        case ConstantForm::Record::words: break;
    }
    put(out, "static constinit const asn1_word {}[{}] = {{", object_name(object), object.words.size());
    put_words(out, object.words);
}

// ---- files ------------------------------------------------------------------------------------------------

void collect_tables(std::set<std::string>& names, const std::vector<Word>& words) {
    for (const Word& word : words)
        if (word.sort == Word::Sort::table)
            names.insert(fmt::format("asn1_type_{}[{}]", word.table->symbol, word.table->words.size()));
}

// Second names, of which the linker lets none refer to another module's table.
void put_own_names(Text& out, const Table* const* begin, const Table* const* end,
                   const std::unordered_set<const Table*>& own) {
    out += "\nextern \"C\" {\n";
    for (auto table = begin; table != end; table++)
        if (own.contains(*table))
            put(out,
                "[[gnu::alias(\"asn1_type_{}\"), gnu::visibility(\"hidden\")]] extern const asn1_type_desc "
                "{}[{}];\n",
                (*table)->symbol, own_name(**table), (*table)->words.size());
    out += "}\n";
}

Text file_text(const Layout& layout, const Table* const* begin, const Table* const* end,
               const std::unordered_set<const Table*>& own) {
    Text out = fmt::format(
        "// Tables of the region {}. Made by orlentac; not to be edited.\n"
        "#include <orlenta/integer.h>\n"
        "#include <orlenta/type.h>\n\n"
        "extern \"C\" {{\n\n",
        layout.region);

    constexpr size_t kTextOfWord = 80;  // more than it is, as a rule: what is not used costs no memory
    size_t words = 0;
    for (auto table = begin; table != end; table++) words += (*table)->words.size();
    out.reserve(kTextOfWord * words);

    // All that is defined here or pointed at from here.
    std::set<std::string> declared;
    for (auto table = begin; table != end; table++) {
        declared.insert(fmt::format("asn1_type_{}[{}]", (*table)->symbol, (*table)->words.size()));
        collect_tables(declared, (*table)->words);
        for (const Object* object : (*table)->objects) collect_tables(declared, object->words);
    }
    for (const std::string& name : declared) put(out, "ORLENTA_API extern const asn1_type_desc {};\n", name);
    out += "\n}  // extern \"C\"\n\n";

    for (auto table = begin; table != end; table++) {
        for (const Object* object : (*table)->objects) put_object(out, *object);
        put(out, "constinit const asn1_type_desc asn1_type_{}[{}] = {{", (*table)->symbol,
            (*table)->words.size());
        put_words(out, (*table)->words);
    }
    put_own_names(out, begin, end, own);
    return out;
}

}  // namespace

std::string own_name(const Table& table) { return "orlenta_own_" + table.symbol; }

std::string emit_tables(const Layout& layout, size_t parts, size_t part,
                        const std::unordered_set<const Table*>& own) {
    size_t total = 0;
    for (const Table* table : layout.tables) total += table->words.size();
    // Up to where the parts before have all that is theirs.
    auto end_of = [&](size_t count) {
        size_t words = 0, end = 0;
        while (end < layout.tables.size() && (words < total * count / parts || count == parts))
            words += layout.tables[end++]->words.size();
        return layout.tables.data() + end;
    };
    return file_text(layout, end_of(part), end_of(part + 1), own);
}

std::string emit_record_checks(const Layout& layout, const std::string& header) {
    Text out = fmt::format(
        "// The records of <{0}> against the tables of the region {1}. Made by orlentac; not to be edited.\n"
        "#include <{0}>\n\n"
        "#include <stddef.h>\n\n"
        "#define RECORD_IS(record, size) static_assert(sizeof(record) == size)\n"
        "#define MEMBER_AT(record, member, offset) static_assert(offsetof(record, member) == offset)\n\n",
        header, layout.region);
    for (const Table* table : layout.tables) {
        if (table->table_class == Table::Class::anonymous || !has_record(*table)) continue;
        Text record = record_name(*table);
        switch (table->kind) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: {
                put(out, "RECORD_IS({}, {});\n", record, record_size(*table));
                std::vector<MemberNames> names = member_names(*table);
                for (size_t i = 0; i < names.size(); i++) {
                    const Part& part = table->parts[i];
                    if (part.has_presence)
                        put(out, "MEMBER_AT({}, {}, {});\n", record, names[i].presence,
                            presence_offset(*table, part));
                    if (!names[i].value.empty())
                        put(out, "MEMBER_AT({}, {}, {});\n", record, names[i].value,
                            part_offset(*table, part));
                }
                break;
            }
            case ASN1_KIND_CHOICE:
                put(out, "RECORD_IS({}, {});\n", record, record_size(*table));
                put(out, "MEMBER_AT({}, choice, 0);\n", record);
                if (has_payload(*table)) put(out, "MEMBER_AT({}, u, {});\n", record, payload_offset(*table));
                break;
            case ASN1_KIND_SEQUENCE_OF:
            case ASN1_KIND_SET_OF:
                put(out, "RECORD_IS({}, sizeof(asn1_array));\n", record);
                put(out, "RECORD_IS(*{}().data, {});\n", record, stride(*table));
                break;
            default: break;
        }
    }
    return out;
}

}  // namespace orlentac
