// SPDX-License-Identifier: Apache-2.0
#include "compiler/memory/tables.hpp"

#include <orlenta/integer.h>
#include <string.h>

#include <string_view>
#include <unordered_map>

#include "compiler/layout/constant_form.hpp"

namespace orlentac {

namespace {

// Where everything goes: by index, since nothing has an address before all is counted.
struct Places {
    std::unordered_map<const Table*, size_t> tables;
    std::unordered_map<const Object*, size_t> objects;
    std::unordered_map<std::string_view, size_t> texts;
    size_t word_count = 0;
    size_t text_size = 0;
};

// ---- counting ---------------------------------------------------------------------------------------------

constexpr size_t words_for(size_t bytes) { return (bytes + sizeof(asn1_word) - 1) / sizeof(asn1_word); }

size_t limb_bytes(const ConstantForm& form) { return form.limbs.size() * sizeof(uint32_t); }

// A record with what it points at behind it.
size_t word_count(const Object& object) {
    ConstantForm form = form_of(object);
    switch (form.record) {
        case ConstantForm::Record::word:
        case ConstantForm::Record::null: return 1;
        case ConstantForm::Record::integer:
            return words_for(sizeof(asn1_integer)) + words_for(limb_bytes(form));
        case ConstantForm::Record::string:
            return words_for(sizeof(asn1_string)) + words_for(form.bytes.size());
        case ConstantForm::Record::bit_string:
            return words_for(sizeof(asn1_bit_string)) + words_for(form.bytes.size());
        case ConstantForm::Record::octets: return words_for(form.bytes.size());
        case ConstantForm::Record::words: break;
    }
    return object.words.size();
}

void count_texts(Places& places, const std::vector<Word>& words) {
    for (const Word& word : words) {
        if (word.sort != Word::Sort::text) continue;
        if (places.texts.try_emplace(word.text, places.text_size).second)
            places.text_size += word.text.size() + 1;
    }
}

Places find_places(const Layout& layout) {
    Places places;
    for (const Table* table : layout.tables) {
        places.tables[table] = places.word_count;
        places.word_count += table->words.size();
        count_texts(places, table->words);
        for (const Object* object : table->objects) {
            places.objects[object] = places.word_count;
            places.word_count += word_count(*object);
            count_texts(places, object->words);
        }
    }
    return places;
}

// ---- filling ----------------------------------------------------------------------------------------------

struct Filler {
    const Places& places;
    MemoryTables& out;
};

asn1_word filled(const Filler& filler, const Word& word) {
    const asn1_word* words = filler.out.words.data();
    switch (word.sort) {
        case Word::Sort::number: return {.number = word.number};
        case Word::Sort::table: return {.type = words + filler.places.tables.at(word.table)};
        case Word::Sort::text: return {.text = filler.out.texts.data() + filler.places.texts.at(word.text)};
        case Word::Sort::object: break;
    }
    return {.type = words + filler.places.objects.at(word.object)};
}

void fill_words(const Filler& filler, size_t at, const std::vector<Word>& words) {
    for (const Word& word : words) filler.out.words[at++] = filled(filler, word);
}

// The record, and the bytes behind it that it points at.
template <typename Record>
void fill_record(asn1_word* to, Record record, uint8_t* Record::*data, const std::string& bytes) {
    uint8_t* behind = reinterpret_cast<uint8_t*>(to + words_for(sizeof record));
    if (!bytes.empty()) record.*data = behind;
    memcpy(static_cast<void*>(to), &record, sizeof record);
    memcpy(behind, bytes.data(), bytes.size());
}

void fill_integer(asn1_word* to, const ConstantForm& form) {
    auto* limbs = reinterpret_cast<uint32_t*>(to + words_for(sizeof(asn1_integer)));
    uint32_t size = static_cast<uint32_t>(form.limbs.size());
    asn1_integer record = {size == 0 ? nullptr : limbs, size, size, form.negative};
    memcpy(static_cast<void*>(to), &record, sizeof record);
    if (size != 0) memcpy(limbs, form.limbs.data(), limb_bytes(form));
}

void fill_object(const Filler& filler, size_t at, const Object& object) {
    ConstantForm form = form_of(object);
    asn1_word* to = filler.out.words.data() + at;
    switch (form.record) {
        case ConstantForm::Record::null: return;
        case ConstantForm::Record::word:
            return void(memcpy(static_cast<void*>(to), &form.word, sizeof form.word));
        case ConstantForm::Record::integer: return fill_integer(to, form);
        case ConstantForm::Record::string:
            return fill_record(to, asn1_string{nullptr, form.length}, &asn1_string::data, form.bytes);
        case ConstantForm::Record::bit_string:
            return fill_record(to, asn1_bit_string{nullptr, form.length}, &asn1_bit_string::data, form.bytes);
        case ConstantForm::Record::octets:
            return void(memcpy(static_cast<void*>(to), form.bytes.data(), form.bytes.size()));
        case ConstantForm::Record::words: return fill_words(filler, at, object.words);
    }
}

void fill_texts(const Places& places, std::vector<char>& out) {
    out.assign(places.text_size, '\0');
    for (const auto& [text, at] : places.texts) memcpy(out.data() + at, text.data(), text.size());
}

}  // namespace

MemoryTables make_tables(const Layout& layout) {
    Places places = find_places(layout);
    MemoryTables out;
    fill_texts(places, out.texts);
    out.words.assign(places.word_count, asn1_word{.number = 0});
    out.tables.reserve(layout.tables.size());
    Filler filler = {places, out};
    for (const Table* table : layout.tables) {
        size_t at = places.tables.at(table);
        out.tables.push_back({table->symbol, out.words.data() + at});
        fill_words(filler, at, table->words);
        for (const Object* object : table->objects) fill_object(filler, places.objects.at(object), *object);
    }
    return out;
}

}  // namespace orlentac
