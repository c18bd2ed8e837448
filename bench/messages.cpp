// SPDX-License-Identifier: Apache-2.0
#include "bench/messages.hpp"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace bench {

static Message parse_row(const std::string& line) {
    Message message{};
    std::istringstream row(line);
    std::string octets;
    std::getline(row, message.name, '\t');
    std::getline(row, message.region, '.');
    std::getline(row, message.type, '\t');
    std::getline(row, octets, '\t');
    std::getline(row, message.json);
    message.octets = std::strtoul(octets.c_str(), nullptr, 10);
    return message;
}

std::vector<Message> load_messages(const char* path) {
    std::ifstream file(path);
    std::vector<Message> messages;
    bool sound = true;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) continue;
        messages.push_back(parse_row(line));
        sound = sound && !messages.back().json.empty();
    }
    if (messages.empty() || !sound) {
        std::fprintf(stderr, "%s: not a table of messages\n", path);
        std::exit(1);
    }
    return messages;
}

}  // namespace bench
