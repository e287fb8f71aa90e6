#include "arguments.h"

#include <utility>

namespace kvrctl {
namespace {

// A value that begins with the mark itself is marked too, so that taking one off gives it back.
constexpr char kMark = '\x01';

// Where the value of an argument begins, an option's name being joined to it or not.
std::size_t ValueOf(const std::string &argument) {
  const std::size_t equals = argument.find('=');
  const bool joined = argument.rfind("--", 0) == 0 && equals != std::string::npos;
  return joined ? equals + 1 : 0;
}

}  // namespace

std::vector<std::string> Marked(std::vector<std::string> arguments) {
  bool positionals = false;  // "--" was seen: no argument behind it is an option
  for (std::string &argument : arguments) {
    const std::size_t value = positionals ? 0 : ValueOf(argument);
    const std::string first = argument.substr(value, 1);
    if (first == "[" || first == std::string(1, kMark)) argument.insert(value, 1, kMark);
    positionals |= argument == "--";
  }
  return arguments;
}

std::string Unmarked(std::string value) {
  if (!value.empty() && value.front() == kMark) value.erase(0, 1);
  return value;
}

void UnmarkValues(CLI::App &app) {
  for (CLI::Option *option : app.get_options()) {
    if (option->get_items_expected_max() > 0) option->transform(Unmarked);
  }
  for (CLI::App *command : app.get_subcommands([](CLI::App *) { return true; }))
    UnmarkValues(*command);
}

}  // namespace kvrctl
