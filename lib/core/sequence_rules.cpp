// SPDX-License-Identifier: Apache-2.0
#include <orlenta/value.h>
#include <stdio.h>

#include "core/extension.hpp"

using namespace orlenta;

namespace {

struct presence_check {
    const asn1_field* fields;
    const uint8_t* seen;
    char* msg;
    size_t msg_size;
    bool mandatory_absent;  // of the extension additions so far
};

}  // namespace

static bool is_mandatory(const presence_check& check, int32_t i) {
    return field_option(&check.fields[i]) == ASN1_OPTION_MANDATORY;
}

static int report_root(const presence_check& check, int32_t i) {
    snprintf(check.msg, check.msg_size, "component '%s' must be present", field_name(&check.fields[i]));
    return -1;
}

static int report_addition(const presence_check& check, int32_t i) {
    snprintf(check.msg, check.msg_size,
             "extension '%s' cannot be present because a previous mandatory extension was absent",
             field_name(&check.fields[i]));
    return -1;
}

static int report_member(const presence_check& check, int32_t i) {
    snprintf(check.msg, check.msg_size, kMissingMember, field_name(&check.fields[i]));
    return -1;
}

static int check_addition(presence_check& check, int32_t i) {
    if (check.seen[i] != 0) return check.mandatory_absent ? report_addition(check, i) : 0;
    if (is_mandatory(check, i)) check.mandatory_absent = true;
    return 0;
}

// Members begin .. end - 1. A group is there as soon as one of them is.
static int check_group(presence_check& check, int32_t begin, int32_t end) {
    bool any_seen = false, any_mandatory = false;
    for (int32_t i = begin; i < end; ++i) {
        if (check.seen[i] != 0 && check.mandatory_absent) return report_addition(check, i);
        any_seen |= check.seen[i] != 0;
        any_mandatory |= is_mandatory(check, i);
    }
    if (!any_seen) {
        check.mandatory_absent |= any_mandatory;
        return 0;
    }
    for (int32_t i = begin; i < end; ++i) {
        if (check.seen[i] == 0 && is_mandatory(check, i)) return report_member(check, i);
    }
    return 0;
}

int asn1_sequence_check_fields(const asn1_field* fields, int32_t n, const uint8_t* seen, char* msg,
                               size_t msg_size) {
    presence_check check = {fields, seen, msg, msg_size, false};
    for (int32_t i = 0; i < n;) {
        int32_t end = i + 1;
        int result = 0;
        if (!is_addition(&fields[i])) {
            if (seen[i] == 0 && is_mandatory(check, i)) result = report_root(check, i);
        } else if (!opens_group(&fields[i])) {
            result = check_addition(check, i);
        } else {
            end = i + static_cast<int32_t>(next_extension_unit(&fields[i], fields + n).count);
            result = check_group(check, i, end);
        }
        if (result != 0) return result;
        i = end;
    }
    return 0;
}
