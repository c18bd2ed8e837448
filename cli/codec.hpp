// One message through the library: values that release themselves, and failures as text.
#pragma once

#include <orlenta/error.h>
#include <orlenta/value.h>

#include <memory>
#include <string>
#include <string_view>

#include "cli/rules.hpp"

namespace cli {

struct ReleaseValue {
    const asn1_type_desc* type;
    void operator()(void* value) const { asn1_free_value(type, value); }
};
using Value = std::unique_ptr<void, ReleaseValue>;

// On failure these return null or false, with one line in `problem`: the message, and behind it the bit position and
// component path, as far as the library tells them.
Value decode(const Rules& rules, const asn1_type_desc* type, std::string_view input, bool allow_trailing,
             int* line, std::string* problem);
bool check(const asn1_type_desc* type, const void* value, std::string* problem);
bool encode(const Rules& rules, const asn1_type_desc* type, const void* value, const Style& style,
            std::string* output, std::string* problem);

}  // namespace cli
