// The messages that are measured.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Message {
    std::string name;  // the alternative of CN.MessageFrame: "bsmFrame"
    std::string uper;  // bytes
};

// The largest vector of each alternative, in the order of the file. Ends the program if the file is of no use.
std::vector<Message> load_messages(const char* path);

}  // namespace bench
