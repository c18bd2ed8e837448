#include "bench/messages.hpp"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace bench {

static std::string from_hex(const std::string& text) {
    std::string bytes;
    for (size_t i = 0; i + 1 < text.size(); i += 2)
        bytes.push_back(static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16)));
    return bytes;
}

// The only member of the object: the alternative's name.
static std::string alternative_of(const std::string& json) {
    size_t first = json.find('"') + 1;
    return json.substr(first, json.find('"', first) - first);
}

std::vector<Message> load_messages(const char* path) {
    std::ifstream file(path);
    std::vector<Message> messages;
    for (std::string line; std::getline(file, line);) {
        std::istringstream row(line);
        std::vector<std::string> columns;  // region, type, uper, aper, oer, der, json
        for (std::string column; std::getline(row, column, '\t');) columns.push_back(column);
        if (columns.size() < 7 || columns[1] != "MessageFrame") continue;
        Message message{alternative_of(columns[6]), from_hex(columns[2])};
        Message* known = nullptr;
        for (Message& each : messages)
            if (each.name == message.name) known = &each;
        if (!known)
            messages.push_back(message);
        else if (known->uper.size() < message.uper.size())
            *known = message;
    }
    if (messages.empty()) {
        std::fprintf(stderr, "%s: no messages\n", path);
        std::exit(1);
    }
    return messages;
}

}  // namespace bench
