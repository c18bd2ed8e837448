// SPDX-License-Identifier: Apache-2.0
// What the command tells about itself.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <string_view>

namespace cli {

// How help is laid out.
std::shared_ptr<CLI::FormatterBase> help_layout();

// The text of a topic: a command of `app`, "rules", or nothing for the whole. Empty if there is none of that name.
std::string help_text(const CLI::App& app, const std::string& topic);

// A script that completes the command line of `app` in bash, zsh or fish. Empty for another shell.
std::string completion_script(const CLI::App& app, const std::string& shell);

// One line for an unknown name of encoding rules: the names that were likely meant ("jer" for "json"), or else all of them.
std::string unknown_rules(std::string_view name);

}  // namespace cli
