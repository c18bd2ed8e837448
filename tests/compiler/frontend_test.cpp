// SPDX-License-Identifier: Apache-2.0
// The model that schemas make, and what is said of wrong ones.
#include "compiler/frontend.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "tests/compiler/describe.hpp"
#include "tests/compiler/region_sources.hpp"

using namespace orlentac;
using test::describe;

namespace {

struct Loaded {
    Schema schema;
    Diagnostics diags;
    std::string errors;
};

std::unique_ptr<Loaded> load(const std::vector<SourceText>& sources, SchemaOptions options = {}) {
    auto loaded = std::make_unique<Loaded>();
    load_schema(sources, options, loaded->schema, loaded->diags);
    for (const Diagnostic& error : loaded->diags.errors) {
        loaded->errors += fmt::format("{}: {}\n", place_text(error.place, sources.size() > 1), error.text);
    }
    for (const Diagnostic& note : loaded->diags.notes) {
        loaded->errors +=
            fmt::format("{}: note: {}\n", place_text(note.place, sources.size() > 1), note.text);
    }
    return loaded;
}

// One module whose assignments begin on line 2.
std::string module(const std::string& body) {
    return "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n" + body + "\nEND\n";
}

std::unique_ptr<Loaded> load_module(const std::string& body) { return load({{"m.asn1", module(body)}}); }

const NamedType* find(const Schema& schema, const std::string& name) {
    for (const NamedType* type : schema.types) {
        if (type->name == name) return type;
    }
    return nullptr;
}

std::string type_text(const Loaded& loaded, const std::string& name) {
    const NamedType* type = find(loaded.schema, name);
    return type ? describe(*type->type) : "no such type";
}

// ---- single types ----

// The type of `body` named A, or what `name` says.
struct TypeCase {
    const char* body;
    const char* expected;
    const char* name = "A";
};

class Types : public testing::TestWithParam<TypeCase> {};

TEST_P(Types, AreResolved) {
    auto loaded = load_module(GetParam().body);
    EXPECT_EQ(loaded->errors, "");
    EXPECT_EQ(type_text(*loaded, GetParam().name), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Bounds, Types,
    testing::Values(TypeCase{"A ::= INTEGER (-5..n)\nn INTEGER ::= m\nm INTEGER ::= 7", "INTEGER (-5..7)"},
                    TypeCase{"A ::= INTEGER (4)", "INTEGER (4..4)"},
                    TypeCase{"A ::= INTEGER (2..4 | 6..8 | 1)", "INTEGER (1..8)"},
                    TypeCase{"A ::= INTEGER (0..9) (5..MAX)", "INTEGER (5..9)"},
                    TypeCase{"A ::= INTEGER (0..99 ^ (5..200 | 300))", "INTEGER (5..99)"},
                    TypeCase{"A ::= INTEGER (0..9 EXCEPT 0)", "INTEGER (0..9)"},
                    TypeCase{"A ::= INTEGER (ALL EXCEPT 0)", "INTEGER"},
                    TypeCase{"A ::= INTEGER (0..9, ..., 20..30)", "INTEGER (0..9,...)"},
                    TypeCase{"A ::= INTEGER (0..9, ...) (1..3)", "INTEGER (1..3)"},
                    TypeCase{"A ::= INTEGER (0<..<9)", "INTEGER (1..8)"},
                    TypeCase{"A ::= INTEGER (0..MAX)", "INTEGER (0..MAX)"},
                    TypeCase{"A ::= INTEGER { low(1), high(n) } (low..high)\nn INTEGER ::= 3",
                             "INTEGER (1..3) low=1 high=3"},
                    TypeCase{"A ::= INTEGER (-9223372036854775809..18446744073709551616)",
                             "INTEGER (-9223372036854775809..18446744073709551616)"},
                    TypeCase{"A ::= INTEGER (B | 20)\nB ::= INTEGER (3..5, ...)", "INTEGER (3..20)"},
                    TypeCase{"A INTEGER ::= { 1 | 3..5, ... }", "INTEGER (1..5,...)"},
                    TypeCase{"A ::= OCTET STRING (SIZE (2..4, ...))", "OCTETS (2..4,...)"},
                    TypeCase{"A ::= OCTET STRING (SIZE (2..4), ...)", "OCTETS (2..4,...)"},
                    TypeCase{"A ::= BIT STRING { up(0), down(3) } (SIZE (4))", "BITS (4..4) up=0 down=3"},
                    TypeCase{"A ::= SEQUENCE SIZE (1..n, ...) OF BOOLEAN\nn INTEGER ::= 8",
                             "SEQUENCE (1..8,...) OF BOOLEAN"},
                    TypeCase{"A ::= SEQUENCE (SIZE (1..4), ...) OF INTEGER (0..1)",
                             "SEQUENCE (1..4,...) OF INTEGER (0..1)"},
                    TypeCase{"A ::= SET SIZE (MIN..3) OF x NULL", "SET (0..3) OF NULL"},
                    // A union with what bounds do not tell has none.
                    TypeCase{"A ::= IA5String (SIZE (3) | FROM (\"a\"))", "IA5 0-7F"},
                    TypeCase{"A ::= IA5String (SIZE (3) ^ FROM (\"a\"))", "IA5 (3..3) 61-61"}));

INSTANTIATE_TEST_SUITE_P(
    Alphabets, Types,
    testing::Values(TypeCase{"A ::= IA5String", "IA5 0-7F"},
                    TypeCase{"A ::= NumericString (SIZE (1..4))", "Numeric (1..4) 20-20 30-39"},
                    TypeCase{"A ::= PrintableString", "Printable 20-20 27-29 2B-3A 3D-3D 3F-3F 41-5A 61-7A"},
                    TypeCase{"A ::= VisibleString (FROM (\"a\"..\"f\" | \"zA\")) (SIZE (5))",
                             "Visible (5..5) 41-41 61-66 7A-7A"},
                    TypeCase{"A ::= IA5String (FROM (\"a\"..\"z\", ...))", "IA5 0-7F"},
                    TypeCase{"A ::= B (FROM (\"0\"..\"z\"))\nB ::= VisibleString (FROM (\"A\"..MAX))",
                             "Visible 41-7A from B"},
                    TypeCase{"A ::= BMPString (FROM (\"\xC3\xA4\"))", "BMP E4-E4"},
                    TypeCase{"A ::= IA5String (FROM ({0,9} | {{0,13}, \"ab\", z}))\nz IA5String ::= {7, 10}",
                             "IA5 9-9 D-D 61-62 7A-7A"},
                    TypeCase{"A ::= UniversalString (FROM ({0,0,4,1}..{127,0,0,9}))",
                             "Universal 401-7F000009"},
                    TypeCase{"A ::= UTF8String (SIZE (1..9))", "UTF8 (1..9)"},
                    TypeCase{"A ::= GeneralizedTime", "Visible 20-7E tag 24"},
                    TypeCase{"A ::= UTCTime", "Visible 20-7E tag 23"},
                    TypeCase{"A ::= [UNIVERSAL 24] IMPLICIT VisibleString", "Visible 20-7E [UNIVERSAL 24]"}));

INSTANTIATE_TEST_SUITE_P(
    References, Types,
    testing::Values(
        TypeCase{"A ::= SEQUENCE { a B, b B (1..2), c SEQUENCE OF B }\nB ::= INTEGER { x(2) } (0..9)",
                 "SEQUENCE { a: B; b: INTEGER (1..2) x=2 from B; c: SEQUENCE OF B; }"},
        // No trace of the constraint, so none of it in the model.
        TypeCase{"A ::= SEQUENCE { a B (WITH COMPONENTS { ..., x ABSENT }) OPTIONAL, b C (y), d D "
                 "(CONSTRAINED BY { B }) }\n"
                 "B ::= SEQUENCE { x NULL OPTIONAL }\nC ::= ENUMERATED { x, y }\nD ::= INTEGER",
                 "SEQUENCE { a: B OPTIONAL; b: C; d: D; }"},
        TypeCase{"A ::= B (SIZE (2))\nB ::= SEQUENCE (SIZE (1..4)) OF SEQUENCE { x NULL }",
                 "SEQUENCE (2..2) OF SEQUENCE { x: NULL; } from B"},
        TypeCase{"A ::= SEQUENCE { a x < B, b y < B }\nB ::= CHOICE { x INTEGER (0..1), y B2 }\nB2 ::= NULL",
                 "SEQUENCE { a: INTEGER (0..1); b: B2; }"},
        TypeCase{"A ::= OCTET STRING (CONTAINING SEQUENCE { a A OPTIONAL })",
                 "OCTETS CONTAINING SEQUENCE { a: A OPTIONAL; }"}));

INSTANTIATE_TEST_SUITE_P(
    Structures, Types,
    testing::Values(
        TypeCase{
            "A ::= SEQUENCE { a NULL, ..., b NULL, [[ 2: c NULL, d NULL OPTIONAL ]], [[ e NULL ]], f NULL }",
            "SEQUENCE { a: NULL; ... b: NULL; [[ c: NULL; d: NULL OPTIONAL ]]; [[ e: NULL ]]; f: NULL; }"},
        TypeCase{"A ::= SEQUENCE { a NULL, ... ! 5, ..., b NULL }", "SEQUENCE { a: NULL; b: NULL; ... }"},
        TypeCase{"A ::= CHOICE { a [0] NULL, ..., [[ b [1] NULL ]], c [2] NULL }",
                 "CHOICE { a: NULL [0]; +b: NULL [1]; +c: NULL [2]; ... }"},
        TypeCase{"A ::= SET { x NULL, COMPONENTS OF B }\nB ::= SET { a INTEGER DEFAULT 1, ..., b NULL }",
                 "SET { x: NULL; a: INTEGER DEFAULT 1; }"},
        TypeCase{"A ::= ENUMERATED { a, b(0), c, ..., d, e(10), f }",
                 "ENUMERATED { b(0) a(1) c(2) +d(3) +e(10) +f(11) ... }"},
        TypeCase{"A ::= SEQUENCE { c A OPTIONAL, d SEQUENCE OF A, e CHOICE { f A, g NULL } }",
                 "SEQUENCE { c: A OPTIONAL; d: SEQUENCE OF A; e: CHOICE { f: A; g: NULL; }; }"},
        TypeCase{"A ::= SEQUENCE { a REAL, b RELATIVE-OID, c ANY, d OBJECT IDENTIFIER }",
                 "SEQUENCE { a: REAL; b: RELATIVE-OID; c: OPEN; d: OID; }"}));

INSTANTIATE_TEST_SUITE_P(
    Tags, Types,
    testing::Values(
        TypeCase{"A ::= [APPLICATION 3] EXPLICIT [n] INTEGER\nn INTEGER ::= 7",
                 "INTEGER [APPLICATION 3] EXPLICIT [7]"},
        // An implicit tag takes the place of the one behind it.
        TypeCase{"A ::= [1] [2] EXPLICIT [PRIVATE 3] NULL", "NULL [1] EXPLICIT [PRIVATE 3]"},
        TypeCase{"A ::= SEQUENCE OF [5] B\nB ::= [6] EXPLICIT NULL", "SEQUENCE OF B [5]"},
        // It cannot be implicit before a CHOICE, an open type, or the parameter of a type.
        TypeCase{"A ::= [1] B\nB ::= C\nC ::= CHOICE { a NULL }", "B [1] EXPLICIT"},
        TypeCase{"A ::= [1] B\nB ::= [0] C\nC ::= CHOICE { a NULL }", "B [1]"},
        TypeCase{"A ::= SEQUENCE { b [1] ANY }", "SEQUENCE { b: OPEN [1] EXPLICIT; }"},
        TypeCase{"A ::= B {[4] NULL}\nB {T} ::= SEQUENCE { t T, u [1] T }",
                 "SEQUENCE { t: NULL [4]; u: NULL [1] EXPLICIT [4]; }"},
        TypeCase{"A ::= B {NULL}\nB {T} ::= SEQUENCE { t T }", "SEQUENCE { t: NULL [0] EXPLICIT; }"},
        // Tags of a constrained type go along; root alternatives and a SET's components stand in canonical order.
        TypeCase{"A ::= SEQUENCE { b [0] B (1..5) }\nB ::= [3] INTEGER",
                 "SEQUENCE { b: INTEGER (1..5) [0] from B; }"},
        TypeCase{"A ::= CHOICE { a [2] NULL, b [APPLICATION 9] NULL, c C, ..., d [0] NULL }\n"
                 "C ::= CHOICE { x [4] NULL, y [UNIVERSAL 8] NULL }",
                 "CHOICE { c: C; b: NULL [APPLICATION 9]; a: NULL [2]; +d: NULL [0]; ... }"},
        TypeCase{"A ::= SET { a [2] NULL OPTIONAL, b BOOLEAN, ..., c [0] NULL, ..., d INTEGER }",
                 "SET { b: BOOLEAN; d: INTEGER; a: NULL [2] OPTIONAL; ... c: NULL [0]; }"}));

INSTANTIATE_TEST_SUITE_P(
    Defaults, Types,
    testing::Values(
        TypeCase{"A ::= SEQUENCE { b B DEFAULT low, c INTEGER DEFAULT n, d B DEFAULT n }\n"
                 "B ::= INTEGER { low(-7) }\nn INTEGER ::= 40000000000",
                 "SEQUENCE { b: B DEFAULT -7; c: INTEGER DEFAULT 40000000000; d: B DEFAULT 40000000000; }"},
        // The item's index: the root comes first.
        TypeCase{"A ::= SEQUENCE { a B DEFAULT y, b B DEFAULT v, c B DEFAULT z }\n"
                 "B ::= ENUMERATED { x(5), ..., z, y }\nv B ::= x",
                 "SEQUENCE { a: B DEFAULT item 2; b: B DEFAULT item 0; c: B DEFAULT item 1; }"},
        TypeCase{"A ::= SEQUENCE { a OBJECT IDENTIFIER DEFAULT { base 7 }, b RELATIVE-OID DEFAULT { 2 r },"
                 " c OBJECT IDENTIFIER DEFAULT { iso member-body 840 } }\n"
                 "base OBJECT IDENTIFIER ::= { itu-t recommendation z 5 }\nr RELATIVE-OID ::= { 300 }",
                 "SEQUENCE { a: OID DEFAULT oid 001A0507; b: RELATIVE-OID DEFAULT oid 02822C;"
                 " c: OID DEFAULT oid 2A8648; }"},
        TypeCase{"A ::= SEQUENCE { a BIT STRING DEFAULT '101'B, b BIT STRING { p(1), q(9) } DEFAULT { q, p },"
                 " c OCTET STRING DEFAULT 'AB C'H, d BIT STRING DEFAULT 'F'H, e OCTET STRING DEFAULT '1'B }",
                 "SEQUENCE { a: BITS DEFAULT bits 3 A0; b: BITS p=1 q=9 DEFAULT bits 10 4040;"
                 " c: OCTETS DEFAULT octets ABC0; d: BITS DEFAULT bits 4 F0; e: OCTETS DEFAULT octets 80; }"},
        TypeCase{
            "A ::= SEQUENCE { a UTF8String DEFAULT \"a \"\"b\"\"\n   c\", b NULL DEFAULT NULL,"
            " c OBJECT IDENTIFIER DEFAULT { joint-iso-itu-t(2) n 840 }, d RELATIVE-OID DEFAULT { 300 1 } }\n"
            "n INTEGER ::= 999",
            "SEQUENCE { a: UTF8 DEFAULT \"a \"b\"c\"; b: NULL DEFAULT NULL;"
            " c: OID DEFAULT oid 88378648; d: RELATIVE-OID DEFAULT oid 822C01; }"},
        TypeCase{
            "A ::= SEQUENCE { a REAL DEFAULT 1.5e2, b REAL DEFAULT -3, c REAL DEFAULT PLUS-INFINITY,"
            " d REAL DEFAULT { mantissa 5, base 2, exponent -1 }, e SEQUENCE OF NULL DEFAULT {},"
            " f CHOICE { x NULL } DEFAULT x : NULL }",
            "SEQUENCE { a: REAL DEFAULT 150; b: REAL DEFAULT -3; c: REAL DEFAULT inf; d: REAL DEFAULT 2.5;"
            " e: SEQUENCE OF NULL DEFAULT { }; f: CHOICE { x: NULL; } DEFAULT x : NULL; }"}));

// ---- classes ----

constexpr const char* kClass =
    "CLS ::= CLASS { &id Id UNIQUE, &Type OPTIONAL, &flag BOOLEAN DEFAULT TRUE }\n"
    "  WITH SYNTAX { [TYPE &Type] ID &id [FLAG &flag] }\n"
    "Id ::= INTEGER (0..99)\nfive Id ::= 5\n"
    "one CLS ::= { ID 1 }\n"
    "Set CLS ::= { one | { TYPE B ID five }, ..., { TYPE SEQUENCE { n NULL } ID 7 FLAG FALSE } }\n"
    "B ::= NULL\n";

struct ClassCase {
    const char* body;
    const char* expected;
    const char* instance = "";
};

class Classes : public testing::TestWithParam<ClassCase> {};

TEST_P(Classes, AreResolved) {
    auto loaded = load_module(std::string(kClass) + GetParam().body);
    EXPECT_EQ(loaded->errors, "");
    EXPECT_EQ(type_text(*loaded, "A"), GetParam().expected);
    std::string instances;
    for (const NamedType* type : loaded->schema.instances)
        instances += type->name + " " + describe(*type->type);
    EXPECT_EQ(instances, GetParam().instance);
}

#define SET_ROWS "Set{ < 1 - - > < 5 B - > < 7 SEQUENCE { n: NULL; } FALSE > ... }"

INSTANTIATE_TEST_SUITE_P(
    All, Classes,
    testing::Values(
        ClassCase{"A ::= SEQUENCE { k CLS.&id ({Set}), v CLS.&Type ({Set}{@k}) }",
                  "SEQUENCE { k: Id as CLS.0; v: OPEN column 1 of " SET_ROWS " by 0 up .0 = column 0; }"},
        // From the outermost SEQUENCE, from the innermost one, from the one around it, and by a path.
        ClassCase{
            "A ::= SEQUENCE { x NULL, k CLS.&id ({Set}), s SEQUENCE { j SEQUENCE { l CLS.&flag ({Set}) },\n"
            "  a CLS.&Type ({None}{@k}), b CLS.&Type ({None}{@.j.l}), c CHOICE { d CLS.&Type ({None}{@..k, "
            "@.j.l}) } } }\n"
            "None CLS ::= { ... }",
            "SEQUENCE { x: NULL; k: Id as CLS.0; s: SEQUENCE { j: SEQUENCE { l: BOOLEAN as CLS.2; };"
            " a: OPEN column 1 of None{ ... } by 1 up .1 = column 0;"
            " b: OPEN column 1 of None{ ... } by 0 up .0 .0 = column 2;"
            " c: CHOICE { d: OPEN column 1 of None{ ... } by 1 up .1 = column 0 by 0 up .0 .0 = column 2; }; "
            "}; }"},
        ClassCase{"A ::= SEQUENCE { v CLS.&Type ({ one | Empty | { TYPE A ID 3 } }) }\nEmpty CLS ::= { ... }",
                  "SEQUENCE { v: OPEN column 1 of { < 1 - - > < 3 A - > ... }; }"},
        ClassCase{"A ::= SEQUENCE { k OTHER.&id ({Two}), v OTHER.&Type ({Two}) }\nOTHER ::= TYPE-IDENTIFIER\n"
                  "Two OTHER ::= { { NULL IDENTIFIED BY {1 3} } | { B IDENTIFIED BY {1 3 6} } }",
                  "SEQUENCE { k: OID as TYPE-IDENTIFIER.0;"
                  " v: OPEN column 1 of Two{ < oid 2B NULL > < oid 2B06 B > }; }"},
        // An instance under a name of its own, one in place, and simple ones, which are no types of their own.
        ClassCase{"A ::= P { {Set}, 4, Q {BOOLEAN} }\nQ {T} ::= SET OF T\n"
                  "P {CLS : S, INTEGER : n, T} ::= SEQUENCE { k CLS.&id ({S}), i INTEGER (0..n), t T }",
                  "SEQUENCE { k: Id as CLS.0; i: INTEGER (0..4); t: Q [2] EXPLICIT; }", "Q SET OF BOOLEAN"},
        ClassCase{
            "A ::= SEQUENCE { a R {5, Id}, b R {6, NULL} }\nR {INTEGER : n, T} ::= OCTET STRING (SIZE (n))",
            "SEQUENCE { a: OCTETS (5..5); b: OCTETS (6..6); }"},
        // From objects: types, values, sets of what they hold; objects and sets with parameters.
        ClassCase{
            "A ::= SEQUENCE { t seven.&Type, v INTEGER (0..seven.&id), w OUT.&Ins.&Type ({ both {4} }) }\n"
            "seven CLS ::= { TYPE B ID 7 }\n"
            "OUT ::= CLASS { &Ins CLS, &one CLS DEFAULT one, &Values INTEGER OPTIONAL, &var &Type2 OPTIONAL,"
            " &Type2 OPTIONAL }\n"
            "both {Id : n} OUT ::= { &Ins { seven | { TYPE NULL ID n } | More {{ seven }} } }\n"
            "More {CLS : S} CLS ::= { S EXCEPT one }",
            "SEQUENCE { t: B; v: INTEGER (0..7); w: OPEN column 1 of { < 7 B - > < 4 NULL - > }; }"},
        // Values of objects as sets of values (X.681 clause 15); a field's type under a constraint.
        ClassCase{
            "A ::= SEQUENCE { a Pair.&id, b INTEGER (o.&Some), c o.&Some, d CLS2.&id ({Pair}) (2..8) }\n"
            "CLS2 ::= CLASS { &id INTEGER, &Some INTEGER OPTIONAL } WITH SYNTAX { &id [IN &Some] }\n"
            "o CLS2 ::= { 2 IN { 1 | 5..max } } max INTEGER ::= 9\nPair CLS2 ::= { o | { 7 IN {3} } }",
            "SEQUENCE { a: INTEGER (2..7) as CLS2.0; b: INTEGER (1..9); c: INTEGER (1..9); "
            "d: INTEGER (2..8) as CLS2.0; }"},
        // A set of values as a parameter; a class as one.
        ClassCase{"A ::= SEQUENCE { a V {{1..4}}, k K {CLS, {one}} }\nV {INTEGER : S} ::= INTEGER (S)\n"
                  "K {C, C : S} ::= SEQUENCE { id C.&id ({S}) }",
                  "SEQUENCE { a: INTEGER (1..4); k: K; }", "K SEQUENCE { id: Id as CLS.0; }"},
        ClassCase{"A ::= SEQUENCE { a INSTANCE OF OTHER ({Two}), e EXTERNAL }\nOTHER ::= TYPE-IDENTIFIER\n"
                  "Two OTHER ::= { { NULL IDENTIFIED BY {1 3} } }",
                  "SEQUENCE { a: SEQUENCE { type-id: OID as TYPE-IDENTIFIER.0; value: OPEN column 1 of Two{ "
                  "< oid 2B "
                  "NULL > } by 0 up .0 = column 0 [0] EXPLICIT; } tag 8; e: EXTERNAL; }"},
        // Through a CHOICE, and out of reach of contents.
        ClassCase{
            "A ::= CHOICE { c SEQUENCE { k CLS.&id ({None}), l SEQUENCE OF CLS.&Type ({None}{@c.k}),"
            " o OCTET STRING (CONTAINING CLS.&Type ({None}{@c.k})) } }\nNone CLS ::= { ... }",
            "CHOICE { c: SEQUENCE { k: Id as CLS.0; l: SEQUENCE OF OPEN column 1 of None{ ... } by 0 up .0 = "
            "column 0; o: OCTETS CONTAINING OPEN; }; }"},
        ClassCase{"A ::= SEQUENCE { l List {B} }\nList {T} ::= SEQUENCE { t T, next List {T} OPTIONAL }",
                  "SEQUENCE { l: List; }", "List SEQUENCE { t: B [0] EXPLICIT; next: List OPTIONAL; }"}));

TEST(Classes, EachUseInPlaceIsAnInstance) {
    auto loaded =
        load_module(std::string(kClass) +
                    "A ::= SEQUENCE { a SEQUENCE OF P {{Set}}, b P {{Set}} OPTIONAL, c P {{ one }} }\n"
                    "P {CLS : S} ::= SEQUENCE { k CLS.&id ({S}), v CLS.&Type ({S}{@k}) }");
    ASSERT_EQ(loaded->errors, "");
    ASSERT_EQ(loaded->schema.instances.size(), 3u);
    auto set_of = [&](int i) {
        return loaded->schema.instances[i]->type->components[1].type->table->object_set;
    };
    EXPECT_EQ(set_of(0), set_of(1));
    EXPECT_EQ(describe(*set_of(2)), "{ < 1 - - > }");
}

// ---- modules ----

TEST(Modules, NamesComeThroughImports) {
    auto loaded =
        load({{"a.asn1",
               "A { iso 1 } DEFINITIONS AUTOMATIC TAGS ::= BEGIN IMPORTS T, v FROM B { iso 2 } U FROM C;\n"
               "X ::= SEQUENCE { t T, u U (0..v), w B.W } END"},
              {"b.asn1",
               "B DEFINITIONS AUTOMATIC TAGS ::= BEGIN EXPORTS T, v, W; IMPORTS T FROM C;\n"
               "W ::= T v INTEGER ::= 3 END"},
              {"c.asn1",
               "C DEFINITIONS XER INSTRUCTIONS AUTOMATIC TAGS EXTENSIBILITY IMPLIED ::= BEGIN EXPORTS ALL;\n"
               "T ::= SEQUENCE { /* a /* nested */ comment */ a NULL -- b NULL -- } U ::= INTEGER END"}});
    EXPECT_EQ(loaded->errors, "");
    EXPECT_EQ(type_text(*loaded, "X"), "SEQUENCE { t: T; u: INTEGER (0..3) from U; w: W; }");
    EXPECT_EQ(type_text(*loaded, "T"), "SEQUENCE { a: NULL; ... }");
    EXPECT_TRUE(find(loaded->schema, "W")->is_alias);
    EXPECT_EQ(find(loaded->schema, "W")->module, "B");
    EXPECT_EQ(loaded->schema.modules, (std::vector<std::string>{"A", "B", "C"}));
}

TEST(Modules, AreToldOfOnceIfTheyAreNone) {
    EXPECT_EQ(load({{"a.asn1", "#include <stdio.h>\nint main(void) { return 0; }\n"}})->errors,
              "1:2: expected an ASN.1 module, found 'include'\n");
    EXPECT_EQ(load({{"a.asn1",
                     "\x7F"
                     "ELF \x02\x01"}})
                  ->errors,
              "1:2: expected an ASN.1 module, found 'ELF'\n");
    EXPECT_EQ(load({{"a.asn1", "M DEFINITION ::= BEGIN END"}})->errors,
              "1:3: expected DEFINITIONS, found 'DEFINITION'\n");
    EXPECT_EQ(load({{"a.asn1", ""}})->errors, "1:1: expected an ASN.1 module, found the end of the file\n");
}

TEST(Modules, ErrorsOfSeveralFilesComeInTheirOrder) {
    auto loaded = load({{"b.asn1",
                         "B DEFINITIONS AUTOMATIC TAGS ::= BEGIN IMPORTS T FROM A Z FROM Y;\nX ::= SEQUENCE "
                         "{ z Z, t T }\nY ::= Q END"},
                        {"a.asn1", "A DEFINITIONS AUTOMATIC TAGS ::= BEGIN\nX ::= NULL\nQ ::= W END"}});
    EXPECT_EQ(loaded->errors,
              "b.asn1:1:48: module 'A' does not define 'T'\n"
              "b.asn1:1:64: unknown module 'Y'\n"
              "b.asn1:3:7: unknown type 'Q'; module 'A' defines it, but it is not imported\n"
              "a.asn1:3:7: unknown type 'W'\n"
              "b.asn1:1:48: note: module 'A' does not define 'T'\n");
}

TEST(Modules, EachHasItsOwnNamesAndTagDefault) {
    auto loaded = load({{"a.asn1",
                         "A DEFINITIONS IMPLICIT TAGS ::= BEGIN IMPORTS T, v FROM B;\n"
                         "X ::= SEQUENCE { t [0] T, u [1] A.U (0..v), w C.T } U ::= INTEGER END"},
                        {"b.asn1", "B DEFINITIONS ::= BEGIN T ::= [3] U U ::= NULL v INTEGER ::= 3 END"},
                        {"c.asn1",
                         "C DEFINITIONS AUTOMATIC TAGS ::= BEGIN T ::= SEQUENCE { a NULL, COMPONENTS OF D }\n"
                         "D ::= SEQUENCE { b [7] NULL } v INTEGER ::= 4 END"}});
    EXPECT_EQ(loaded->errors, "");
    EXPECT_EQ(type_text(*loaded, "X"), "SEQUENCE { t: T [0]; u: INTEGER (0..3) [1] from U; w: T; }");
    std::string types;
    for (const NamedType* type : loaded->schema.types)
        types += type->module + "." + type->name + " " + describe(*type->type) + "\n";
    EXPECT_NE(types.find("B.T U [3] EXPLICIT\nB.U NULL\nC.T SEQUENCE { a: NULL; b: NULL; }"),
              std::string::npos)
        << types;
}

// ---- wrong schemas ----

struct WrongCase {
    const char* body;
    const char* errors;
};

class Wrong : public testing::TestWithParam<WrongCase> {};

TEST_P(Wrong, IsTold) { EXPECT_EQ(load_module(GetParam().body)->errors, GetParam().errors); }

INSTANTIATE_TEST_SUITE_P(
    Syntax, Wrong,
    testing::Values(
        WrongCase{"A ::= SEQUENCE { a NULL b NULL }",
                  "2:25: expected ',' or '}' behind a component, found 'b'\n"},
        WrongCase{"A ::= SEQUENCE { a NULL, }", "2:26: expected the name of a component, found '}'\n"},
        WrongCase{"A ::= SEQUENCE { Big NULL }", "2:18: expected the name of a component, found 'Big'\n"},
        WrongCase{"A = INTEGER", "2:3: expected '::=', found '='\n"},
        WrongCase{"A ::= SEQUENCE { a_b NULL }",
                  "2:19: expected a letter, a digit or a hyphen in a name, found '_'\n"},
        WrongCase{"A ::= SEQUENCE SIZE (1) BOOLEAN", "2:25: expected OF, found 'BOOLEAN'\n"},
        WrongCase{"A ::= SEQUENCE { a NULL, [[ b NULL ]] }",
                  "2:26: expected an extension marker before '[[', found '[['\n"},
        WrongCase{"A ::= SEQUENCE { a DATE, b DATE }",
                  "2:20: note: DATE is taken as a VisibleString of its contents in BER (X.690 clause 8.26); "
                  "PER and "
                  "OER have other forms (X.691 clause 32)\n"},
        WrongCase{"A ::= INTEGER (0..08)", "2:19: expected a number without leading zeros, found '08'\n"},
        WrongCase{"A ::= [XER:NAME AS \"b\"] [TAG:3] SEQUENCE { a [LIST] B }\nB ::= SEQUENCE OF NULL\n"
                  "ENCODING-CONTROL XER GLOBAL-DEFAULTS",
                  "2:7: note: encoding instructions have no effect (X.693, X.695)\n"},
        WrongCase{"A ::= CHOICE { a NULL OPTIONAL }",
                  "2:23: expected ',' or '}' behind an alternative, found 'OPTIONAL'\n"},
        WrongCase{"OPERATION MACRO ::= BEGIN\nTYPE NOTATION ::= empty\nEND\nA ::= OPERATION",
                  "2:11: MACRO is not supported (X.208 annex A)\n"},
        WrongCase{"A ::= OCTET STRING ('0G'H)", "2:21: expected hexadecimal (0 to F) digits, found 'G'\n"},
        WrongCase{"a ::= INTEGER",
                  "2:3: expected the type of the value 'a' (a type's name has a capital), found '::='\n"},
        WrongCase{"/* A ::= NULL",
                  "2:1: expected '*/' to end this comment, found the end of the file\n"
                  "4:1: expected END, found the end of the file\n"},
        // Every assignment is read, whatever becomes of the one before, and a broken name is a known one.
        WrongCase{"A ::= SEQUENCE {\n  a NULL,\n  b INTEGER (0..5\nB ::= INTEGER (5..1)\nc ::= 5\nD ::= "
                  "SEQUENCE { a A, e E }",
                  "5:1: expected '|', '^', ',' or ')' in a constraint, found 'B'\n"
                  "5:16: the lower bound 5 is above the upper bound 1\n"
                  "6:3: expected the type of the value 'c' (a type's name has a capital), found '::='\n"
                  "7:25: unknown type 'E'\n"}));

INSTANTIATE_TEST_SUITE_P(
    Names, Wrong,
    testing::Values(
        WrongCase{"A ::= Latitud\nLatitude ::= NULL",
                  "2:7: unknown type 'Latitud'; did you mean 'Latitude'?\n"},
        // Once, however often it is used.
        WrongCase{"A ::= SEQUENCE { a Integer, b Integer, c Integr }",
                  "2:20: unknown type 'Integer'; did you mean INTEGER?\n"
                  "2:42: unknown type 'Integr'; did you mean INTEGER?\n"},
        // What is taken, though not as it should be.
        WrongCase{
            "A ::= SEQUENCE { a NULL, ..., b NULL, ..., c NULL }\nB ::= SEQUENCE { ..., ..., c NULL }",
            "2:44: note: BER and DER send what is behind the second extension marker before the additions "
            "(X.690 clause 8.9.2)\n"},
        WrongCase{"A ::= NULL\nA ::= NULL", "3:1: 'A' is defined already, at 2:1\n"},
        WrongCase{"A ::= SEQUENCE { a NULL, b NULL, a NULL }",
                  "2:34: the component 'a' is there already, at 2:18\n"},
        WrongCase{"A ::= CHOICE { a NULL, a NULL }", "2:24: the alternative 'a' is there already, at 2:16\n"},
        WrongCase{"A ::= ENUMERATED { a, b, a }", "2:26: the item 'a' is there already, at 2:20\n"},
        WrongCase{"A ::= ENUMERATED { a(1), b(1), ..., c(1) }",
                  "2:26: the item 'b' has the number 1 of 'a'\n2:37: the item 'c' has the number 1 of 'a'\n"},
        WrongCase{"A ::= INTEGER { a(1), b(1) }", "2:23: 'b' has the number 1 of 'a'\n"},
        WrongCase{"A ::= SEQUENCE { a Other.Thing }",
                  "2:20: unknown type 'Other.Thing': there is no such module\n"},
        WrongCase{"A ::= INTEGER (0..n)", "2:19: unknown value 'n'\n"},
        WrongCase{"A ::= x < B\nB ::= CHOICE { y NULL }", "2:7: the CHOICE has no alternative 'x'\n"},
        WrongCase{"A ::= SEQUENCE { COMPONENTS OF B }\nB ::= SET { x NULL }",
                  "2:32: expected a SEQUENCE behind COMPONENTS OF, found SET\n"}));

INSTANTIATE_TEST_SUITE_P(
    Endless, Wrong,
    testing::Values(WrongCase{"A ::= A", "2:1: 'A' is defined as nothing but itself\n"},
                    WrongCase{"A ::= B (1..2)\nB ::= A",
                              "2:1: 'A' is defined as nothing but itself\n"
                              "3:1: 'B' is defined as nothing but itself\n"},
                    WrongCase{"A ::= SEQUENCE { a B }\nB ::= SEQUENCE SIZE (1..3) OF A",
                              "2:1: no value of 'A' ends, as it has to contain another one\n"
                              "3:1: no value of 'B' ends, as it has to contain another one\n"},
                    WrongCase{"A ::= SEQUENCE OF SEQUENCE { a A (SIZE (1)) }",
                              "2:32: a type cannot contain itself under another constraint\n"},
                    WrongCase{"v INTEGER ::= w\nw INTEGER ::= v",
                              "2:1: the value 'v' refers to nothing but itself\n"
                              "3:1: the value 'w' refers to nothing but itself\n"},
                    WrongCase{"A ::= SEQUENCE { COMPONENTS OF A }",
                              "2:7: the components of this type are its own, through COMPONENTS OF\n"},
                    WrongCase{"A {T} ::= SEQUENCE { a A {SET OF T}, b A {SET OF T} }\nB ::= A {NULL}",
                              "2:24: the instances of 'A' never end\n"}));

INSTANTIATE_TEST_SUITE_P(
    Constraints, Wrong,
    testing::Values(WrongCase{"A ::= INTEGER (5..1)", "2:16: the lower bound 5 is above the upper bound 1\n"},
                    WrongCase{"A ::= B (20..30)\nB ::= INTEGER (0..10)",
                              "2:10: the constraint leaves no value of 0..10\n"},
                    WrongCase{"A ::= OCTET STRING (SIZE (-1..4))", "2:21: a size cannot be negative\n"},
                    WrongCase{"A ::= B (SIZE (4))\nB ::= BOOLEAN", "2:10: SIZE does not apply to BOOLEAN\n"},
                    WrongCase{"A ::= INTEGER (1 | \"x\")",
                              "2:20: expected a value of INTEGER, found \"x\"\n"},
                    WrongCase{"A ::= IA5String (FROM (\"z\"..\"a\"))",
                              "2:24: the first character of the range comes after the last one\n"},
                    WrongCase{"A ::= NumericString (FROM (\"0\"..\"9\" | \"x\"))",
                              "2:39: a NumericString has no character 'x' (X.680 clause 41)\n"},
                    WrongCase{"A ::= SEQUENCE { a PrintableString DEFAULT \"a@b\" }",
                              "2:44: a PrintableString has no character '@' (X.680 clause 41)\n"},
                    WrongCase{"A ::= IA5String (FROM (\"a\")) (FROM (\"b\"))",
                              "2:31: the constraint leaves no character\n"},
                    WrongCase{"A ::= IA5String (FROM ({0,0,0,1}))",
                              "2:25: expected {column, row} of an IA5String, or {group, plane, row, cell} of "
                              "a UniversalString, "
                              "BMPString or UTF8String (X.680 clause 41.8)\n"},
                    WrongCase{"A ::= INTEGER (CONTAINING NULL)",
                              "2:16: CONTAINING applies to OCTET STRING and BIT STRING, not to INTEGER\n"}));

INSTANTIATE_TEST_SUITE_P(
    Units, Wrong,
    testing::Values(
        WrongCase{
            "A ::= INTEGER --@ unit",
            "2:23: expected the number that a step stands for in this unit, found the end of the comment\n"},
        WrongCase{"A ::= INTEGER --@ unit x m",
                  "2:24: expected the number that a step stands for in this unit, found 'x'\n"},
        WrongCase{"A ::= INTEGER --@ unit 0.0 m", "2:24: a step of 0 has no meaning\n"},
        WrongCase{"A ::= INTEGER --@ unit 1",
                  "2:25: expected the unit's symbol in this unit, found the end of the comment\n"},
        WrongCase{"A ::= INTEGER --@ unit 1. m",
                  "2:27: expected a digit behind the point in this unit, found 'm'\n"},
        WrongCase{"A ::= INTEGER --@ unit 0.0000000000000001 m", "2:42: expected at most 15 digits\n"},
        WrongCase{"A ::= INTEGER --@ unit 1 m x",
                  "2:28: expected ';' or the end of the comment in this unit, found 'x'\n"},
        WrongCase{"A ::= INTEGER --@ unit 1 m; 5",
                  "2:30: expected a word that tells the number's meaning in this unit, found the end of the "
                  "comment\n"},
        WrongCase{"A ::= INTEGER --@ unit 1 m; 5 a; 3..6 b", "2:34: the number means 'a' already\n"},
        WrongCase{"A ::= INTEGER --@ unit 1 m; 9..8 a", "2:29: the range is empty\n"},
        WrongCase{"A ::= INTEGER --@ unit 1 m; 99999999999999999999 a",
                  "2:29: the number has more than 64 bits\n"},
        WrongCase{"A ::= INTEGER (0..7) --@ unit 1 m; 8 a", "2:36: the number is none of the type's\n"},
        WrongCase{"A ::= INTEGER (0..7, ...) --@ unit 1 m; 8 a", ""},
        WrongCase{"A ::= INTEGER --@ unit 1 m -- --@ unit 2 m",
                  "2:31: expected an assignment or END, found a unit\n"},
        WrongCase{"A ::= BOOLEAN --@ unit 1 m", "2:15: a unit is of an INTEGER or REAL, not of BOOLEAN\n"},
        WrongCase{"A ::= B --@ unit 1 m\nB ::= REAL",
                  "2:9: a unit stands where the INTEGER or REAL is defined, not at its name\n"},
        WrongCase{"A ::= --@ unit 1 m\nREAL", "2:7: expected a type, found a unit\n"},
        WrongCase{"A ::= SEQUENCE { a REAL --@ unit 1 m --, --@ unit 1 m\n}",
                  "2:42: the type has a unit already\n"},
        WrongCase{"A ::= INTEGER --@ units are none", ""}));

INSTANTIATE_TEST_SUITE_P(
    Tags, Wrong,
    testing::Values(
        WrongCase{
            "A ::= CHOICE { a [3] NULL, b C, ..., d [3] NULL }\nC ::= CHOICE { x [4] NULL, y [3] NULL }",
            "2:28: 'b' has the tag [3] of 'a'\n2:38: 'd' has the tag [3] of 'a'\n"},
        // Behind a mandatory component tags may come again; an untagged open type has none to compare.
        WrongCase{"A ::= SEQUENCE { a [0] NULL, b [0] NULL OPTIONAL, c [1] NULL, d [0] ANY }", ""},
        WrongCase{
            "A ::= SEQUENCE { a [1] NULL OPTIONAL, b [APPLICATION 1] NULL OPTIONAL, c [APPLICATION 1] NULL }",
            "2:72: 'c' has the tag [APPLICATION 1] of 'b'\n"},
        WrongCase{"A ::= [524288] NULL", "2:8: expected a tag number from 0 to 524287, found 524288\n"},
        WrongCase{"A ::= ENUMERATED { a, ..., b(5), c(4) }",
                  "2:34: the addition 'c' has the number 4, which is not above 5\n"}));

INSTANTIATE_TEST_SUITE_P(
    Defaults, Wrong,
    testing::Values(
        WrongCase{"A ::= SEQUENCE { a BOOLEAN DEFAULT 5 }", "2:36: expected a value of BOOLEAN, found 5\n"},
        WrongCase{"A ::= SEQUENCE { a B DEFAULT 5 }\nB ::= INTEGER (0..3)",
                  "2:30: the default is 5, outside of 0..3\n"},
        WrongCase{"A ::= SEQUENCE { a OCTET STRING (SIZE (2)) DEFAULT 'FF'H }",
                  "2:52: the default has the size 1, outside of 2..2\n"},
        WrongCase{"A ::= SEQUENCE { a ENUMERATED { x } DEFAULT y }",
                  "2:45: expected an item of the ENUMERATED, found 'y'\n"},
        WrongCase{"A ::= SEQUENCE { a ENUMERATED { x } DEFAULT v }\nB ::= ENUMERATED { y }\nv B ::= y",
                  "2:45: expected a value of ENUMERATED, found 'v', a value of another ENUMERATED\n"},
        WrongCase{"A ::= SEQUENCE { a BIT STRING { x(0) } DEFAULT { y } }", "2:50: unknown bit 'y'\n"},
        WrongCase{"A ::= SEQUENCE { a SEQUENCE OF NULL DEFAULT 5 }",
                  "2:45: expected a value of SEQUENCE OF, found 5\n"},
        WrongCase{"v OBJECT IDENTIFIER ::= { iso 50 }",
                  "2:25: expected an OBJECT IDENTIFIER of at least two arcs, found { iso 50 }\n"}));

class WrongClasses : public testing::TestWithParam<WrongCase> {};

// Lines count from behind the class.
TEST_P(WrongClasses, AreTold) {
    EXPECT_EQ(load_module(std::string(kClass) + GetParam().body)->errors, GetParam().errors);
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongClasses,
    testing::Values(
        WrongCase{"A ::= SEQUENCE { v CLS.&Type ({Set}{@k}) }",
                  "9:37: there is no component 'k' to select by\n"},
        WrongCase{"A ::= SEQUENCE { k Id, v CLS.&Type ({Set}{@k}) }",
                  "9:43: the component 'k' is not of a value field of class 'CLS'\n"},
        WrongCase{"A ::= SEQUENCE { k NULL, v CLS.&Type ({Set}{@..k}) }",
                  "9:45: there is no SEQUENCE or SET so far out to look for 'k' in\n"},
        WrongCase{"A ::= CLS.&what", "9:7: class 'CLS' has no field '&what'\n"},
        WrongCase{"A ::= SEQUENCE { v B.&Type }",
                  "9:20: expected an information object class, found 'B', which is none\n"},
        WrongCase{"S CLS ::= { { ID 1 } | one }",
                  "9:1: note: two objects of the set have the &id 1, so that neither is found by it\n"},
        WrongCase{"S CLS ::= { { TYPE B } | { ID 4 FLAGG TRUE } | { ID 100 } | two }",
                  "9:22: expected 'ID', found '}'\n9:33: expected '}' behind the object, found 'FLAGG'\n"
                  "9:53: &id is 100, outside of 0..99\n9:61: unknown object 'two'\n"},
        WrongCase{"A ::= SEQUENCE { a CLS, b Alias, c Set }\nAlias ::= CLS",
                  "9:20: expected a type, found 'CLS', which is none\n9:27: expected a type, found 'Alias', "
                  "which is none\n"
                  "9:36: expected a type, found 'Set', which is none\n"},
        WrongCase{"S CLS ::= { B }", "9:13: expected an object set of class 'CLS', found 'B'\n"},
        WrongCase{"S CLS ::= { S }", "9:13: the object set 'S' contains itself\n"},
        WrongCase{"A ::= P {Set}\nP {CLS : S} ::= SEQUENCE { k CLS.&id ({S}) }",
                  "9:10: note: 'Set' should be {Set} (X.683 clause 9.5)\n"},
        WrongCase{"A ::= P\nC ::= P {B, B}\nP {T} ::= SEQUENCE { t T }",
                  "9:7: 'P' takes 1 parameter, found 0\n10:7: 'P' takes 1 parameter, found 2\n"},
        WrongCase{"A ::= CLS.&Type.&id", "9:7: the field '&Type' holds no objects\n"},
        WrongCase{"A ::= one.&Type", "9:7: the object 'one' does not set the field '&Type'\n"},
        WrongCase{"D ::= CLASS { &one CLS }\nA ::= D.&one",
                  "10:7: expected a field of values or types, found '&one', which holds objects\n"}));

// ---- the message sets that come with the library ----

std::unique_ptr<Loaded> load_region(const std::string& region) {
    auto loaded = load(test::region_sources(region), {.shipped_forms = true});
    EXPECT_EQ(loaded->errors, "");
    return loaded;
}

TEST(Regions, China) {
    auto cn = load_region("cn");
    EXPECT_EQ(cn->schema.types.size(), 162u);
    EXPECT_EQ(type_text(*cn, "ExteriorLights"), "BITS (9..9,...)");
    EXPECT_EQ(type_text(*cn, "Description"),
              "CHOICE { textString: IA5 (1..512) 0-7F; textGB2312: OCTETS (2..512); }");
}

TEST(Regions, Europe) {
    auto eu = load_region("eu");
    EXPECT_EQ(eu->schema.types.size() + eu->schema.classes.size(), 669u);
    EXPECT_EQ(type_text(*eu, "TimestampIts").substr(0, 26), "INTEGER (0..4398046511103)");
    EXPECT_EQ(type_text(*eu, "Ext3"), "INTEGER (2113664..270549119,...)");
    EXPECT_EQ(type_text(*eu, "VruProfile"),
              "ENUMERATED { unavailable(0) pedestrian(1) cyclist(2) motorcyclist(3) animal(4) max(15) }");
    const Type& unit = *find(eu->schema, "Distance")->type->components[1].type;
    EXPECT_EQ(describe(unit).substr(0, 14), "INTEGER (2..8)");
    EXPECT_EQ(unit.from->name, "Code-Units");
    EXPECT_TRUE(find(eu->schema, "SpatData")->is_alias);
    EXPECT_TRUE(find(eu->schema, "ItsPduHeaderVam")->is_alias);
    const Component& validity = find(eu->schema, "ManagementContainer")->type->components.at(7);
    EXPECT_EQ(validity.name + " " + describe(*validity.default_value), "validityDuration 600");
}

TEST(Regions, UnitedStatesAndRrc) {
    auto us = load_region("us");
    // Five aliases are named by list elements and rows alone, and five classes have tables.
    EXPECT_EQ(us->schema.types.size() - 5 + us->schema.classes.size(), 2278u);
    const Type& frame = *find(us->schema, "MessageFrame")->type;
    const ObjectSet& messages = *frame.components[1].type->table->object_set;
    ASSERT_EQ(messages.rows.size(), 34u);
    EXPECT_EQ(describe(*messages.rows[0][0].value) + describe(*messages.rows[0][1].type),
              "20BasicSafetyMessage");
    EXPECT_EQ(describe(*messages.rows[33][0].value) + describe(*messages.rows[33][1].type),
              "39TollUsageAckMessage");
    EXPECT_EQ(type_text(*us, "GeneralizedTime-Internal"), "Visible 20-7E [UNIVERSAL 24]");
    EXPECT_EQ(type_text(*us, "Int8Signed"), "INTEGER (-9223372036854775808..9223372036854775807)");
    EXPECT_EQ(type_text(*us, "CSI-IM-ConfigId-v1310"), "INTEGER (5..24)");
    const Type& preconfiguration = *find(us->schema, "SL-Preconfiguration-r12")->type;
    EXPECT_EQ(
        describe(preconfiguration),
        "SEQUENCE { preconfigGeneral-r12: SL-PreconfigGeneral-r12; preconfigSync-r12: SL-PreconfigSync-r12;"
        " preconfigComm-r12: SL-PreconfigCommPoolList4-r12; ..."
        " [[ preconfigComm-v1310: SEQUENCE"
        " { commRxPoolList-r13: SL-PreconfigCommRxPoolList-r13;"
        " commTxPoolList-r13: SL-PreconfigCommTxPoolList-r13 OPTIONAL; } OPTIONAL;"
        " preconfigDisc-r13: SEQUENCE { discRxPoolList-r13: SL-PreconfigDiscRxPoolList-r13;"
        " discTxPoolList-r13: SL-PreconfigDiscTxPoolList-r13 OPTIONAL; } OPTIONAL;"
        " preconfigRelay-r13: SL-PreconfigRelay-r13 OPTIONAL ]]; }");
}

}  // namespace
