// The command line's words, kept from being taken apart by the parser: it reads a value in brackets
// as a list, so that a host named "[b]" would be taken for host b.
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace kvrctl {

// The arguments with a mark before every value that begins with a bracket.
std::vector<std::string> Marked(std::vector<std::string> arguments);

// A value without its mark.
std::string Unmarked(std::string value);

// Makes every option of the app and of its subcommands take the mark off its values.
void UnmarkValues(CLI::App &app);

}  // namespace kvrctl
