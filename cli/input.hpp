// Messages from files and from standard input.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace cli {

// How messages lie in the input.
struct Framing {
    bool lines = false;  // one message a line; else one message a file
    bool hex = false;    // bytes as hexadecimal digits, blanks between them allowed
};

struct Message {
    std::string file;
    int line = 0;  // from 1; 0 if the message is a whole file
    std::string bytes;
    std::string problem;  // not empty: what kept the message from being read
};

// "capture.hex:3", or just the file.
std::string place_of(const Message& message, int line);

// Hands over the messages one by one, those that cannot be read among them, until `take` returns false. No files mean
// standard input, and so does "-". Blank lines are no messages.
void read_messages(const std::vector<std::string>& files, const Framing& framing,
                   const std::function<bool(Message&)>& take);

// Digits to bytes; false, with a text in `problem`, if they are none.
bool parse_hex(const std::string& text, std::string* bytes, std::string* problem);

std::string to_hex(const std::string& bytes);

}  // namespace cli
