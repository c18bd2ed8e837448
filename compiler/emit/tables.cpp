#include "compiler/emit/tables.hpp"

#include <fmt/format.h>
#include <orlenta/type.h>

#include <iterator>
#include <set>

#include "compiler/emit/c_types.hpp"
#include "compiler/layout/records.hpp"

namespace orlentac {

namespace {

using Text = std::string;

template <typename... Args>
void put(Text& out, fmt::format_string<Args...> format, Args&&... args) {
    fmt::format_to(std::back_inserter(out), format, std::forward<Args>(args)...);
}

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
    const Object& object = *word.object;
    if (object.sort == Object::Sort::octets) return fmt::format("{{.address = {}}}", object_name(object));
    if (object.sort != Object::Sort::value) return fmt::format("{{.type = {}}}", object_name(object));
    bool is_integer = object.type->kind == Kind::integer && is_big_integer(*object.type);
    return fmt::format("{{.{} = &{}}}", is_integer ? "integer" : "address", object_name(object));
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

// Magnitude in limbs, least significant first, as asn1_integer holds it.
std::vector<uint32_t> limbs_of(Number number) {
    std::vector<uint32_t> limbs;
    for (number = abs(number); number != 0; number >>= 32)
        limbs.push_back(static_cast<uint32_t>(number & 0xFFFFFFFFu));
    return limbs;
}

void put_big_integer(Text& out, const Object& object) {
    std::vector<uint32_t> limbs = limbs_of(object.value.number);
    Text data = "nullptr";
    if (!limbs.empty()) {
        data = fmt::format("asn1_value__local{}_data", object.local);
        put(out, "static constinit const uint32_t {}[{}] = {{", data, limbs.size());
        for (uint32_t limb : limbs) put(out, "0x{:X}, ", limb);
        out.replace(out.size() - 2, 2, "};\n");
        data = "const_cast<uint32_t*>(" + data + ")";
    }
    put(out, "static constinit const asn1_integer {} = {{{}, {}, {}, {}}};\n", object_name(object), data,
        limbs.size(), limbs.size(), object.value.number < 0 ? 1 : 0);
}

void put_string(Text& out, const Object& object, const char* record, uint64_t length) {
    const std::string& bytes = object.value.bytes;
    Text data = "nullptr";
    if (!bytes.empty()) {
        data = fmt::format("asn1_value__local{}_data", object.local);
        put(out, "static constinit const uint8_t {}[{}] = {{", data, bytes.size());
        for (char byte : bytes) put(out, "0x{:02X}, ", static_cast<uint8_t>(byte));
        out.replace(out.size() - 2, 2, "};\n");
        data = "const_cast<uint8_t*>(" + data + ")";
    }
    put(out, "static constinit const {} {} = {{{}, {}}};\n", record, object_name(object), data, length);
}

void put_value(Text& out, const Object& object) {
    const Value& value = object.value;
    auto put_word = [&](uint32_t word) {
        put(out, "static constinit const uint32_t {} = 0x{:X};\n", object_name(object), word);
    };
    switch (value.sort) {
        case Value::Sort::boolean: return put_word(value.boolean);
        case Value::Sort::item: return put_word(static_cast<uint32_t>(value.item));
        case Value::Sort::number:
            if (is_big_integer(*object.type)) return put_big_integer(out, object);
            return put_word(static_cast<uint32_t>(static_cast<int64_t>(value.number)));
        case Value::Sort::bits: return put_string(out, object, "asn1_bit_string", value.bit_count);
        case Value::Sort::octets:
        case Value::Sort::text:
        case Value::Sort::oid: return put_string(out, object, "asn1_string", value.bytes.size());
        case Value::Sort::null:
            put(out, "static constinit const uint8_t {} = 0;\n", object_name(object));
            return;
        case Value::Sort::constructed:  // the layout has refused these two
        case Value::Sort::real: return;
    }
}

void put_object(Text& out, const Object& object) {
    if (object.sort == Object::Sort::value) return put_value(out, object);
    if (object.sort == Object::Sort::octets) {
        put(out, "alignas(4) static constinit const uint8_t {}[{}] = {{", object_name(object),
            object.value.bytes.size());
        for (char byte : object.value.bytes) put(out, "0x{:02X}, ", static_cast<uint8_t>(byte));
        return void(out.replace(out.size() - 2, 2, "};\n"));
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

Text file_text(const Layout& layout, const Table* const* begin, const Table* const* end) {
    Text out = fmt::format(
        "// Tables of the region {}. Made by orlentac; not to be edited.\n"
        "#include <orlenta/integer.h>\n"
        "#include <orlenta/type.h>\n\n"
        "extern \"C\" {{\n\n",
        layout.region);

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
    return out;
}

}  // namespace

std::vector<std::string> emit_tables(const Layout& layout, size_t parts) {
    size_t total = 0;
    for (const Table* table : layout.tables) total += table->words.size();
    std::vector<std::string> files;
    size_t words = 0, begin = 0, end = 0;
    for (size_t part = 1; part <= parts; part++) {
        while (end < layout.tables.size() && (words < total * part / parts || part == parts))
            words += layout.tables[end++]->words.size();
        files.push_back(file_text(layout, layout.tables.data() + begin, layout.tables.data() + end));
        begin = end;
    }
    return files;
}

std::string emit_record_checks(const Layout& layout, const std::string& header) {
    Text out = fmt::format(
        "// The records of <{0}> against the tables of the region {1}. Made by orlentac; not to be edited.\n"
        "#include <{0}>\n\n"
        "#include <cstddef>\n\n"
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
