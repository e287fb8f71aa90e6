// Names on the command line and what of them may reach a terminal. Both are UTF-8.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvrctl {

// The text with every control character replaced by its escape (\x1b, \u0085): names are bytes from
// strangers and must not steer a terminal.
std::string Printable(std::string_view utf8);

// The command with values behind it, and "--" before the first that would be taken for an option.
std::vector<std::string> Naming(std::vector<std::string> command,
                                const std::vector<std::string> &values);

// A command line as a shell reads it: words that it would take apart or change stand in quotes.
std::string CommandText(const std::vector<std::string> &words);

// The text with every line moved in by two columns.
std::string Indented(std::string_view text);

}  // namespace kvrctl
