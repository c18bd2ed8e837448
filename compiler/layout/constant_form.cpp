// SPDX-License-Identifier: Apache-2.0
#include "compiler/layout/constant_form.hpp"

#include "compiler/layout/records.hpp"

namespace orlentac {

static ConstantForm word_form(uint32_t word) { return {.record = ConstantForm::Record::word, .word = word}; }

static ConstantForm integer_form(const Number& number) {
    ConstantForm form = {.record = ConstantForm::Record::integer, .negative = number < 0};
    for (Number rest = abs(number); rest != 0; rest >>= 32)
        form.limbs.push_back(static_cast<uint32_t>(rest & 0xFFFFFFFFu));
    return form;
}

static ConstantForm number_form(const Object& object) {
    if (is_big_integer(*object.type)) return integer_form(object.value.number);
    return word_form(static_cast<uint32_t>(static_cast<int64_t>(object.value.number)));
}

static ConstantForm value_form(const Object& object) {
    const Value& value = object.value;
    switch (value.sort) {
        case Value::Sort::boolean: return word_form(value.boolean);
        case Value::Sort::item: return word_form(static_cast<uint32_t>(value.item));
        case Value::Sort::number: return number_form(object);
        case Value::Sort::bits:
            return {
                .record = ConstantForm::Record::bit_string, .bytes = value.bytes, .length = value.bit_count};
        case Value::Sort::octets:
        case Value::Sort::text:
        case Value::Sort::oid:
            return {
                .record = ConstantForm::Record::string, .bytes = value.bytes, .length = value.bytes.size()};
        case Value::Sort::null:
        case Value::Sort::constructed:  // the layout has refused these two
        case Value::Sort::real: break;
    }
    return {.record = ConstantForm::Record::null};
}

ConstantForm form_of(const Object& object) {
    switch (object.sort) {
        case Object::Sort::value: return value_form(object);
        case Object::Sort::octets:
            return {.record = ConstantForm::Record::octets, .bytes = object.value.bytes};
        case Object::Sort::constraint:
        case Object::Sort::rows:
        case Object::Sort::record: break;
    }
    return {};
}

}  // namespace orlentac
