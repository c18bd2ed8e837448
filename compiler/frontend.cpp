// SPDX-License-Identifier: Apache-2.0
#include "compiler/frontend.hpp"

#include "compiler/resolve/resolve.hpp"
#include "compiler/syntax/comments.hpp"
#include "compiler/syntax/lexer.hpp"
#include "compiler/syntax/parser.hpp"

namespace orlentac {

// Each only once a file.
static void tell_notes(const Ast& ast, Diagnostics& diags) {
    std::set<std::pair<const std::string*, std::string>> told;
    for (const Diagnostic& note : ast.notes)
        if (told.emplace(note.place.file, note.text).second) diags.notes.push_back(note);
}

// Published modules make less than one type a token, all instances and copies counted.
static constexpr size_t kTypesPerToken = 20;

// Types that X.680 defines in ASN.1 itself, clauses 36, 37 and 44, as far as the modules use them.
static void add_useful_types(Ast& ast, Diagnostics& diags) {
    static constexpr std::string_view kTypes[][2] = {
        {"EXTERNAL",
         "[UNIVERSAL 8] IMPLICIT SEQUENCE { direct-reference OBJECT IDENTIFIER OPTIONAL, indirect-reference "
         "INTEGER "
         "OPTIONAL, data-value-descriptor ObjectDescriptor OPTIONAL, encoding CHOICE { single-ASN1-type [0] "
         "EXPLICIT ANY, octet-aligned [1] IMPLICIT OCTET STRING, arbitrary [2] IMPLICIT BIT STRING } }"},
        {"EMBEDDED-PDV",
         "[UNIVERSAL 11] IMPLICIT SEQUENCE { identification [0] EXPLICIT Identification, "
         "data-value-descriptor [1] "
         "IMPLICIT ObjectDescriptor OPTIONAL, data-value [2] IMPLICIT OCTET STRING }"},
        {"CHARACTER-STRING",
         "[UNIVERSAL 29] IMPLICIT SEQUENCE { identification [0] EXPLICIT Identification, string-value [1] "
         "IMPLICIT "
         "OCTET STRING }"},
        {"Identification",
         "CHOICE { syntaxes [0] IMPLICIT SEQUENCE { abstract [0] IMPLICIT OBJECT IDENTIFIER, transfer [1] "
         "IMPLICIT "
         "OBJECT IDENTIFIER }, syntax [1] IMPLICIT OBJECT IDENTIFIER, presentation-context-id [2] IMPLICIT "
         "INTEGER, "
         "context-negotiation [3] IMPLICIT SEQUENCE { presentation-context-id [0] IMPLICIT INTEGER, "
         "transfer-syntax "
         "[1] IMPLICIT OBJECT IDENTIFIER }, transfer-syntax [4] IMPLICIT OBJECT IDENTIFIER, fixed [5] "
         "IMPLICIT NULL "
         "}"},
    };
    if (ast.useful_types.empty()) return;
    if (ast.useful_types.contains("EMBEDDED-PDV") || ast.useful_types.contains("CHARACTER-STRING"))
        ast.useful_types.insert("Identification");
    std::string text = "X DEFINITIONS ::= BEGIN\n";
    // The words are reserved, so other ones stand in for them until the module is read.
    for (const auto& [name, definition] : kTypes)
        if (ast.useful_types.contains(std::string(name)))
            text += fmt::format("{} ::= {}\n", name == "EXTERNAL" ? "External" : name, definition);
    const std::vector<Token>& tokens = ast.files.emplace_back(tokenize(nullptr, text + "END\n", diags));
    parse_file(ast, tokens, diags);
    ast.modules.back().name = kUsefulModule;
    for (AstAssignment* assignment : ast.modules.back().assignments)
        if (assignment->name == "External") assignment->name = "EXTERNAL";
}

bool load_schema(const std::vector<SourceText>& sources, const SchemaOptions& options, Schema& out,
                 Diagnostics& diags) {
    out.shipped_forms = options.shipped_forms;
    Ast ast;
    bool readable = true;
    for (const SourceText& source : sources) {
        const std::string* name = &out.file_names.emplace_back(source.name);
        diags.files.push_back(name);
        size_t errors = diags.errors.size();
        const std::vector<Token>& tokens = ast.files.emplace_back(tokenize(name, source.text, diags));
        bool is_module = starts_module(tokens, diags.errors.size() == errors);
        size_t first = ast.assignments.size();
        readable &= is_module && parse_file(ast, tokens, diags);
        const std::vector<std::string_view> lines = lines_of(source.text);
        for (size_t i = first; i < ast.assignments.size(); i++)
            ast.assignments[i].about = comment_above(lines, ast.assignments[i].place);
        if (is_module) continue;
        diags.errors.resize(errors);  // of its characters
        error(diags, tokens.front().place, "expected an ASN.1 module, found {}", token_text(tokens.front()));
    }
    if (!readable) {
        sort_errors(diags);
        return false;
    }
    add_useful_types(ast, diags);
    Resolver resolver{ast, out, diags};
    for (const std::vector<Token>& tokens : ast.files) resolver.most_types += kTypesPerToken * tokens.size();
    try {
        resolve(resolver);
    } catch (const TooLarge& fault) {
        error(diags, fault.place, "here the types or references grow beyond what the modules should need");
    }
    tell_notes(ast, diags);
    sort_errors(diags);
    return diags.errors.empty();
}

}  // namespace orlentac
