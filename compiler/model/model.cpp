// SPDX-License-Identifier: Apache-2.0
#include "compiler/model/model.hpp"

namespace orlentac {

std::string_view kind_name(Kind kind) {
    switch (kind) {
        case Kind::sequence: return "SEQUENCE";
        case Kind::sequence_of: return "SEQUENCE OF";
        case Kind::set: return "SET";
        case Kind::set_of: return "SET OF";
        case Kind::choice: return "CHOICE";
        case Kind::integer: return "INTEGER";
        case Kind::boolean: return "BOOLEAN";
        case Kind::bit_string: return "BIT STRING";
        case Kind::octet_string: return "OCTET STRING";
        case Kind::enumerated: return "ENUMERATED";
        case Kind::null: return "NULL";
        case Kind::object_identifier: return "OBJECT IDENTIFIER";
        case Kind::relative_oid: return "RELATIVE-OID";
        case Kind::real: return "REAL";
        case Kind::char_string: return "character string";
        case Kind::open_type: return "open type";
        case Kind::reference: return "reference";
    }
    return "";
}

std::string_view string_kind_name(StringKind kind) {
    static constexpr std::string_view kNames[] = {"NumericString", "PrintableString", "VisibleString",
                                                  "IA5String",     "BMPString",       "UniversalString",
                                                  "UTF8String",    "GeneralString",   "GraphicString",
                                                  "TeletexString", "VideotexString"};
    return kNames[static_cast<int>(kind)];
}

}  // namespace orlentac
