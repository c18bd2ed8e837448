// SPDX-License-Identifier: Apache-2.0
// ASN.1 text into tokens (X.680 clause 12).
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "compiler/model/diagnostics.hpp"
#include "compiler/model/model.hpp"

namespace orlentac {

struct Token {
    enum class Sort {
        lower_word,   // identifier, value reference
        upper_word,   // type, module or class reference, reserved word
        field,        // &name
        number,       // digits alone
        real_number,  // with a point or an exponent
        bits,         // '0101'B: text is the digits without white space
        hex,          // '0AF'H: likewise
        text,         // "...": text is the contents, quotes undoubled and line ends joined
        symbol,       // ::= .. ... [[ ]] and single characters
        unit,         // the comment --@ unit ...: text is what stands behind that
        end
    };
    // In this order it is smallest: a large schema has half a million.
    std::string text;
    Place place;
    Sort sort = Sort::end;
    bool first_in_line = false;
};

// What begins a comment that is no mere comment.
constexpr std::string_view kUnitMark = "--@ unit";

// A run of tokens, [first, last); `last` points at a token too, the list's end mark at the latest.
struct TokenRange {
    const Token* first = nullptr;
    const Token* last = nullptr;
};

// A unit that stands behind a comma comes before it, next to what it is of.
// The list ends with a token of sort `end`. What cannot be a token is reported and left out.
std::vector<Token> tokenize(const std::string* file, std::string_view text, Diagnostics& diags);

// For "found X" in errors.
std::string token_text(const Token& token);

// X.680 clause 12.38: words that cannot name anything.
bool is_reserved(std::string_view word);
std::span<const std::string_view> reserved_words();

}  // namespace orlentac
