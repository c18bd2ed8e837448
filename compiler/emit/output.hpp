// Files that are written whole or not at all.
#pragma once

#include <string>
#include <vector>

namespace orlentac {

struct OutputFile {
    std::string path;
    std::string text;
};

// Writes all files, making folders as needed. A file that has the text already is left alone, so that nothing that
// depends on it is built anew. False if one cannot be written; `problem` then says which and why, and no file of the
// list has changed unless the very renaming failed.
bool write_files(const std::vector<OutputFile>& files, std::string& problem);

}  // namespace orlentac
