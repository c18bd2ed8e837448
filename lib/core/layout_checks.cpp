// SPDX-License-Identifier: Apache-2.0
// The public records are a format that tables and applications are compiled against: every offset is fixed, on every
// machine.
#include <orlenta/error.h>
#include <orlenta/integer.h>
#include <orlenta/memory.h>
#include <orlenta/type_info.h>

#define ORLENTA_SIZE(record, size) static_assert(sizeof(record) == (size))
#define ORLENTA_AT(record, member, offset) static_assert(offsetof(record, member) == (offset))

#define ORLENTA_ALIGN(record) static_assert(alignof(record) == 8)

// Descriptors.
ORLENTA_SIZE(asn1_word, 8);
ORLENTA_ALIGN(asn1_word);

ORLENTA_SIZE(asn1_field, 32);
ORLENTA_AT(asn1_field, flags, 0);
ORLENTA_AT(asn1_field, type, 8);
ORLENTA_AT(asn1_field, extra, 16);
ORLENTA_AT(asn1_field, name, 24);

ORLENTA_SIZE(asn1_choice_alt, 16);
ORLENTA_AT(asn1_choice_alt, type, 0);
ORLENTA_AT(asn1_choice_alt, name, 8);

ORLENTA_SIZE(asn1_class_field, 32);
ORLENTA_AT(asn1_class_field, sort, 0);
ORLENTA_AT(asn1_class_field, type, 8);
ORLENTA_AT(asn1_class_field, default_value, 16);
ORLENTA_AT(asn1_class_field, name, 24);

ORLENTA_SIZE(asn1_containing_constraint, 16);
ORLENTA_AT(asn1_containing_constraint, sort, 0);
ORLENTA_AT(asn1_containing_constraint, type, 8);

ORLENTA_SIZE(asn1_table_constraint, 48);
ORLENTA_AT(asn1_table_constraint, sort, 0);
ORLENTA_AT(asn1_table_constraint, object_class, 8);
ORLENTA_AT(asn1_table_constraint, column, 16);
ORLENTA_AT(asn1_table_constraint, rows, 24);
ORLENTA_AT(asn1_table_constraint, row_count, 32);
ORLENTA_AT(asn1_table_constraint, selector_count, 40);

// Values.
ORLENTA_SIZE(asn1_string, 16);
ORLENTA_ALIGN(asn1_string);
ORLENTA_AT(asn1_string, data, 0);
ORLENTA_AT(asn1_string, length, 8);

ORLENTA_SIZE(asn1_bit_string, 16);
ORLENTA_ALIGN(asn1_bit_string);
ORLENTA_AT(asn1_bit_string, data, 0);
ORLENTA_AT(asn1_bit_string, length, 8);

ORLENTA_SIZE(asn1_array, 16);
ORLENTA_ALIGN(asn1_array);
ORLENTA_AT(asn1_array, data, 0);
ORLENTA_AT(asn1_array, count, 8);

ORLENTA_SIZE(asn1_open_value, 24);
ORLENTA_ALIGN(asn1_open_value);
ORLENTA_AT(asn1_open_value, type, 0);
ORLENTA_AT(asn1_open_value, data, 8);
ORLENTA_AT(asn1_open_value, length, 16);

ORLENTA_SIZE(asn1_integer, 24);
ORLENTA_ALIGN(asn1_integer);
ORLENTA_AT(asn1_integer, limbs, 0);
ORLENTA_AT(asn1_integer, size, 8);
ORLENTA_AT(asn1_integer, capacity, 12);
ORLENTA_AT(asn1_integer, negative, 16);

// Reports.
ORLENTA_SIZE(asn1_error, 520);
ORLENTA_AT(asn1_error, line, 0);
ORLENTA_AT(asn1_error, bit_position, 4);
ORLENTA_AT(asn1_error, path, 8);
ORLENTA_AT(asn1_error, message, 264);

// Buffers, paths, frames: the layout is the machine's own.
#if UINTPTR_MAX > UINT32_MAX
ORLENTA_SIZE(asn1_byte_buffer, 32);
ORLENTA_AT(asn1_byte_buffer, data, 0);
ORLENTA_AT(asn1_byte_buffer, length, 8);
ORLENTA_AT(asn1_byte_buffer, capacity, 16);
ORLENTA_AT(asn1_byte_buffer, failed, 24);

ORLENTA_SIZE(asn1_type_path_entry, 16);
ORLENTA_AT(asn1_type_path_entry, is_index, 0);
ORLENTA_AT(asn1_type_path_entry, u, 8);

ORLENTA_SIZE(asn1_type_path, 8 + 32 * 16);
ORLENTA_AT(asn1_type_path, depth, 0);
ORLENTA_AT(asn1_type_path, entries, 8);

ORLENTA_SIZE(asn1_parent_frame, 24);
ORLENTA_AT(asn1_parent_frame, parent, 0);
ORLENTA_AT(asn1_parent_frame, desc, 8);
ORLENTA_AT(asn1_parent_frame, value, 16);
#endif
