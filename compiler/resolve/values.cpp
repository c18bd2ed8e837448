// SPDX-License-Identifier: Apache-2.0
// Values: of a DEFAULT, a value assignment, a bound, a field of an object.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>

#include "compiler/model/decimal.hpp"
#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

// A value with the scope of its names and the type that governs it.
struct Governed {
    const AstValue& value;
    const Scope& scope;
    Base base;
};

std::optional<Value> wrong_kind(Resolver& resolver, const Governed& governed) {
    error(resolver.diags, governed.value.place, "expected a value of {}, found {}",
          kind_name(base_kind(governed.base)), value_text(governed.value));
    return std::nullopt;
}

Value make_value(const Governed& governed, Value::Sort sort) {
    Value value;
    value.sort = sort;
    value.place = governed.value.place;
    return value;
}

Parser parse_inner(Resolver& resolver, const AstValue& value) {
    return parse_range(resolver.ast, value.braces);
}

const AstItem* find_item(const AstType& type, const std::string& name) {
    auto found =
        std::find_if(type.items.begin(), type.items.end(), [&](const AstItem& i) { return i.name == name; });
    return found == type.items.end() ? nullptr : &*found;
}

// Values that may be compared or exchanged: equal kinds, for ENUMERATED equal lists of items.
bool compatible(const Base& a, const Base& b) {
    if (base_kind(a) != base_kind(b)) return false;
    return base_kind(a) != Kind::enumerated || a.type == b.type;
}

std::optional<Value> resolve_assigned(Resolver& resolver, const Governed& governed, const Meaning& meaning) {
    const AstAssignment& assignment = *meaning.assignment;
    if (assignment.sort != AstAssignment::Sort::value) return wrong_kind(resolver, governed);
    const Scope* bound = bind_parameters(resolver, governed.scope, governed.value.reference, meaning);
    if (!bound || is_class(resolver, *bound, *assignment.type))
        return bound ? wrong_kind(resolver, governed) : std::nullopt;
    const Scope& scope = *bound;
    Base base = base_of(resolver, *assignment.type, scope);
    if (!base) return std::nullopt;
    if (!compatible(governed.base, base)) {
        error(resolver.diags, governed.value.place, "expected a value of {}, found '{}', a value of {}",
              kind_name(base_kind(governed.base)), assignment.name,
              base_kind(base) == Kind::enumerated ? "another ENUMERATED" : kind_name(base_kind(base)));
        return std::nullopt;
    }
    if (!resolver.busy.insert(&assignment).second) {
        error(resolver.diags, assignment.place, "the value '{}' refers to nothing but itself",
              assignment.name);
        return std::nullopt;
    }
    std::optional<Value> value = resolve_value(resolver, *assignment.value, scope, *base.type, *base.scope);
    resolver.busy.erase(&assignment);
    return value;
}

std::optional<Value> resolve_reference(Resolver& resolver, const Governed& governed) {
    const AstReference& reference = governed.value.reference;
    const AstItem* item = reference.module.empty() ? find_item(*governed.base.type, reference.name) : nullptr;
    if (item && base_kind(governed.base) == Kind::enumerated) {
        Value value = make_value(governed, Value::Sort::item);
        std::vector<NumberedItem> items = numbered_items(resolver, *governed.base.type, *governed.base.scope);
        auto same = [&](const NumberedItem& numbered) { return numbered.ast == item; };
        value.item = std::find_if(items.begin(), items.end(), same) - items.begin();
        return value;
    }
    if (item && base_kind(governed.base) == Kind::integer) {
        std::optional<Number> number = resolve_number(resolver, *item->value, *governed.base.scope);
        if (!number) return std::nullopt;
        Value value = make_value(governed, Value::Sort::number);
        value.number = *number;
        return value;
    }
    bool enumerated = base_kind(governed.base) == Kind::enumerated;
    if (enumerated && !peek_name(resolver, governed.scope, reference)) {
        error(resolver.diags, reference.place, "expected an item of the ENUMERATED, found '{}'",
              reference.name);
        return std::nullopt;
    }
    Meaning meaning = find_name(resolver, governed.scope, reference, "value");
    if (!meaning) return std::nullopt;
    if (!meaning.binding) return resolve_assigned(resolver, governed, meaning);
    AstValue* actual = binding_value(resolver, *meaning.binding);
    if (!actual) return std::nullopt;
    return resolve_value(resolver, *actual, *meaning.binding->scope, *governed.base.type,
                         *governed.base.scope);
}

// object.&value
std::optional<Value> resolve_from_object(Resolver& resolver, const Governed& governed) {
    AstType path;
    path.sort = AstType::Sort::class_field;
    path.reference = governed.value.reference;
    path.fields = governed.value.fields;
    path.place = governed.value.place;
    FieldTarget target = find_field_target(resolver, path, governed.scope);
    if (!target) return std::nullopt;
    int column = target.info->columns[target.index];
    if (target.field().sort != AstField::Sort::value || column < 0) return wrong_kind(resolver, governed);
    const Setting& setting = target.object->settings[target.index];
    const AstValue* value = setting.present ? setting.value : target.field().default_value;
    if (!value) {
        error(resolver.diags, governed.value.place, "the object '{}' does not set the field '{}'",
              governed.value.reference.name, path.fields.back());
        return std::nullopt;
    }
    const Scope& scope = setting.present ? *setting.scope : *target.info->scope;
    return resolve_value(resolver, *value, scope, *governed.base.type, *governed.base.scope);
}

void append_bit(Value& value, bool bit) {
    if (value.bit_count % 8 == 0) value.bytes += '\0';
    if (bit) value.bytes.back() |= static_cast<char>(0x80 >> value.bit_count % 8);
    value.bit_count++;
}

// '...'B and '...'H of a BIT STRING or an OCTET STRING; the latter is padded to whole octets.
std::optional<Value> resolve_digits(Resolver& resolver, const Governed& governed) {
    Kind kind = base_kind(governed.base);
    if (kind != Kind::bit_string && kind != Kind::octet_string) return wrong_kind(resolver, governed);
    Value value = make_value(governed, kind == Kind::bit_string ? Value::Sort::bits : Value::Sort::octets);
    for (char digit : governed.value.text) {
        int number = digit <= '9' ? digit - '0' : digit - 'A' + 10;
        for (int bit = governed.value.sort == AstValue::Sort::hex ? 3 : 0; bit >= 0; bit--) {
            append_bit(value, number >> bit & 1);
        }
    }
    if (kind == Kind::octet_string) value.bit_count = 0;
    return value;
}

// ---- characters ----

// Two bytes and more for what is beyond ASCII, six for the last of UniversalString.
void append_character(std::string& text, uint32_t code) {
    if (code < 0x80) return text.push_back(static_cast<char>(code));
    int more = 1;
    while (more < 5 && code >> (5 * more + 6) != 0) more++;
    text += static_cast<char>((0xFF00 >> (more + 1) & 0xFF) | code >> 6 * more);
    while (more-- > 0) text += static_cast<char>(0x80 | (code >> 6 * more & 0x3F));
}

std::optional<Value> checked_text(Resolver& resolver, const Governed& governed, Value value) {
    StringKind kind = governed.base.type->string_kind;
    std::vector<CodeRange> alphabet = full_alphabet(kind);
    auto allowed = [&](uint32_t code) {
        return std::any_of(alphabet.begin(), alphabet.end(), [code](const CodeRange& range) {
            return code >= range.first && code <= range.last;
        });
    };
    for (uint32_t code : characters(value.bytes)) {
        if (alphabet.empty() || allowed(code)) continue;
        std::string character;
        append_character(character, code);
        bool printable = code >= 0x20 && code != 0x7F;
        error(resolver.diags, governed.value.place, "a {} has no character {} (X.680 clause 41)",
              string_kind_name(kind), printable ? "'" + character + "'" : fmt::format("0x{:02X}", code));
        return std::nullopt;
    }
    return value;
}

std::optional<Value> resolve_text(Resolver& resolver, const Governed& governed) {
    if (base_kind(governed.base) != Kind::char_string) return wrong_kind(resolver, governed);
    Value value = make_value(governed, Value::Sort::text);
    value.bytes = governed.value.text;
    return checked_text(resolver, governed, std::move(value));
}

// X.680 clause 41.8: column and row of IA5String, or group, plane, row and cell of ISO/IEC 10646.
std::optional<uint32_t> parse_character(Resolver& resolver, Parser& parser, StringKind kind) {
    Place place = parser.at->place;
    std::vector<Number> parts;
    do {
        if (!is_sort(parser, Token::Sort::number)) fail_expected(parser, "a number");
        parts.emplace_back(parser.at++->text);
    } while (accept_symbol(parser, ","));
    bool tuple = kind == StringKind::ia5 && parts.size() == 2 && parts[0] < 8 && parts[1] < 16;
    if (tuple) return static_cast<uint32_t>(parts[0] * 16 + parts[1]);
    bool wide = kind == StringKind::universal || kind == StringKind::bmp || kind == StringKind::utf8;
    bool fits = std::all_of(parts.begin(), parts.end(), [](const Number& part) { return part < 256; });
    if (wide && parts.size() == 4 && fits && parts[0] < 128)
        return static_cast<uint32_t>(((parts[0] * 256 + parts[1]) * 256 + parts[2]) * 256 + parts[3]);
    error(resolver.diags, place,
          "expected {{column, row}} of an IA5String, or {{group, plane, row, cell}} of a UniversalString, "
          "BMPString "
          "or UTF8String (X.680 clause 41.8)");
    return std::nullopt;
}

// {0, 13}, {"abc", {0, 13}, name}
std::optional<Value> resolve_character_list(Resolver& resolver, const Governed& governed) {
    StringKind kind = governed.base.type->string_kind;
    Value value = make_value(governed, Value::Sort::text);
    Parser parser = parse_inner(resolver, governed.value);
    do {
        bool alone = is_sort(parser, Token::Sort::number);
        if (alone || accept_symbol(parser, "{")) {
            std::optional<uint32_t> code = parse_character(resolver, parser, kind);
            if (!code) return std::nullopt;
            append_character(value.bytes, *code);
            if (!alone) expect_symbol(parser, "}");
        } else {
            std::optional<Value> part = resolve_value(resolver, *parse_value(parser), governed.scope,
                                                      *governed.base.type, *governed.base.scope);
            if (!part) return std::nullopt;
            value.bytes += part->bytes;
        }
    } while (accept_symbol(parser, ","));
    expect_end(parser, "',' or '}' behind a character");
    return checked_text(resolver, governed, std::move(value));
}

// { name, name }: named bits.
std::optional<Value> resolve_named_bits(Resolver& resolver, const Governed& governed) {
    Value value = make_value(governed, Value::Sort::bits);
    std::vector<bool> bits;
    Parser parser = parse_inner(resolver, governed.value);
    while (!at_end(parser)) {
        if (parser.at != governed.value.braces.first) expect_symbol(parser, ",");
        const Token& name = expect_identifier(parser, "the name of a bit");
        const AstItem* item = find_item(*governed.base.type, name.text);
        if (!item) {
            error(resolver.diags, name.place, "unknown bit '{}'", name.text);
            return std::nullopt;
        }
        std::optional<Number> number = resolve_number(resolver, *item->value, *governed.base.scope);
        if (!number || *number < 0 || *number > 1 << 16) return std::nullopt;
        size_t bit = static_cast<size_t>(*number);
        if (bits.size() <= bit) bits.resize(bit + 1);
        bits[bit] = true;
    }
    for (bool bit : bits) append_bit(value, bit);
    return value;
}

// X.690 clause 8.19: seven bits an octet, all but the last with bit 8 set.
void append_arc(std::string& contents, Number arc) {
    std::string groups;
    do {
        groups += static_cast<char>(static_cast<int>(arc & 0x7F) | (groups.empty() ? 0 : 0x80));
        arc >>= 7;
    } while (arc > 0);
    contents.append(groups.rbegin(), groups.rend());
}

// X.660 annex A: names of arcs that need no number, below a root or below the arc before.
std::optional<Number> registered_arc(const std::vector<Number>& above, const std::string& name) {
    static const std::map<std::string, int> kRoots = {
        {"itu-t", 0}, {"ccitt", 0}, {"itu-r", 0}, {"iso", 1}, {"joint-iso-itu-t", 2}, {"joint-iso-ccitt", 2}};
    static const std::map<std::string, int> kItu = {{"recommendation", 0},          {"question", 1},
                                                    {"administration", 2},          {"network-operator", 3},
                                                    {"identified-organization", 4}, {"r-recommendation", 5}};
    static const std::map<std::string, int> kIso = {
        {"standard", 0}, {"registration-authority", 1}, {"member-body", 2}, {"identified-organization", 3}};
    auto find = [&](const std::map<std::string, int>& names) {
        auto found = names.find(name);
        return found == names.end() ? std::nullopt : std::optional<Number>(found->second);
    };
    if (above.empty()) return find(kRoots);
    if (above.size() == 1 && above[0] == 0) return find(kItu);
    if (above.size() == 1 && above[0] == 1) return find(kIso);
    bool letter = above.size() == 2 && above[0] == 0 && above[1] == 0 && name.size() == 1;
    return letter ? std::optional<Number>(name[0] - 'a' + 1) : std::nullopt;
}

// One arc: 5, name (5), name.
std::optional<Number> parse_arc(Resolver& resolver, Parser& parser, const Scope& scope,
                                const std::vector<Number>& above) {
    if (is_sort(parser, Token::Sort::number)) return Number(parser.at++->text);
    AstValue* named = parse_value(parser);
    if (accept_symbol(parser, "(")) {
        AstValue* number = parse_value(parser);
        expect_symbol(parser, ")");
        return resolve_number(resolver, *number, scope);
    }
    bool plain = named->sort == AstValue::Sort::reference && named->reference.module.empty();
    std::optional<Number> known = plain ? registered_arc(above, named->reference.name) : std::nullopt;
    return known ? known : resolve_number(resolver, *named, scope);
}

const AstType& governor_of_sort(Kind kind) {
    static const AstType kOid = [] {
        AstType type;
        type.kind = Kind::object_identifier;
        return type;
    }();
    static const AstType kRelative = [] {
        AstType type;
        type.kind = Kind::relative_oid;
        return type;
    }();
    return kind == Kind::relative_oid ? kRelative : kOid;
}

// Whether what comes next is the name of a value of that kind: the head of { base 1 }, or a part of a RELATIVE-OID.
bool names_arcs(Resolver& resolver, Parser parser, const Scope& scope, Kind kind) {
    if (!is_sort(parser, Token::Sort::lower_word) && !is_sort(parser, Token::Sort::upper_word)) return false;
    if (is_symbol(parser, "(", 1)) return false;
    const AstValue* value = parse_value(parser);
    if (value->sort == AstValue::Sort::from_object) return true;
    Meaning meaning = peek_name(resolver, scope, value->reference);
    if (meaning.binding) {
        const AstType* governor = meaning.binding->parameter->governor;
        Base base = governor ? base_of(resolver, *governor, *meaning.binding->inner) : Base{};
        return base && base_kind(base) == kind;
    }
    if (!meaning || meaning.assignment->sort != AstAssignment::Sort::value) return false;
    if (is_class(resolver, scope_of(meaning), *meaning.assignment->type)) return false;
    Base base = base_of(resolver, *meaning.assignment->type, scope_of(meaning));
    return base && base_kind(base) == kind;
}

// The arcs of contents octets.
std::vector<Number> arcs_of(const Value& value, bool relative) {
    std::vector<Number> arcs(1, 0);
    for (unsigned char octet : value.bytes) {
        arcs.back() = arcs.back() << 7 | (octet & 0x7F);
        if (octet < 0x80) arcs.push_back(0);
    }
    arcs.pop_back();
    if (relative || arcs.empty()) return arcs;
    Number root = arcs[0] < 80 ? Number(arcs[0] / 40) : Number(2);
    Number second = arcs[0] - root * 40;
    arcs[0] = root;
    arcs.insert(arcs.begin() + 1, second);
    return arcs;
}

// The contents octets; the first two arcs of an OBJECT IDENTIFIER share a number.
std::optional<Value> resolve_oid(Resolver& resolver, const Governed& governed) {
    constexpr size_t kMaxArcs = 1000;
    Kind kind = base_kind(governed.base);
    bool relative = kind == Kind::relative_oid;
    std::vector<Number> arcs;
    Parser parser = parse_inner(resolver, governed.value);
    while (!at_end(parser) && arcs.size() < kMaxArcs) {
        if ((relative || arcs.empty()) && names_arcs(resolver, parser, governed.scope, kind)) {
            std::optional<Value> head = resolve_value(resolver, *parse_value(parser), governed.scope,
                                                      governor_of_sort(kind), governed.scope);
            if (!head) return std::nullopt;
            std::vector<Number> more = arcs_of(*head, relative);
            arcs.insert(arcs.end(), more.begin(), more.end());
            continue;
        }
        std::optional<Number> arc =
            parse_arc(resolver, parser, governed.scope, relative ? std::vector<Number>(9) : arcs);
        if (!arc) return std::nullopt;
        if (*arc < 0) {
            error(resolver.diags, governed.value.place, "an arc cannot be negative");
            return std::nullopt;
        }
        arcs.push_back(*arc);
    }
    Value value = make_value(governed, Value::Sort::oid);
    if (!relative) {
        if (arcs.size() < 2 || arcs[0] > 2 || (arcs[0] < 2 && arcs[1] > 39)) {
            error(resolver.diags, governed.value.place,
                  "expected an OBJECT IDENTIFIER of at least two arcs, found {}", value_text(governed.value));
            return std::nullopt;
        }
        arcs[1] += arcs[0] * 40;
        arcs.erase(arcs.begin());
    }
    for (const Number& arc : arcs) append_arc(value.bytes, arc);
    return value;
}

// { mantissa 1, base 10, exponent -2 }
std::optional<Value> resolve_real_parts(Resolver& resolver, const Governed& governed) {
    Parser parser = parse_inner(resolver, governed.value);
    Number parts[3];
    const char* names[] = {"mantissa", "base", "exponent"};
    for (int i = 0; i < 3; i++) {
        if (i > 0) expect_symbol(parser, ",");
        if (expect_identifier(parser, fmt::format("'{}'", names[i])).text != names[i]) {
            parser.at--;
            fail_expected(parser, fmt::format("'{}'", names[i]));
        }
        std::optional<Number> number = resolve_number(resolver, *parse_value(parser), governed.scope);
        if (!number) return std::nullopt;
        parts[i] = *number;
    }
    expect_end(parser, "'}'");
    Value value = make_value(governed, Value::Sort::real);
    if (parts[1] != 2 && parts[1] != 10) {
        error(resolver.diags, governed.value.place, "expected base 2 or 10, found {}", parts[1].str());
        return std::nullopt;
    }
    if (parts[1] == 2) {
        int exponent = static_cast<int>(std::clamp<Number>(parts[2], -10000, 10000));
        value.real = std::ldexp(parts[0].convert_to<double>(), exponent);
    } else {
        value.real = decimal_value(parts[0].str() + "e" + parts[2].str());
    }
    return value;
}

std::optional<Value> resolve_choice(Resolver& resolver, const Governed& governed) {
    const auto& alternatives = governed.base.type->components;
    auto same = [&](const AstComponent& a) { return a.name == governed.value.text; };
    auto found = std::find_if(alternatives.begin(), alternatives.end(), same);
    if (found == alternatives.end()) {
        error(resolver.diags, governed.value.place, "the CHOICE has no alternative '{}'",
              governed.value.text);
        return std::nullopt;
    }
    std::optional<Value> chosen =
        resolve_value(resolver, *governed.value.inner, governed.scope, *found->type, *governed.base.scope);
    if (!chosen) return std::nullopt;
    Value value = make_value(governed, Value::Sort::constructed);
    value.bytes = value_text(governed.value);
    value.members.push_back({found->name, std::move(*chosen)});
    return value;
}

// { a 1, b 2 }. What cannot be made out is left to the text.
std::vector<MemberValue> resolve_members(Resolver& resolver, const Governed& governed) {
    const auto& components = governed.base.type->components;
    std::vector<MemberValue> members;
    size_t errors = resolver.diags.errors.size();
    auto unknown = resolver.unknown;
    try {
        Parser parser = parse_inner(resolver, governed.value);
        while (!at_end(parser)) {
            if (!members.empty()) expect_symbol(parser, ",");
            std::string name = expect_identifier(parser, "the name of a component").text;
            auto same = [&](const AstComponent& component) { return component.name == name; };
            auto found = std::find_if(components.begin(), components.end(), same);
            AstValue* value = parse_value(parser);
            if (found == components.end()) return {};
            auto member = resolve_value(resolver, *value, governed.scope, *found->type, *governed.base.scope);
            if (!member) break;
            members.push_back({name, std::move(*member)});
        }
    } catch (const SyntaxError&) {
        members.clear();
    }
    if (resolver.diags.errors.size() == errors) return members;
    resolver.diags.errors.resize(errors);
    resolver.unknown = std::move(unknown);
    return {};
}

std::optional<Value> resolve_constructed(Resolver& resolver, const Governed& governed) {
    Kind kind = base_kind(governed.base);
    bool chosen = governed.value.sort == AstValue::Sort::choice;
    if (chosen != (kind == Kind::choice || kind == Kind::open_type)) return wrong_kind(resolver, governed);
    if (kind == Kind::choice) return resolve_choice(resolver, governed);
    Value value = make_value(governed, Value::Sort::constructed);
    value.bytes = value_text(governed.value);
    if (kind == Kind::sequence || kind == Kind::set) value.members = resolve_members(resolver, governed);
    return value;
}

std::optional<Value> resolve_braces(Resolver& resolver, const Governed& governed) {
    try {
        switch (base_kind(governed.base)) {
            case Kind::bit_string: return resolve_named_bits(resolver, governed);
            case Kind::object_identifier:
            case Kind::relative_oid: return resolve_oid(resolver, governed);
            case Kind::real: return resolve_real_parts(resolver, governed);
            case Kind::char_string: return resolve_character_list(resolver, governed);
            case Kind::sequence:
            case Kind::sequence_of:
            case Kind::set:
            case Kind::set_of: return resolve_constructed(resolver, governed);
            default: return wrong_kind(resolver, governed);
        }
    } catch (const SyntaxError& fault) {
        error(resolver.diags, fault.place, "{}", fault.text);
        return std::nullopt;
    }
}

std::optional<Value> resolve_number_value(Resolver& resolver, const Governed& governed) {
    Kind kind = base_kind(governed.base);
    if (kind != Kind::integer && kind != Kind::real) return wrong_kind(resolver, governed);
    Value value = make_value(governed, kind == Kind::integer ? Value::Sort::number : Value::Sort::real);
    value.number = governed.value.number;
    if (kind == Kind::real) value.real = governed.value.number.convert_to<double>();
    return value;
}

// "5, outside of 0..3" or nothing.
std::string misfit(const Type& type, const Value& value) {
    const Type& behind = behind_references(type);
    bool sized = value.sort == Value::Sort::bits || value.sort == Value::Sort::octets;
    if (value.sort != Value::Sort::number && !sized) return "";
    if (behind.bounds.extensible) return "";
    bool named_bits = behind.kind == Kind::bit_string && !behind.named_numbers.empty();
    Number number = value.sort == Value::Sort::number ? value.number
                    : value.sort == Value::Sort::bits ? Number(value.bit_count)
                                                      : Number(value.bytes.size());
    const auto& [lower, upper, extensible] = behind.bounds;
    bool below = lower && number < *lower && !named_bits;  // trailing zero bits may be added
    if (!below && !(upper && number > *upper)) return "";
    return fmt::format("{} {}, outside of {}..{}", sized ? " has the size" : " is", number.str(),
                       lower ? lower->str() : "MIN", upper ? upper->str() : "MAX");
}

}  // namespace

Reference::Reference(Resolver& r, Place place) : resolver(r) {
    constexpr int kMost = 500;
    if (resolver.reference_depth >= kMost) throw TooLarge{place};
    resolver.reference_depth++;
}

Reference::~Reference() { resolver.reference_depth--; }

std::optional<Value> resolve_value(Resolver& resolver, const AstValue& ast, const Scope& scope,
                                   const AstType& governor, const Scope& governor_scope) {
    Reference level(resolver, ast.place);
    Governed governed{ast, scope, base_of(resolver, governor, governor_scope)};
    if (!governed.base) return std::nullopt;
    Kind kind = base_kind(governed.base);
    switch (ast.sort) {
        case AstValue::Sort::reference: return resolve_reference(resolver, governed);
        case AstValue::Sort::from_object: return resolve_from_object(resolver, governed);
        case AstValue::Sort::number: return resolve_number_value(resolver, governed);
        case AstValue::Sort::bits:
        case AstValue::Sort::hex: return resolve_digits(resolver, governed);
        case AstValue::Sort::text: return resolve_text(resolver, governed);
        case AstValue::Sort::braces: return resolve_braces(resolver, governed);
        case AstValue::Sort::choice: return resolve_constructed(resolver, governed);
        case AstValue::Sort::null:
            if (kind != Kind::null) return wrong_kind(resolver, governed);
            return make_value(governed, Value::Sort::null);
        case AstValue::Sort::boolean: {
            if (kind != Kind::boolean) return wrong_kind(resolver, governed);
            Value value = make_value(governed, Value::Sort::boolean);
            value.boolean = ast.boolean;
            return value;
        }
        case AstValue::Sort::real: {
            if (kind != Kind::real) return wrong_kind(resolver, governed);
            Value value = make_value(governed, Value::Sort::real);
            value.real = ast.real;
            return value;
        }
    }
    return std::nullopt;
}

std::optional<Number> resolve_number(Resolver& resolver, const AstValue& ast, const Scope& scope) {
    static const AstType integer = [] {
        AstType type;
        type.kind = Kind::integer;
        return type;
    }();
    std::optional<Value> value = resolve_value(resolver, ast, scope, integer, scope);
    return value ? std::optional<Number>(value->number) : std::nullopt;
}

std::string value_text(const AstValue& value) {
    switch (value.sort) {
        case AstValue::Sort::number: return value.number.str();
        case AstValue::Sort::real: return fmt::format("{}", value.real);
        case AstValue::Sort::boolean: return value.boolean ? "TRUE" : "FALSE";
        case AstValue::Sort::null: return "NULL";
        case AstValue::Sort::bits: return "'" + value.text + "'B";
        case AstValue::Sort::hex: return "'" + value.text + "'H";
        case AstValue::Sort::text: return "\"" + value.text + "\"";
        case AstValue::Sort::from_object:
        case AstValue::Sort::reference: return "'" + value.reference.name + "'";
        case AstValue::Sort::choice: return value.text + " : " + value_text(*value.inner);
        case AstValue::Sort::braces: break;
    }
    std::string text = "{";
    for (const Token* token = value.braces.first; token < value.braces.last; token++)
        text += " " + token->text;
    return text + " }";
}

std::vector<uint32_t> characters(const std::string& text) {
    std::vector<uint32_t> codes;
    for (size_t i = 0; i < text.size();) {
        unsigned char lead = static_cast<unsigned char>(text[i++]);
        int more = lead >= 0xC0 && lead < 0xFE ? std::countl_one(lead) - 1 : 0;
        uint32_t code = more == 0 ? lead : lead & (0x3F >> more);
        for (; more > 0 && i < text.size(); more--)
            code = code << 6 | (static_cast<unsigned char>(text[i++]) & 0x3F);
        codes.push_back(code);
    }
    return codes;
}

void check_value(Resolver& resolver, const Type& type, const Value& value, std::string_view what) {
    std::string text = misfit(type, value);
    if (!text.empty()) error(resolver.diags, value.place, "{}{}", what, text);
}

void check_value_later(Resolver& resolver, const Type* type, const Value& value, std::string what) {
    resolver.later.push_back([&resolver, type, value, what] { check_value(resolver, *type, value, what); });
}

}  // namespace orlentac
