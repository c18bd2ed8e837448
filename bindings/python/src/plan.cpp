// SPDX-License-Identifier: Apache-2.0
#include "plan.hpp"

#include <new>

#include "core/descriptor.hpp"

namespace orlenta::python {

Plan::~Plan() {
    for (Member& member : members) Py_XDECREF(member.name);
    for (PyObject* item : items) Py_XDECREF(item);
}

static bool build(Plans& plans, Plan& plan);

static const Plan* make_plan(Plans& plans, const asn1_type_desc* type) {
    // Known before its parts are looked at, since it may be one of them.
    plans.unfinished.push_back(type);
    Plan* plan = (plans.by_type[type] = std::make_unique<Plan>()).get();
    plan->type = type;
    return build(plans, *plan) ? plan : nullptr;
}

static Form form_of_string(uint32_t string_type) {
    switch (string_type) {
        case ASN1_STRING_BMP: return Form::utf16_text;
        case ASN1_STRING_UNIVERSAL: return Form::utf32_text;
        case ASN1_STRING_UTF8: return Form::utf8_text;
        default: return Form::latin_text;
    }
}

static Form form_of(const orlenta_type_facts& facts) {
    switch (facts.kind) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return Form::record;
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return Form::list;
        case ASN1_KIND_CHOICE: return Form::choice;
        case ASN1_KIND_INTEGER:
            if (facts.is_big) return Form::big_integer;
            return facts.is_unsigned ? Form::unsigned_word : Form::signed_word;
        case ASN1_KIND_BOOLEAN: return Form::boolean;
        case ASN1_KIND_BIT_STRING: return Form::bit_string;
        case ASN1_KIND_OCTET_STRING: return Form::octet_string;
        case ASN1_KIND_ENUMERATED: return Form::enumerated;
        case ASN1_KIND_OBJECT_IDENTIFIER: return Form::object_identifier;
        case ASN1_KIND_RELATIVE_OID: return Form::relative_identifier;
        case ASN1_KIND_REAL: return Form::real;
        case ASN1_KIND_CHAR_STRING: return form_of_string(facts.string_type);
        case ASN1_KIND_ANY: return Form::open_type;
        default: return Form::null;
    }
}

static Presence presence_of(const orlenta_component& part) {
    if (part.has_presence_word) return Presence::flagged;
    return part.presence == ORLENTA_DEFAULT ? Presence::defaulted : Presence::mandatory;
}

static bool add_components(Plans& plans, Plan& plan) {
    orlenta_component part;
    for (uint32_t i = 0; orlenta_type_component(plan.type, i, &part) == 0; ++i) {
        Member& member = plan.members.emplace_back();
        member.name = PyUnicode_InternFromString(part.name);
        if (!member.name) return false;
        member.offset = part.offset;
        member.presence = presence_of(part);
        member.presence_offset = part.presence_offset;
        member.default_word = part.default_word;
        member.big_default = part.big_default;
        const Plan* inner = plan_of(plans, part.type);
        if (!inner) return false;
        plan.members[i].plan = inner;
    }
    return true;
}

static bool add_alternatives(Plans& plans, Plan& plan) {
    orlenta_alternative part;
    for (uint32_t i = 0; orlenta_type_alternative(plan.type, i, &part) == 0; ++i) {
        Member& member = plan.members.emplace_back();
        member.name = PyUnicode_InternFromString(part.name);
        if (!member.name) return false;
        plan.selector_offset = part.selector_offset;
        member.offset = static_cast<uint32_t>(part.value_offset);
        const Plan* inner = plan_of(plans, part.type);
        if (!inner) return false;
        plan.members[i].plan = inner;
    }
    return make_index(plan.index, plan.members.size(), [&](size_t i) { return plan.members[i].name; });
}

static bool add_items(Plan& plan) {
    orlenta_item part;
    for (uint32_t i = 0; orlenta_type_item(plan.type, i, &part) == 0; ++i) {
        PyObject* name = PyUnicode_InternFromString(part.name);
        if (!name) return false;
        plan.items.push_back(name);
    }
    return make_index(plan.index, plan.items.size(), [&](size_t i) { return plan.items[i]; });
}

static void set_bounds(Plan& plan, const orlenta_type_facts& facts) {
    if (facts.has_lower) plan.lower = facts.lower;
    if (facts.has_upper) plan.upper = facts.upper;
    plan.big_lower = facts.big_lower;
    plan.big_upper = facts.big_upper;
}

static bool build_indirect(Plans& plans, Plan& plan) {
    plan.form = Form::indirect;
    plan.size = sizeof(void*);
    plan.inner = plan_of(plans, tagged_inner(plan.type));
    return plan.inner != nullptr;
}

static bool build(Plans& plans, Plan& plan) {
    if (kind_of(plan.type) == ASN1_KIND_TAGGED) return build_indirect(plans, plan);
    orlenta_type_facts facts;
    orlenta_type_describe(plan.type, &facts);
    plan.form = form_of(facts);
    plan.kind = facts.kind;
    plan.is_extensible = facts.is_extensible != 0;
    plan.size = facts.record_size;
    set_bounds(plan, facts);
    switch (plan.form) {
        case Form::record: return add_components(plans, plan);
        case Form::choice: return add_alternatives(plans, plan);
        case Form::enumerated: return add_items(plan);
        case Form::list:
            plan.inner = plan_of(plans, facts.element);
            plan.stride = facts.stride;
            return plan.inner != nullptr;
        default: return true;
    }
}

// Finished plans lead to finished ones alone, so that after a failure those begun since the outermost call can go.
static const Plan* make_all(Plans& plans, const asn1_type_desc* type) {
    const Plan* plan = nullptr;
    try {
        plan = make_plan(plans, type);
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
    }
    if (!plan) {
        for (const asn1_type_desc* begun : plans.unfinished) plans.by_type.erase(begun);
    }
    plans.unfinished.clear();
    return plan;
}

const Plan* plan_of(Plans& plans, const asn1_type_desc* type) {
    type = behind_tags(type);
    auto known = plans.by_type.find(type);
    if (known != plans.by_type.end()) return known->second.get();
    return plans.unfinished.empty() ? make_all(plans, type) : make_plan(plans, type);
}

}  // namespace orlenta::python
