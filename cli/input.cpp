#include "cli/input.hpp"

#include <fmt/format.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

namespace cli {

namespace {

struct CloseFile {
    void operator()(FILE* file) const {
        if (file != stdin) fclose(file);
    }
};
using File = std::unique_ptr<FILE, CloseFile>;

}  // namespace

std::string place_of(const Message& message, int line) {
    return line > 0 ? fmt::format("{}:{}", message.file, line) : message.file;
}

static int hex_digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

static std::string printable(char c) {
    return std::isprint(static_cast<unsigned char>(c))
               ? fmt::format("'{}'", c)
               : fmt::format("0x{:02x}", static_cast<unsigned char>(c));
}

bool parse_hex(const std::string& text, std::string* bytes, std::string* problem) {
    bytes->clear();
    int high = -1;
    for (char c : text) {
        if (std::isspace(static_cast<unsigned char>(c))) continue;
        int digit = hex_digit(c);
        if (digit < 0) {
            *problem = fmt::format("{} is no hexadecimal digit", printable(c));
            return false;
        }
        if (high < 0) {
            high = digit;
        } else {
            bytes->push_back(static_cast<char>(high << 4 | digit));
            high = -1;
        }
    }
    if (high >= 0) *problem = "odd number of hexadecimal digits";
    return high < 0;
}

std::string to_hex(const std::string& bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (unsigned char byte : bytes) {
        text.push_back(digits[byte >> 4]);
        text.push_back(digits[byte & 15]);
    }
    return text;
}

// The next line without its end, or nothing at the end of the file.
static std::optional<std::string> read_line(FILE* file) {
    std::string line;
    int c;
    while ((c = getc_unlocked(file)) != EOF && c != '\n') line.push_back(static_cast<char>(c));
    if (c == EOF && line.empty()) return std::nullopt;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
}

static std::string read_all(FILE* file) {
    std::string content;
    char block[1 << 16];
    size_t n;
    while ((n = fread(block, 1, sizeof block, file)) > 0) content.append(block, n);
    return content;
}

static bool is_blank(const std::string& text) {
    for (char c : text)
        if (!std::isspace(static_cast<unsigned char>(c))) return false;
    return true;
}

static Message make_message(const std::string& name, int line, std::string text, bool hex) {
    Message message{name, line, {}, {}};
    if (hex)
        parse_hex(text, &message.bytes, &message.problem);
    else
        message.bytes = std::move(text);
    return message;
}

static Message unreadable(const std::string& name, int error) {
    return {name, 0, {}, fmt::format("cannot be read: {}", std::strerror(error))};
}

static bool read_file(const std::string& path, const Framing& framing,
                      const std::function<bool(Message&)>& take) {
    bool standard = path == "-";
    const std::string name = standard ? "<stdin>" : path;
    File file(standard ? stdin : fopen(path.c_str(), "rb"));
    auto hand_over = [&](Message message) { return take(message); };
    if (!file) return hand_over(unreadable(name, errno));

    errno = 0;
    if (!framing.lines) {
        std::string content = read_all(file.get());
        if (ferror(file.get())) return hand_over(unreadable(name, errno));
        return hand_over(make_message(name, 0, std::move(content), framing.hex));
    }
    for (int number = 1; auto line = read_line(file.get()); ++number)
        if (!is_blank(*line) && !hand_over(make_message(name, number, std::move(*line), framing.hex)))
            return false;
    return !ferror(file.get()) || hand_over(unreadable(name, errno));
}

void read_messages(const std::vector<std::string>& files, const Framing& framing,
                   const std::function<bool(Message&)>& take) {
    if (files.empty()) {
        read_file("-", framing, take);
        return;
    }
    for (const std::string& file : files)
        if (!read_file(file, framing, take)) return;
}

}  // namespace cli
