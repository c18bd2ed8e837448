// SPDX-License-Identifier: Apache-2.0
// The C types of value records, and the names of their members.
#pragma once

#include <string>
#include <vector>

#include "compiler/layout/layout.hpp"

namespace orlentac {

// A name of the schema as a member or an enumerator has it: no keyword or likely macro.
std::string safe_name(const std::string& schema_name);

// A named or nested type has a record with a name; what is in place has one of the library's types.
bool has_record(const Table& table);
std::string record_name(const Table& table);

// The library's type for a value that is no struct.
std::string simple_type(const Table& table);
// The table behind a TAGGED that has no name.
const Table& unwrapped(const Table& table);
// Whether the value is held through a pointer.
bool is_indirect(const Table& table);

// The C type of a value that the table describes, as a member, an element or a typedef has it.
std::string value_type(const Table& table);
// Whether the record is a struct: SEQUENCE, SET, CHOICE, SEQUENCE OF and SET OF.
bool is_struct(const Table& table);

// Members of a component: its presence word and its value; empty where there is none, as a NULL has no value.
struct MemberNames {
    std::string presence;
    std::string value;
};
// Components of a SEQUENCE or SET, alternatives of a CHOICE.
std::vector<MemberNames> member_names(const Table& table);
// Whether any member has a value: a record without one is padded to a byte, a CHOICE without one has no union.
bool has_payload(const Table& table);

// What a value is behind the tags before it.
const Table& behind_tags(const Table& table);
// Whether a value owns no block, so that nothing is to be released, and a copy is one of bytes.
bool owns_nothing(const Table& table);
// Bytes of a code unit of a string: 1, but 2 of a BMPString and 4 of a UniversalString.
int code_unit_size(const Table& table);
// The type of the constants of an ENUMERATED or of a CHOICE.
std::string index_enum_name(const Table& table);
// What stands before the constants of a key, orlenta_US_MessageFrame_messageId.
std::string key_owner(const Table& table, const Part& key);

// The ASN.1 type in a few words, with its bounds: "INTEGER (0..255)".
std::string description(const Table& table);
// The text with what would end or nest a comment, or be read as a trigraph in it, taken apart.
std::string fit_for_comment(std::string text);
// What a schema says of a type, so made fit, in lines of a comment that each begin with `prefix`.
std::string comment_lines(const std::string& about, std::string_view prefix);

}  // namespace orlentac
