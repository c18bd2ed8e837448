// SPDX-License-Identifier: Apache-2.0
// What the command tells about itself.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace cli {

// The text of a topic: a command of `app`, "rules", or nothing for the whole. Empty if there is none of that name.
std::string help_text(const CLI::App& app, const std::string& topic);

// A script that completes the command line of `app` in bash, zsh or fish. Empty for another shell.
std::string completion_script(const CLI::App& app, const std::string& shell);

}  // namespace cli
