// SPDX-License-Identifier: Apache-2.0
// Any text is a schema with errors, or one that compiles, through the layout and all files: never a crash, and never
// more time or memory than its length bears.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "compiler/emit/catalogue.hpp"
#include "compiler/emit/header.hpp"
#include "compiler/emit/summary.hpp"
#include "compiler/emit/tables.hpp"
#include "compiler/frontend.hpp"
#include "compiler/layout/layout.hpp"
#include "compiler/syntax/lexer.hpp"

using namespace orlentac;

static constexpr double kSeconds = 10;  // of the processor, under sanitizers, for an input of some kilobytes

static void require(bool condition, const char* text) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", text);
    std::abort();
}

static void emit_all(const Layout& layout) {
    require(!emit_header(layout, "t.h").empty() && !emit_local_header(layout, "t.h").empty(), "no header");
    require(!emit_tables(layout, 2, 0).empty() && !emit_tables(layout, 2, 1).empty(), "no tables");
    require(!emit_record_checks(layout, "t.h").empty() && !emit_catalogue(layout).empty(), "no source");
    require(!summary_text(summarise(layout)).empty(), "no summary");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::clock_t start = std::clock();
    Schema schema;
    Layout layout;
    Diagnostics diags;
    std::vector<SourceText> sources = {{"t.asn1", std::string(reinterpret_cast<const char*>(data), size)}};
    bool compiled =
        load_schema(sources, {}, schema, diags) && make_layout(schema, {"T", 1, false}, layout, diags);
    require(compiled == diags.errors.empty(), "a failure without an error, or an error without one");
    if (compiled) emit_all(layout);
    require(compiled || !errors_text(diags).empty(), "no text of the errors");
    require(std::clock() - start < kSeconds * CLOCKS_PER_SEC, "too slow");
    return 0;
}

// ---- mutation by tokens: bytes alone seldom make ASN.1 ----------------------------------------------------

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

static constexpr std::string_view kSymbols[] = {"::=", "{",   "}",     "(", ")", "[", "]", "[[", "]]",
                                                ",",   "..",  "...",   "|", "^", ":", "<", ".",  "@",
                                                "OF",  "&id", "&Type", "a", "b", "A", "B", "0",  "1"};

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size, unsigned seed) {
    std::minstd_rand random(seed);
    if (random() % 4 == 0) return LLVMFuzzerMutate(data, size, max_size);
    std::string text(reinterpret_cast<char*>(data), size);
    Diagnostics diags;
    std::vector<Token> tokens = tokenize(nullptr, text, diags);
    tokens.pop_back();
    if (tokens.empty()) return LLVMFuzzerMutate(data, size, max_size);
    auto any = [&] { return random() % tokens.size(); };
    for (size_t count = 1 + random() % 3; count > 0; count--) {
        size_t at = any(), from = any();
        size_t run = std::min<size_t>(1 + random() % 8, tokens.size() - from);
        Token fresh{std::string(kSymbols[random() % std::size(kSymbols)]), {}, Token::Sort::symbol, false};
        switch (random() % 5) {
            case 0: std::swap(tokens[at], tokens[from]); break;
            case 1: tokens[at] = fresh; break;
            case 2: tokens.insert(tokens.begin() + at, fresh); break;
            case 3:
                if (tokens.size() > run) tokens.erase(tokens.begin() + from, tokens.begin() + from + run);
                break;
            default: {
                std::vector<Token> copy(tokens.begin() + from, tokens.begin() + from + run);
                tokens.insert(tokens.begin() + at % tokens.size(), copy.begin(), copy.end());
            }
        }
    }
    text.clear();
    for (const Token& token : tokens) {
        bool quoted = token.sort == Token::Sort::text || token.sort == Token::Sort::bits ||
                      token.sort == Token::Sort::hex;
        text +=
            (quoted ? token_text(token) : token.text) + (token.text == ";" || token.text == "}" ? "\n" : " ");
    }
    size = std::min(text.size(), max_size);
    std::memcpy(data, text.data(), size);
    return size;
}
