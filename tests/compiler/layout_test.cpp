// SPDX-License-Identifier: Apache-2.0
// The words of tables, and the sizes of records, from small modules.
#include "compiler/layout/layout.hpp"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "compiler/frontend.hpp"

using namespace orlentac;

namespace {

struct Compiled {
    Schema schema;
    Layout layout;
    Diagnostics diags;
};

// A module with the given assignments.
std::unique_ptr<Compiled> compile(const std::string& body, uint32_t first_local = 1,
                                  bool shipped_forms = false) {
    auto result = std::make_unique<Compiled>();
    std::vector<SourceText> sources = {
        {"m.asn1", "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n" + body + "\nEND\n"}};
    if (load_schema(sources, {shipped_forms}, result->schema, result->diags))
        make_layout(result->schema, {"T", first_local, false}, result->layout, result->diags);
    for (const Diagnostic& error : result->diags.errors)
        ADD_FAILURE() << place_text(error.place) << error.text;
    return result;
}

std::string text(const Word& word) {
    switch (word.sort) {
        case Word::Sort::number: return fmt::format("{:X}", word.number);
        case Word::Sort::table: return word.table->symbol;
        case Word::Sort::text: return "\"" + word.text + "\"";
        case Word::Sort::object: break;
    }
    if (word.object->sort == Object::Sort::value) return "=" + word.object->value.number.str();
    std::string all;
    for (const Word& inner : word.object->words) all += (all.empty() ? "" : " ") + text(inner);
    return "{" + all + "}";
}

// A table's words in hex, tables by symbol, constants written out; "no table" if there is none of that symbol.
std::string words(const Compiled& compiled, const std::string& symbol) {
    for (const Table* table : compiled.layout.tables) {
        if (table->symbol != symbol) continue;
        std::string all;
        for (const Word& word : table->words) all += (all.empty() ? "" : " ") + text(word);
        return all;
    }
    return "no table";
}

struct WordsCase {
    const char* body;
    const char* symbol;
    const char* words;
};

class Words : public testing::TestWithParam<WordsCase> {};

TEST_P(Words, AreAsTheFormatSays) {
    auto compiled = compile(GetParam().body);
    EXPECT_EQ(words(*compiled, GetParam().symbol), GetParam().words);
}

class ShippedForms : public testing::TestWithParam<WordsCase> {};

TEST_P(ShippedForms, KeepTagsInTheTypesReferredTo) {
    auto compiled = compile(GetParam().body, 1, true);
    EXPECT_EQ(words(*compiled, GetParam().symbol), GetParam().words);
}

INSTANTIATE_TEST_SUITE_P(
    Simple, Words,
    testing::Values(WordsCase{"A ::= INTEGER (-8..7)", "T_A", "2D800002 FFFFFFF8 7 \"A\""},
                    WordsCase{"A ::= INTEGER (0..4294967295)", "T_A", "2D800002 0 FFFFFFFF \"A\""},
                    WordsCase{"A ::= INTEGER (-1..2147483648)", "T_A", "2DC00002 =-1 =2147483648 \"A\""},
                    WordsCase{"A ::= INTEGER", "T_A", "2C400002 \"A\""},
                    WordsCase{"A ::= INTEGER (1..MAX)", "T_A", "2D400002 =1 \"A\""},
                    WordsCase{"A ::= INTEGER (0..7, ...)", "T_A", "2F800002 0 7 \"A\""},
                    WordsCase{"A ::= BIT STRING", "T_A", "3D000003 0 \"A\""},
                    WordsCase{"A ::= OCTET STRING (SIZE (2..5, ...))", "T_A", "47800004 2 5 \"A\""},
                    // Readers count in 32 bits, signed, and bounds that large make no difference.
                    WordsCase{"A ::= OCTET STRING (SIZE (2..4294967295))", "T_A", "45000004 2 \"A\""},
                    WordsCase{"A ::= NumericString (SIZE (4))", "T_A", "7D800012 0 4 4 2 20 20 30 39 \"A\""},
                    WordsCase{"A ::= IA5String", "T_A", "7D000016 3 0 1 0 7F \"A\""},
                    WordsCase{"A ::= UTF8String (SIZE (1..9))", "T_A", "7C00000C 6 \"A\""},
                    WordsCase{"A ::= GeneralizedTime", "T_A", "7D000018 2 0 1 20 7E \"A\""},
                    WordsCase{"A ::= REAL", "T_A", "74000009 \"A\""},
                    WordsCase{"A ::= ENUMERATED { x, y, ... }", "T_A", "4E00000A 2 0 \"x\" \"y\" \"A\""},
                    // Values by index, then value and index by ascending signed value.
                    WordsCase{"A ::= ENUMERATED { x (3), y (-1), ..., z (7) }", "T_A",
                              "4F00000A 2 1 \"y\" \"x\" \"z\" \"A\" FFFFFFFF 3 7 FFFFFFFF 0 3 1 7 2"},
                    WordsCase{"A ::= SEQUENCE {}", "T_A", "4000010 0 1 \"A\""}));

INSTANTIATE_TEST_SUITE_P(
    Structured, Words,
    testing::Values(
        // A presence word stands directly before its component; a mandatory addition has one too, a DEFAULT none.
        WordsCase{
            "A ::= SEQUENCE { a BOOLEAN OPTIONAL, b OCTET STRING OPTIONAL, c INTEGER (0..9) DEFAULT 4, ..., "
            "d NULL,"
            " [[ e BOOLEAN ]], [[ f BOOLEAN, g BOOLEAN OPTIONAL ]] }",
            "T_A",
            "6000010 7 40 8000004 T__local_1 0 \"a\" 8000010 T__local_2 8 \"b\" 10000020 T__local_3 4 \"c\""
            " 20000000 T__local_4 24 \"d\" E000002C T__local_5 28 \"e\" 60000034 T__local_6 30 \"f\""
            " A800003C T__local_7 38 \"g\" \"A\""},
        WordsCase{"A ::= CHOICE { a NULL, b BOOLEAN, ..., c OCTET STRING }", "T_A",
                  "26000000 2 1 18 0 8 T__local_1 \"a\" T__local_2 \"b\" T__local_3 \"c\" \"A\""},
        WordsCase{"A ::= CHOICE { a NULL, b BOOLEAN }", "T_A",
                  "24000000 2 8 0 4 T__local_1 \"a\" T__local_2 \"b\" \"A\""},
        WordsCase{"A ::= SEQUENCE (SIZE (1..4)) OF SEQUENCE { a BOOLEAN, b INTEGER }", "T_A",
                  "D800010 1 4 20 T_A_1 0 \"A\""},
        WordsCase{"A ::= SEQUENCE OF A", "T_A", "D000010 0 10 T_A 0 \"A\""},
        WordsCase{"A ::= OCTET STRING (CONTAINING B) B ::= BOOLEAN", "T_A", "45200004 0 \"A\" {1 T_B}"}));

INSTANTIATE_TEST_SUITE_P(
    Tags, ShippedForms,
    testing::Values(
        // All references agree: the tag stands in the type itself.
        WordsCase{"A ::= SEQUENCE { x NULL, b B } C ::= CHOICE { y NULL, b B } B ::= BOOLEAN", "T_B",
                  "34100001 \"B\""},
        // They differ, or something needs the type's own tag.
        WordsCase{"A ::= SEQUENCE { x NULL, b B } C ::= CHOICE { b B } B ::= BOOLEAN", "T_B",
                  "34000001 \"B\""},
        WordsCase{"A ::= SEQUENCE { b B } C ::= SEQUENCE OF B B ::= BOOLEAN", "T_B", "34000001 \"B\""},
        WordsCase{"A ::= SEQUENCE { b B } C ::= OCTET STRING (CONTAINING B) B ::= BOOLEAN", "T_B",
                  "34000001 \"B\""},
        WordsCase{"A ::= SEQUENCE { x NULL, b B } C ::= SEQUENCE OF B B ::= BOOLEAN", "T__local_2",
                  "58100001 T_B"},
        // A tag before a CHOICE is explicit; one that it holds itself shows no difference.
        WordsCase{"A ::= SEQUENCE { b B, c B } B ::= CHOICE { x NULL }", "T__local_2", "5A100001 T_B"},
        WordsCase{"A ::= SEQUENCE { b B } B ::= CHOICE { x NULL }", "T_B",
                  "24100000 1 4 0 4 T__local_1 \"x\" \"B\""},
        // In a CHOICE behind wrappers, simple alternatives with bounds stand behind wrappers too.
        WordsCase{"A ::= SEQUENCE { b B, c B } B ::= CHOICE { x INTEGER (0..1) }", "T__local_4",
                  "58100000 T__local_3"},
        WordsCase{"A ::= SEQUENCE { b B, c B } B ::= CHOICE { x INTEGER (0..1) }", "T__local_3",
                  "29800002 0 1"},
        WordsCase{"A ::= SEQUENCE { b CHOICE { x BOOLEAN } }", "T_A_1", "20100000 1 8 0 4 T__local_1 \"x\""},
        // An alias is a tag with a name; elements mean what is behind it.
        WordsCase{"A ::= SEQUENCE { x NULL, b B } B ::= C C ::= BOOLEAN", "T_B", "5C100001 T_C \"B\""},
        WordsCase{"A ::= SEQUENCE OF B B ::= C C ::= BOOLEAN", "T_A", "D000010 0 4 T_C 0 \"A\""},
        WordsCase{"A ::= SEQUENCE OF B B ::= C C ::= BOOLEAN", "T_B", "no table"}));

INSTANTIATE_TEST_SUITE_P(
    WrittenTags, Words,
    testing::Values(
        // A type that others refer to keeps its own tag, however few they are.
        WordsCase{"A ::= SEQUENCE { x NULL, b B } B ::= BOOLEAN", "T_B", "34000001 \"B\""},
        WordsCase{"A ::= [APPLICATION 3] INTEGER (0..1)", "T_A", "2D880003 0 1 \"A\""},
        WordsCase{"A ::= [3] EXPLICIT INTEGER (0..1)", "T_A", "5E100003 T__local_1 \"A\""},
        WordsCase{"A ::= [3] EXPLICIT INTEGER (0..1)", "T__local_1", "29800002 0 1"},
        WordsCase{"A ::= [2] EXPLICIT B B ::= [1] EXPLICIT C C ::= NULL", "T_A", "5E100002 T_B \"A\""},
        WordsCase{"A ::= [2] B B ::= [1] EXPLICIT C C ::= NULL", "T_A", "5C100002 T_B \"A\""},
        WordsCase{"A ::= SEQUENCE OF [5] EXPLICIT [6] BOOLEAN", "T_A", "D000010 0 4 T__local_2 0 \"A\""},
        WordsCase{"A ::= SEQUENCE OF [5] EXPLICIT [6] BOOLEAN", "T__local_2", "5A100005 T__local_1"},
        // The tag before a CHOICE is apart from it, so that another can take its place.
        WordsCase{"A ::= SEQUENCE { b B } B ::= [7] CHOICE { x NULL }", "T_B", "5E100007 T_B_1 \"B\""},
        WordsCase{"A ::= SEQUENCE { b B } B ::= [7] CHOICE { x NULL }", "T__local_1", "58100000 T_B"},
        WordsCase{"A ::= SEQUENCE { a A OPTIONAL, b [1] NULL }", "T__local_1", "59000010 T_A"}));

INSTANTIATE_TEST_SUITE_P(
    Recursion, Words,
    testing::Values(
        WordsCase{"A ::= SEQUENCE { a A OPTIONAL }", "T__local_1", "59100000 T_A"},
        WordsCase{"A ::= SEQUENCE { a A OPTIONAL }", "T_A", "4000010 1 10 8000008 T__local_1 0 \"a\" \"A\""},
        WordsCase{"A ::= CHOICE { x NULL, p P } P ::= SEQUENCE { left A }", "T__local_3", "5B100000 T_A"},
        WordsCase{"A ::= SEQUENCE { l SEQUENCE OF A }", "T_A_1", "9100000 0 10 T_A 0"},
        WordsCase{"L ::= SEQUENCE OF A A ::= SEQUENCE { l L }", "T_L", "D000010 0 10 T_A 0 \"L\""}));

TEST(Layout, TypesOfOneNameGetThoseOfTheirModules) {
    std::vector<SourceText> sources = {
        {"a.asn1", "A-1 DEFINITIONS ::= BEGIN T ::= NULL U ::= NULL END"},
        {"b.asn1", "B DEFINITIONS ::= BEGIN T ::= BOOLEAN A-1-T ::= NULL V ::= A-1.T END"}};
    for (bool module_names : {false, true}) {
        Compiled compiled;
        ASSERT_TRUE(load_schema(sources, {}, compiled.schema, compiled.diags));
        std::string symbols;
        bool clash = !make_layout(compiled.schema, {"R", 1, module_names}, compiled.layout, compiled.diags);
        for (const Table* table : compiled.layout.tables) symbols += table->symbol + " ";
        for (const Alias& alias : compiled.layout.aliases) symbols += alias.name + "=" + alias.table->symbol;
        if (module_names) {
            EXPECT_EQ(symbols, "R_A_1_T R_A_1_U R_B_T R_B_A_1_T B_V=R_A_1_T");
            continue;
        }
        // The name that T of A-1 gets is one that B has as well.
        EXPECT_TRUE(clash);
        EXPECT_EQ(
            errors_text(compiled.diags),
            "a.asn1:1:27: error: 'T' gets the name A_1_T in C, which is that of the type at b.asn1:1:39\n");
        EXPECT_EQ(notes_text(compiled.diags),
                  "a.asn1:1:27: note: 'T' is defined in the modules 'A-1' and 'B': the names in C are A_1_T, "
                  "B_T\n");
    }
}

TEST(Layout, NestedTablesAreNumberedInnermostFirst) {
    auto compiled = compile(
        "A ::= SEQUENCE { a SEQUENCE OF ENUMERATED { x }, b CHOICE { c SEQUENCE {} }, d N (1..2) } N ::= "
        "INTEGER (0..9)");
    EXPECT_EQ(words(*compiled, "T_A_1"), "4800000A 1 \"x\"");
    EXPECT_EQ(words(*compiled, "T_A_2"), "9100000 0 4 T_A_1 0");
    EXPECT_EQ(words(*compiled, "T_A_3"), "100000 0 1");
    EXPECT_EQ(words(*compiled, "T_A_4"), "20100001 1 8 0 4 T_A_3 \"c\"");
    EXPECT_EQ(words(*compiled, "T_A_5"), "29900002 1 2");
    EXPECT_EQ(words(*compiled, "T_A_6"), "no table");
}

TEST(Layout, NumbersStartWhereToldAndNeverRepeat) {
    auto compiled =
        compile("A ::= SEQUENCE { a INTEGER (0..5000000000), b OCTET STRING (CONTAINING BOOLEAN) }", 500);
    std::vector<uint32_t> numbers;
    for (const Object& object : compiled->layout.object_pool) numbers.push_back(object.local);
    EXPECT_EQ(numbers, (std::vector<uint32_t>{500, 501, 504}));
    EXPECT_EQ(words(*compiled, "T__local_502"), "29D00000 =0 =5000000000");
    EXPECT_EQ(words(*compiled, "T__local_505"), "41300001 0 {1 T__local_503}");
}

TEST(Layout, OpenTypesPointAtTheirObjectSet) {
    auto compiled = compile(
        "K ::= CLASS { &id I UNIQUE, &Type } WITH SYNTAX { &Type IDENTIFIED BY &id } I ::= INTEGER (0..9)"
        " S K ::= { { B IDENTIFIED BY 3 } | { NULL IDENTIFIED BY 2 }, ... } B ::= BOOLEAN E K ::= { ... }"
        " A ::= SEQUENCE { i K.&id ({S}), t K.&Type ({S}{@i}) }"
        " F ::= SEQUENCE { i K.&id ({E}), t K.&Type ({E}{@i}) }");
    EXPECT_EQ(words(*compiled, "T_K"), "FFFFFFFF8C000000 2 1 T_I 0 \"&id\" 0 0 0 \"&Type\" \"K\"");
    std::string open, empty;
    for (const Table* table : compiled->layout.tables) {
        // Behind the tag, which is no part of the open type: it would take any other as well.
        if (table->symbol == "T_A") open = words(*compiled, table->words[8].table->words[1].table->symbol);
        if (table->symbol == "T_F") empty = words(*compiled, table->words[8].table->words[1].table->symbol);
    }
    EXPECT_EQ(open, "FFFFFFFF80200000 {0 T_K 1 {=3 T_B =2 T__local_4} 2 1 0 80000000 0}");
    EXPECT_EQ(empty, "FFFFFFFF80200000 {0 T_K 1 0 0 1 0 80000000 0}");
}

}  // namespace
