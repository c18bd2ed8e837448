#include "compiler/frontend.hpp"

#include <fstream>
#include <sstream>

#include "compiler/resolve/resolve.hpp"
#include "compiler/syntax/lexer.hpp"
#include "compiler/syntax/parser.hpp"

namespace orlentac {

bool load_schema(const std::vector<SourceText>& sources, Schema& out, Diagnostics& diags) {
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

bool load_schema(const std::vector<std::string>& paths, Schema& out, Diagnostics& diags) {
    std::vector<SourceText> sources;
    for (const std::string& path : paths) {
        std::ifstream file(path, std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        if (file && (!text.str().empty() || file.peek() == EOF)) {
            sources.push_back({path, std::move(text).str()});
        } else {
            add_error(diags, {}, "cannot read '" + path + "'");
        }
    }
    return load_schema(sources, out, diags) && diags.errors.empty();
}

}  // namespace orlentac
