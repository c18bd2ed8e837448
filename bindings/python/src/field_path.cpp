// SPDX-License-Identifier: Apache-2.0
#include "field_path.hpp"

#include <charconv>

#include "core/descriptor.hpp"

namespace orlenta::python {

// ---- from text ------------------------------------------------------------------------------------------------------

static const Member* find_member(const Plan* plan, std::string_view name) {
    for (const Member& member : plan->members) {
        Py_ssize_t size;
        const char* text = PyUnicode_AsUTF8AndSize(member.name, &size);
        if (text && name == std::string_view(text, static_cast<size_t>(size))) return &member;
    }
    return nullptr;
}

static const Plan* step_to_member(const Plan* plan, std::string_view& text, FieldPath& path) {
    std::string_view name = text.substr(0, text.find_first_of(".["));
    const Member* member = find_member(plan, name);
    if (!member) return nullptr;
    text.remove_prefix(name.size());
    if (plan->form == Form::record) {
        path.steps.push_back({PathStep::component, member->presence == Presence::flagged, member->offset,
                              member->presence_offset, 0});
    } else {
        path.steps.push_back({PathStep::alternative, false, member->offset,
                              static_cast<uint64_t>(member - plan->members.data()), plan->selector_offset});
    }
    return member->plan;
}

static const Plan* step_to_element(const Plan* plan, std::string_view& text, FieldPath& path) {
    uint32_t index = 0;
    size_t close = text.find(']');
    if (text[0] != '[' || close == text.npos) return nullptr;
    auto [behind, error] = std::from_chars(text.data() + 1, text.data() + close, index);
    if (error != std::errc() || behind != text.data() + close) return nullptr;
    text.remove_prefix(close + 1);
    path.steps.push_back({PathStep::element, false, index * plan->stride, index, 0});
    return plan->inner;
}

static const Plan* step(const Plan* plan, std::string_view& text, FieldPath& path) {
    switch (plan->form) {
        case Form::record:
        case Form::choice: return step_to_member(plan, text, path);
        case Form::list: return step_to_element(plan, text, path);
        default: return nullptr;
    }
}

static const Plan* behind_pointers(const Plan* plan, FieldPath& path) {
    for (; plan->form == Form::indirect; plan = plan->inner) {
        path.steps.push_back({PathStep::indirect, false, 0, 0, 0});
    }
    return plan;
}

bool parse_path(const Plan* plan, std::string_view text, FieldPath& path) {
    plan = behind_pointers(plan, path);
    while (!text.empty()) {
        if (text[0] == '.' && !path.steps.empty()) text.remove_prefix(1);
        if (plan->form == Form::open_type) {
            path.steps.push_back({PathStep::open_type, false, 0, 0, 0});
            path.rest = text;
            return !text.empty();
        }
        const Plan* next = text.empty() ? nullptr : step(plan, text, path);
        if (!next) {
            path.rest = text;
            return false;
        }
        plan = behind_pointers(next, path);
    }
    path.leaf = plan;
    return true;
}

// ---- through a value ------------------------------------------------------------------------------------------------

static const void* follow_step(const PathStep& step, const void* record) {
    switch (step.kind) {
        case PathStep::component:
            if (step.has_presence_word && load32(at_offset(record, step.number)) == 0) return nullptr;
            return at_offset(record, step.offset);
        case PathStep::alternative:
            if (load32(at_offset(record, step.selector_offset)) != step.number) return nullptr;
            return at_offset(record, step.offset);
        case PathStep::element: {
            const asn1_array& array = *static_cast<const asn1_array*>(record);
            return step.number < array.count ? at_offset(array.data, step.offset) : nullptr;
        }
        default: return load_pointer(record);
    }
}

// A type that does not have the rest of the path makes the part absent.
static FieldPath* path_behind(Schema& schema, FieldPath& path, const asn1_type_desc* type) {
    std::unique_ptr<FieldPath>& behind = path.behind[type];
    if (!behind) {
        behind = std::make_unique<FieldPath>();
        const Plan* plan = plan_of(schema.plans, type);
        if (!plan || !parse_path(plan, path.rest, *behind)) *behind = {};
    }
    return behind.get();
}

static Part follow_open_type(Schema& schema, FieldPath& path, const asn1_open_value& open) {
    if (!open.type || !open.data) return {nullptr, nullptr};
    FieldPath* behind = path_behind(schema, path, open.type);
    if (!behind->leaf && behind->rest.empty()) return {nullptr, nullptr};
    return follow(schema, *behind, open.data);
}

Part follow(Schema& schema, FieldPath& path, const void* record) {
    for (const PathStep& step : path.steps) {
        if (step.kind == PathStep::open_type) {
            return follow_open_type(schema, path, *static_cast<const asn1_open_value*>(record));
        }
        record = follow_step(step, record);
        if (!record) return {nullptr, nullptr};
    }
    return {path.leaf, record};
}

}  // namespace orlenta::python
