#include "compiler/emit/output.hpp"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace orlentac {

namespace fs = std::filesystem;

static bool has_text(const std::string& path, const std::string& text) {
    std::ifstream in(path, std::ios::binary);
    return in && std::string(std::istreambuf_iterator<char>(in), {}) == text;
}

static bool write_whole(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text << std::flush;
    return out.good();
}

bool write_files(const std::vector<OutputFile>& files, std::string& problem) {
    struct Pending {
        std::string temporary, path;
    };
    std::vector<Pending> pending;
    std::error_code failure;
    auto give_up = [&](const std::string& path, const std::string& why) {
        for (const Pending& file : pending) fs::remove(file.temporary, failure);
        problem = path + ": " + why;
        return false;
    };

    for (const OutputFile& file : files) {
        if (has_text(file.path, file.text)) continue;
        if (fs::path folder = fs::path(file.path).parent_path(); !folder.empty()) {
            fs::create_directories(folder, failure);
            if (failure) return give_up(folder.string(), failure.message());
        }
        pending.push_back({file.path + "." + std::to_string(getpid()) + ".tmp", file.path});
        if (!write_whole(pending.back().temporary, file.text)) return give_up(file.path, "cannot be written");
    }
    for (const Pending& file : pending) {
        fs::rename(file.temporary, file.path, failure);
        if (failure) return give_up(file.path, failure.message());
    }
    return true;
}

}  // namespace orlentac
