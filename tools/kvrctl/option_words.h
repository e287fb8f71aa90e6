// What the parser knows of an option or argument, in the words of those who type it: HOST, N,
// on|off.
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace kvrctl {

using Options = std::vector<const CLI::Option *>;

// The only values that it takes, in the order of their declaration; none where there is no list.
std::vector<std::string> ChoicesOf(const CLI::Option &option);

// What stands for its value: the choices, the argument's name or the type's; empty for a flag.
std::string ValueWord(const CLI::Option &option);

// True where several values may follow each other.
bool IsRepeated(const CLI::Option &option);

// What a command takes by place, in order.
Options PositionalsOf(const CLI::App &command);

// What a command takes by name; help is left out, and what stands in a set of alternatives is not.
Options NamedOptionsOf(const CLI::App &command);

// The sets of options of which exactly one is to be given.
std::vector<Options> AlternativesOf(const CLI::App &command);

// The command's line, as "kvrctl group show PATH"; words are its own, after the program's name.
std::string UsageOf(const CLI::App &command, const std::string &words);

// Help in these words.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App *app, std::string name) const override;
  std::string make_option_name(const CLI::Option *option, bool positional) const override;
  std::string make_option_opts(const CLI::Option *option) const override;
  std::string make_option_desc(const CLI::Option *option) const override;
};

}  // namespace kvrctl
