#include "compiler/frontend.hpp"

#include "compiler/resolve/resolve.hpp"
#include "compiler/syntax/lexer.hpp"
#include "compiler/syntax/parser.hpp"

namespace orlentac {

bool load_schema(const std::vector<SourceText>& sources, const SchemaOptions& options, Schema& out,
                 Diagnostics& diags) {
    out.shipped_forms = options.shipped_forms;
    Ast ast;
    for (const SourceText& source : sources) {
        const std::string* name = &out.file_names.emplace_back(source.name);
        diags.files.push_back(name);
        const std::vector<Token>& tokens = ast.files.emplace_back(tokenize(name, source.text, diags));
        parse_file(ast, tokens, diags);
    }
    Resolver resolver{ast, out, diags};
    resolve(resolver);
    sort_errors(diags);
    return diags.errors.empty();
}

}  // namespace orlentac
