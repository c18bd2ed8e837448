// SPDX-License-Identifier: Apache-2.0
#include "cli/output.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace cli {

namespace fs = std::filesystem;

Output::Output(std::string path) : path_(std::move(path)) {}

Output::~Output() {
    if (file_ && file_ != stdout) fclose(file_);
    if (!temporary_.empty()) unlink(temporary_.c_str());
}

bool Output::fail(std::string* problem) const {
    *problem = fmt::format("{} cannot be written: {}", path_.empty() ? "standard output" : path_,
                           std::strerror(errno));
    return false;
}

bool Output::open(std::string* problem) {
    if (path_.empty()) {
        file_ = stdout;
        return true;
    }
    struct stat old;
    bool exists = stat(path_.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {  // a device or pipe has no content to protect
        file_ = fopen(path_.c_str(), "wb");
        return file_ || fail(problem);
    }
    if (exists) {
        std::error_code ignored;
        fs::path real = fs::canonical(path_, ignored);  // so that a link stays a link
        if (!ignored) path_ = real.string();
        if (access(path_.c_str(), W_OK) != 0) return fail(problem);
    }
    std::string temporary = fmt::format("{}.{}.tmp", path_, getpid());
    int descriptor = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0) return fail(problem);
    temporary_ = temporary;
    if (exists) (void)!fchmod(descriptor, old.st_mode & 07777);
    file_ = fdopen(descriptor, "wb");
    return file_ || fail(problem);
}

bool Output::write(const std::string& text, std::string* problem) {
    return fwrite(text.data(), 1, text.size(), file_) == text.size() || fail(problem);
}

bool Output::flush(std::string* problem) { return fflush(file_) == 0 || fail(problem); }

bool Output::commit(std::string* problem) {
    bool written = fflush(file_) == 0 && !ferror(file_);
    if (file_ != stdout) written = fclose(file_) == 0 && written;
    file_ = nullptr;
    if (!written) return fail(problem);
    if (!temporary_.empty() && rename(temporary_.c_str(), path_.c_str()) != 0) return fail(problem);
    temporary_.clear();
    return true;
}

}  // namespace cli
