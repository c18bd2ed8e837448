// SPDX-License-Identifier: Apache-2.0
// Constraints: what tables tell of them, effective bounds and permitted alphabets (X.691 clause 10.3). What is not
// visible to PER drops out of an intersection and makes a union unbounded.
#include <algorithm>

#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

using Alphabet = std::vector<CodeRange>;

// What a constraint says in each respect; what is absent, it leaves alone.
struct Effect {
    std::optional<Bounds> values;
    std::optional<Bounds> size;
    std::optional<Alphabet> alphabet;
    Type* contained = nullptr;
};

struct Evaluation {
    Resolver& resolver;
    const Base& base;  // the type under the constraint
    Kind kind;         // its kind; INTEGER within SIZE
    const Scope& scope;
    bool in_alphabet = false;  // within FROM
};

Effect evaluate(const Evaluation& evaluation, const AstConstraint& constraint);

// ---- bounds ----

using Bound = std::optional<Number>;

void intersect_with(Bounds& bounds, const Bounds& by) {
    if (by.lower && (!bounds.lower || *by.lower > *bounds.lower)) bounds.lower = by.lower;
    if (by.upper && (!bounds.upper || *by.upper < *bounds.upper)) bounds.upper = by.upper;
    bounds.extensible |= by.extensible;
}

void unite_with(Bounds& bounds, const Bounds& by) {
    if (!by.lower || (bounds.lower && *by.lower < *bounds.lower)) bounds.lower = by.lower;
    if (!by.upper || (bounds.upper && *by.upper > *bounds.upper)) bounds.upper = by.upper;
    bounds.extensible |= by.extensible;
}

// ---- alphabets ----

Alphabet normalized(Alphabet alphabet) {
    std::sort(alphabet.begin(), alphabet.end(),
              [](const CodeRange& a, const CodeRange& b) { return a.first < b.first; });
    Alphabet merged;
    for (const CodeRange& range : alphabet) {
        if (!merged.empty() && uint64_t{merged.back().last} + 1 >= range.first) {
            merged.back().last = std::max(merged.back().last, range.last);
        } else {
            merged.push_back(range);
        }
    }
    return merged;
}

void intersect_with(Alphabet& alphabet, const Alphabet& by) {
    Alphabet common;
    for (const CodeRange& x : alphabet) {
        for (const CodeRange& y : by) {
            CodeRange range{std::max(x.first, y.first), std::min(x.last, y.last)};
            if (range.first <= range.last) common.push_back(range);
        }
    }
    alphabet = normalized(std::move(common));
}

void unite_with(Alphabet& alphabet, const Alphabet& by) {
    alphabet.insert(alphabet.end(), by.begin(), by.end());
    alphabet = normalized(std::move(alphabet));
}

// An intersection keeps what either side says, a union what both say.
template <typename Part>
void intersect_parts(std::optional<Part>& part, const std::optional<Part>& by) {
    if (part && by) intersect_with(*part, *by);
    if (!part && by) part.emplace(*by);
}

template <typename Part>
void unite_parts(std::optional<Part>& part, const std::optional<Part>& by) {
    if (part && by) unite_with(*part, *by);
    if (!by) part.reset();
}

std::optional<std::vector<uint32_t>> character_value(const Evaluation& evaluation, const AstValue& ast) {
    std::optional<Value> value = resolve_value(evaluation.resolver, ast, evaluation.scope,
                                               *evaluation.base.type, *evaluation.base.scope);
    if (!value) return std::nullopt;
    return characters(value->bytes);
}

// "abc" is each of its characters, "a".."z" all from one to the other.
std::optional<Alphabet> evaluate_characters(const Evaluation& evaluation, const AstConstraint& range) {
    if (range.lower && range.lower == range.upper) {
        auto codes = character_value(evaluation, *range.lower);
        if (!codes) return std::nullopt;
        Alphabet alphabet;
        for (uint32_t code : *codes) alphabet.push_back({code, code});
        return normalized(std::move(alphabet));
    }
    CodeRange codes{0, 0xFFFFFFFF};
    for (const AstValue* end : {range.lower, range.upper}) {
        if (!end) continue;
        auto value = character_value(evaluation, *end);
        if (!value) return std::nullopt;
        if (value->size() != 1) {
            error(evaluation.resolver.diags, end->place, "expected a single character, found {}",
                  value_text(*end));
            return std::nullopt;
        }
        (end == range.lower ? codes.first : codes.last) = value->front();
    }
    codes.first += range.lower_open ? 1 : 0;
    codes.last -= range.upper_open ? 1 : 0;
    if (codes.first > codes.last) {
        error(evaluation.resolver.diags, range.place,
              "the first character of the range comes after the last one");
        return std::nullopt;
    }
    return Alphabet{codes};
}

// ---- elements ----

Bound evaluate_end(const Evaluation& evaluation, const AstValue* ast) {
    if (!ast) return std::nullopt;
    if (evaluation.kind != base_kind(evaluation.base))
        return resolve_number(evaluation.resolver, *ast, evaluation.scope);
    auto value = resolve_value(evaluation.resolver, *ast, evaluation.scope, *evaluation.base.type,
                               *evaluation.base.scope);
    return value ? Bound(value->number) : std::nullopt;
}

Effect evaluate_range(const Evaluation& evaluation, const AstConstraint& range) {
    Effect effect;
    if (evaluation.in_alphabet) {
        effect.alphabet = evaluate_characters(evaluation, range);
        return effect;
    }
    if (evaluation.kind != Kind::integer) {
        // No trace, but the value has to be one of the type.
        for (const AstValue* end : {range.lower, range.upper == range.lower ? nullptr : range.upper}) {
            if (end && evaluation.base.type) {
                resolve_value(evaluation.resolver, *end, evaluation.scope, *evaluation.base.type,
                              *evaluation.base.scope);
            }
        }
        return effect;
    }
    Bounds bounds{evaluate_end(evaluation, range.lower), evaluate_end(evaluation, range.upper), false};
    if ((range.lower && !bounds.lower) || (range.upper && !bounds.upper)) return effect;
    if (bounds.lower && range.lower_open) *bounds.lower += 1;
    if (bounds.upper && range.upper_open) *bounds.upper -= 1;
    if (bounds.lower && bounds.upper && *bounds.lower > *bounds.upper) {
        error(evaluation.resolver.diags, range.place, "the lower bound {} is above the upper bound {}",
              bounds.lower->str(), bounds.upper->str());
        return effect;
    }
    effect.values = bounds;
    return effect;
}

bool has_size(Kind kind) {
    return kind == Kind::bit_string || kind == Kind::octet_string || kind == Kind::char_string ||
           kind == Kind::sequence_of || kind == Kind::set_of;
}

Effect evaluate_size(const Evaluation& evaluation, const AstConstraint& constraint) {
    if (!has_size(evaluation.kind) || evaluation.in_alphabet) {
        error(evaluation.resolver.diags, constraint.place, "SIZE does not apply to {}",
              kind_name(evaluation.kind));
        return {};
    }
    Evaluation inner{evaluation.resolver, evaluation.base, Kind::integer, evaluation.scope};
    Effect effect;
    effect.size = evaluate(inner, *constraint.parts[0]).values;
    if (!effect.size) return effect;
    if ((effect.size->lower && *effect.size->lower < 0) || (effect.size->upper && *effect.size->upper < 0)) {
        error(evaluation.resolver.diags, constraint.place, "a size cannot be negative");
        return {};
    }
    if (!effect.size->lower) effect.size->lower = 0;
    return effect;
}

Effect evaluate_alphabet(const Evaluation& evaluation, const AstConstraint& constraint) {
    if (evaluation.kind != Kind::char_string || evaluation.in_alphabet) {
        error(evaluation.resolver.diags, constraint.place, "FROM applies to character strings, not to {}",
              kind_name(evaluation.kind));
        return {};
    }
    Evaluation inner = evaluation;
    inner.in_alphabet = true;
    Effect effect;
    effect.alphabet = evaluate(inner, *constraint.parts[0]).alphabet;
    return effect;
}

// FROM ({0, 13})
Effect evaluate_character_list(const Evaluation& evaluation, const AstConstraint& constraint) {
    AstValue list;
    list.sort = AstValue::Sort::braces;
    list.braces = constraint.braces;
    list.place = constraint.place;
    AstConstraint single;
    single.lower = single.upper = &list;
    Effect effect;
    effect.alphabet = evaluate_characters(evaluation, single);
    return effect;
}

Effect evaluate_subtype(const Evaluation& evaluation, const AstConstraint& constraint) {
    if (evaluation.kind == Kind::open_type) return {};
    Type* type = resolve_in_place(evaluation.resolver, *constraint.type, evaluation.scope);
    Effect effect;
    if (type->kind != evaluation.kind) {
        if (base_of(evaluation.resolver, *constraint.type, evaluation.scope)) {
            error(evaluation.resolver.diags, constraint.place,
                  "expected a constraint on {}, found a type of {}", kind_name(evaluation.kind),
                  kind_name(type->kind));
        }
        return effect;
    }
    Bounds bounds{type->bounds.lower, type->bounds.upper, false};
    if (type->kind == Kind::integer) effect.values = bounds;
    if (has_size(type->kind)) effect.size = bounds;
    if (type->kind == Kind::char_string) effect.alphabet = type->alphabet;
    return effect;
}

Effect evaluate_contents(const Evaluation& evaluation, const AstConstraint& constraint) {
    Effect effect;
    if (evaluation.kind != Kind::octet_string && evaluation.kind != Kind::bit_string) {
        error(evaluation.resolver.diags, constraint.place,
              "CONTAINING applies to OCTET STRING and BIT STRING, not to {}", kind_name(evaluation.kind));
        return effect;
    }
    size_t outer = evaluation.resolver.in_contents;
    evaluation.resolver.in_contents = evaluation.resolver.enclosing.size();
    effect.contained = resolve_type(evaluation.resolver, *constraint.type, evaluation.scope);
    evaluation.resolver.in_contents = outer;
    return effect;
}

Effect evaluate_all_of(const Evaluation& evaluation, const AstConstraint& constraint) {
    Effect all;
    for (const AstConstraint* part : constraint.parts) {
        Effect effect = evaluate(evaluation, *part);
        intersect_parts(all.values, effect.values);
        intersect_parts(all.size, effect.size);
        intersect_parts(all.alphabet, effect.alphabet);
        if (effect.contained) all.contained = effect.contained;
    }
    return all;
}

Effect evaluate_any_of(const Evaluation& evaluation, const AstConstraint& constraint) {
    Effect any = evaluate(evaluation, *constraint.parts[0]);
    any.contained = nullptr;
    for (size_t i = 1; i < constraint.parts.size(); i++) {
        Effect effect = evaluate(evaluation, *constraint.parts[i]);
        unite_parts(any.values, effect.values);
        unite_parts(any.size, effect.size);
        unite_parts(any.alphabet, effect.alphabet);
    }
    return any;
}

Effect evaluate_element(const Evaluation& evaluation, const AstConstraint& constraint) {
    switch (constraint.sort) {
        case AstConstraint::Sort::range: return evaluate_range(evaluation, constraint);
        case AstConstraint::Sort::size: return evaluate_size(evaluation, constraint);
        case AstConstraint::Sort::alphabet: return evaluate_alphabet(evaluation, constraint);
        case AstConstraint::Sort::contained_subtype: return evaluate_subtype(evaluation, constraint);
        case AstConstraint::Sort::contents: return evaluate_contents(evaluation, constraint);
        case AstConstraint::Sort::all_of: return evaluate_all_of(evaluation, constraint);
        case AstConstraint::Sort::any_of: return evaluate_any_of(evaluation, constraint);
        case AstConstraint::Sort::except:
            return constraint.parts.empty() ? Effect{} : evaluate(evaluation, *constraint.parts[0]);
        case AstConstraint::Sort::braces:
            if (evaluation.in_alphabet) return evaluate_character_list(evaluation, constraint);
            break;
        case AstConstraint::Sort::no_trace: break;
    }
    return {};
}

// An extensible alphabet is not visible to PER (X.691 clause 10.3.11).
Effect evaluate(const Evaluation& evaluation, const AstConstraint& constraint) {
    if (constraint.scope && constraint.scope != &evaluation.scope) {
        Evaluation own = {evaluation.resolver, evaluation.base, evaluation.kind, *constraint.scope,
                          evaluation.in_alphabet};
        return evaluate(own, constraint);
    }
    Effect effect = evaluate_element(evaluation, constraint);
    if (!constraint.extensible) return effect;
    if (effect.values) effect.values->extensible = true;
    if (effect.size) effect.size->extensible = true;
    effect.alphabet.reset();
    return effect;
}

// A further constraint narrows the type; whether the whole is extensible is told by the last one alone.
void narrow(Resolver& resolver, Bounds& bounds, const Bounds& by, Place place) {
    Bounds narrowed = bounds;
    intersect_with(narrowed, by);
    if (narrowed.lower && narrowed.upper && *narrowed.lower > *narrowed.upper) {
        return error(resolver.diags, place, "the constraint leaves no value of {}..{}",
                     bounds.lower ? bounds.lower->str() : "MIN", bounds.upper ? bounds.upper->str() : "MAX");
    }
    bounds = narrowed;
    bounds.extensible = by.extensible;
}

bool is_known_multiplier(StringKind kind) { return kind < StringKind::utf8; }

}  // namespace

Alphabet full_alphabet(StringKind kind) {
    switch (kind) {
        case StringKind::numeric: return {{0x20, 0x20}, {0x30, 0x39}};
        case StringKind::printable:
            return {{0x20, 0x20}, {0x27, 0x29}, {0x2B, 0x3A}, {0x3D, 0x3D},
                    {0x3F, 0x3F}, {0x41, 0x5A}, {0x61, 0x7A}};
        case StringKind::visible: return {{0x20, 0x7E}};
        case StringKind::ia5: return {{0x00, 0x7F}};
        case StringKind::bmp: return {{0x0000, 0xFFFF}};
        case StringKind::universal: return {{0x00000000, 0xFFFFFFFF}};
        default: return {};
    }
}

bool leaves_trace(const AstConstraint& constraint, Kind kind) {
    bool character = kind == Kind::char_string;
    switch (constraint.sort) {
        case AstConstraint::Sort::range: return kind == Kind::integer;
        case AstConstraint::Sort::size: return has_size(kind);
        case AstConstraint::Sort::alphabet: return character;
        case AstConstraint::Sort::contained_subtype: return kind == Kind::integer || has_size(kind);
        case AstConstraint::Sort::contents: return kind == Kind::octet_string || kind == Kind::bit_string;
        case AstConstraint::Sort::all_of:
        case AstConstraint::Sort::any_of:
        case AstConstraint::Sort::except:
            return std::any_of(constraint.parts.begin(), constraint.parts.end(),
                               [&](const AstConstraint* part) { return leaves_trace(*part, kind); });
        case AstConstraint::Sort::braces:
        case AstConstraint::Sort::no_trace: break;
    }
    return false;
}

void apply_constraint(Resolver& resolver, Type& type, const AstConstraint& constraint, const Base& base,
                      const Scope& scope) {
    if (!base || type.kind != base_kind(base)) return;  // a fault told already
    Effect effect = evaluate({resolver, base, type.kind, scope}, constraint);
    if (effect.values) narrow(resolver, type.bounds, *effect.values, constraint.place);
    if (effect.size) narrow(resolver, type.bounds, *effect.size, constraint.place);
    if (effect.contained) type.contained = effect.contained;
    if (!effect.alphabet || !is_known_multiplier(type.string_kind)) return;
    Alphabet common = type.alphabet;
    intersect_with(common, *effect.alphabet);
    if (common.empty()) return error(resolver.diags, constraint.place, "the constraint leaves no character");
    type.alphabet = std::move(common);
}

}  // namespace orlentac
