// SPDX-License-Identifier: Apache-2.0
// The messages that are measured: rows of messages.tsv.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Message {
    std::string name;    // "cn-bsm"
    std::string region;  // "CN"
    std::string type;    // "MessageFrame"
    size_t octets;       // of its unaligned PER
    std::string json;
};

// All rows, in the order of the file. Ends the program if the file is of no use.
std::vector<Message> load_messages(const char* path);

}  // namespace bench
