// The worked examples of X.691 Annex A: personnel records A.1 to A.3 and the extension example A.4.
#include "tests/per/per_types.hpp"

namespace orlenta::test {
namespace {

struct Name {
    asn1_string given, initial, family;
};
struct Child {
    Name name;
    asn1_string birth;
    uint32_t has_sex, sex;
};
struct Record {
    Name name;
    uint32_t number;
    asn1_string title, hired;
    Name spouse;
    uint32_t has_children;
    asn1_array children;
};

// The three schemas differ in constraints and markers; members stand in the order of their tags.
struct Schema {
    Words name_string, initial, title = char_string(ASN1_STRING_VISIBLE, 0, -1, {{0x20, 0x7E}}), date, number,
                                sex;
    Words name, child, children, record;
    Schema(Words name_string_type, Words initial_type, Words date_type, Words number_type, uint32_t ext)
        : name_string(name_string_type),
          initial(initial_type),
          date(date_type),
          number(number_type),
          sex(enumerated(3, -1)),
          name(sequence(sizeof(Name),
                        {mandatory(offsetof(Name, given), name_string, "givenName"),
                         mandatory(offsetof(Name, initial), initial, "initial"),
                         mandatory(offsetof(Name, family), name_string, "familyName")},
                        ext)),
          child(sequence(sizeof(Child),
                         {mandatory(offsetof(Child, name), name, "name"),
                          mandatory(offsetof(Child, birth), date, "dateOfBirth"),
                          optional(offsetof(Child, sex), sex, "sex", kAddition)},
                         ext, ASN1_KIND_SET)),
          children(list_type(ext ? 2 : 0, ext ? 2 : -1, sizeof(Child), child, ext)),
          record(sequence(sizeof(Record),
                          {mandatory(offsetof(Record, name), name, "name"),
                           mandatory(offsetof(Record, number), number, "number"),
                           mandatory(offsetof(Record, title), title, "title"),
                           mandatory(offsetof(Record, hired), date, "dateOfHire"),
                           mandatory(offsetof(Record, spouse), name, "nameOfSpouse"),
                           {field(offsetof(Record, children), ASN1_OPTION_OPTIONAL), children,
                            num(offsetof(Record, has_children)), "children"}},
                          ext, ASN1_KIND_SET)) {}
};

const std::string kJohn = "John", kP = "P", kSmith = "Smith", kDirector = "Director", kHired = "19710917";
const std::string kMary = "Mary", kT = "T", kRalph = "Ralph", kRalphBorn = "19571111";
const std::string kSusan = "Susan", kB = "B", kJones = "Jones", kSusanBorn = "19590717";

void expect_record(const Schema& schema, bool with_sex, const std::string& aper, const std::string& uper) {
    Child children[2] = {{{str(kRalph), str(kT), str(kSmith)}, str(kRalphBorn), 0, 0},
                         {{str(kSusan), str(kB), str(kJones)}, str(kSusanBorn), with_sex, 1}};
    Record record = {{str(kJohn), str(kP), str(kSmith)}, 51, str(kDirector), str(kHired),
                     {str(kMary), str(kT), str(kSmith)}, 1,  {children, 2}};
    expect_per(schema.record, &record, uper, aper);
}

TEST(AnnexA, RecordWithoutSubtypes) {
    Words visible = char_string(ASN1_STRING_VISIBLE, 0, -1, {{0x20, 0x7E}});
    Schema schema(visible, visible, visible, {head(ASN1_KIND_INTEGER)}, 0);
    expect_record(schema, false,
                  "x80044A6F686E015005536D6974680133084469726563746F7208"
                  "3139373130393137044D617279015405536D69746802"
                  "0552616C7068015405536D697468083139353731313131"
                  "05537573616E0142054A6F6E6573083139353930373137",
                  "x824ADFA3700D005A7B74F4D0026611134F2CB8FA6FE410C5CB762C1CB16E09370F2F20350169EDD3"
                  "D340102D2C3B386801A80B4F6E9E9A0218B96ADD8B162C4169F5E787700C20595BF765E610C5CB57"
                  "2C1BB16E");
}

TEST(AnnexA, RecordWithSubtypes) {
    std::vector<Range> letters = {{'-', '.'}, {'A', 'Z'}, {'a', 'z'}};
    Schema schema(char_string(ASN1_STRING_VISIBLE, 1, 64, letters),
                  char_string(ASN1_STRING_VISIBLE, 1, 1, letters),
                  char_string(ASN1_STRING_VISIBLE, 8, 8, {{'0', '9'}}), {head(ASN1_KIND_INTEGER)}, 0);
    expect_record(schema, false,
                  "x864A6F686E5010536D6974680133084469726563746F7219710917"
                  "0C4D6172795410536D697468021052616C70685410536D69746819571111"
                  "10537573616E42104A6F6E657319590717",
                  "x865D51D2888A5125F1809984"
                  "44D3CB2E3E9BF90CB8848B867396E8A88A5125F181089B93D71AA2294497C632"
                  "AE222222985CE521885D54C170CAC838B8");
}

TEST(AnnexA, RecordWithExtensionMarkers) {
    std::vector<Range> letters = {{'-', '.'}, {'A', 'Z'}, {'a', 'z'}};
    Schema schema(char_string(ASN1_STRING_VISIBLE, 1, 64, letters, kExt),
                  char_string(ASN1_STRING_VISIBLE, 1, 1, letters),
                  char_string(ASN1_STRING_VISIBLE, 8, 8, {{'0', '9'}}, kExt), integer(0, 9999, kExt), kExt);
    expect_record(schema, true,
                  "x40C04A6F686E5008536D697468000033084469726563746F7200"
                  "19710917034D6172795408536D697468010052616C70685408536D69746800"
                  "195711118200537573616E42084A6F6E65730019590717010140",
                  "x40CBAA3A5108A5125F180330889A7965C7D37F20CB8848B819CE5BA2A114A24BE3011372"
                  "7AE3542294497C619571111822985CE521842EAA60B832B20E2E020280");
}

// Ax ::= SEQUENCE {a INTEGER (250..253), b BOOLEAN, c CHOICE {d INTEGER, ..., [[e BOOLEAN, f IA5String]], ...}, ...,
//                  [[g NumericString (SIZE (3)), h BOOLEAN OPTIONAL]], ..., i BMPString OPTIONAL,
//                  j PrintableString OPTIONAL}
TEST(AnnexA, ExtensionsAndGroups) {
    struct Ax {
        uint32_t a, b, c_selector, pad;
        asn1_string c;
        uint32_t has_i, pad_i;
        asn1_string i;
        uint32_t has_j, pad_j;
        asn1_string j;
        uint32_t has_g, pad_g;
        asn1_string g;
        uint32_t has_h, h;
    };
    Words a = integer(250, 253), d = {head(ASN1_KIND_INTEGER)};
    Words f = char_string(ASN1_STRING_IA5, 0, -1, {{0, 0x7F}});
    Words bmp = char_string(ASN1_STRING_BMP, 0, -1, {{0, 0xFFFF}});
    Words printable = char_string(ASN1_STRING_PRINTABLE, 0, -1, {{0x20, 0x7A}});
    Words g = char_string(ASN1_STRING_NUMERIC, 3, 3, {{' ', ' '}, {'0', '9'}});
    Words c = choice(24, 8, 2, {{d, "d"}, {kBoolean, "e"}, {f, "f"}});
    Words ax =
        sequence(sizeof(Ax),
                 {mandatory(offsetof(Ax, a), a, "a"),
                  mandatory(offsetof(Ax, b), kBoolean, "b"),
                  mandatory(offsetof(Ax, c_selector), c, "c"),
                  {field(offsetof(Ax, i), ASN1_OPTION_OPTIONAL), bmp, num(offsetof(Ax, has_i)), "i"},
                  {field(offsetof(Ax, j), ASN1_OPTION_OPTIONAL), printable, num(offsetof(Ax, has_j)), "j"},
                  {field(offsetof(Ax, g), ASN1_OPTION_MANDATORY, kOpens), g, num(offsetof(Ax, has_g)), "g"},
                  optional(offsetof(Ax, h), kBoolean, "h", kCloses)},
                 kExt);
    const std::string digits = "123";
    uint32_t e = 1;
    Ax value = {};
    value.a = 253;
    value.b = 1;
    value.c_selector = 1;
    memcpy(&value.c, &e, sizeof e);
    value.has_g = value.has_h = value.h = 1;
    value.g = str(digits);
    expect_per(ax, &value, "x9E000600040A4690", "x9E000180010291A4");
}

}  // namespace
}  // namespace orlenta::test
