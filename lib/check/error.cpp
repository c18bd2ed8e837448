// SPDX-License-Identifier: Apache-2.0
#include "core/error.hpp"

#include "check/check.hpp"

namespace orlenta::check {

// The path's text is formed here and now: the walk pops its entries on the way out.
int asn1_check_error(check_state* state, const char* format, ...) {
    asn1_type_path_to_str(&state->path, state->error.path, sizeof state->error.path);
    va_list args;
    va_start(args, format);
    int result = set_message(&state->error, format, args);
    va_end(args);
    return result;
}

int check_data(check_state* state, bool is_read, const void* data, uint64_t length) {
    if (data || length == 0 || !(is_read || state->is_whole)) return 0;
    return asn1_check_error(state, "no data for a length of %llu", static_cast<unsigned long long>(length));
}

}  // namespace orlenta::check
