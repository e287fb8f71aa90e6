#include "option_words.h"

#include <algorithm>
#include <cctype>

#include <fmt/format.h>

namespace kvrctl {
namespace {

// The option groups of a command: the parser keeps them as commands without a name.
std::vector<const CLI::App *> SetsOf(const CLI::App &command) {
  return command.get_subcommands([](const CLI::App *below) { return below->get_name().empty(); });
}

bool IsFlag(const CLI::Option &option) {
  return option.get_items_expected_max() == 0;
}

Options ByName(const CLI::App &app) {
  return app.get_options([&app](const CLI::Option *option) {
    return option->nonpositional() && option != app.get_help_ptr();
  });
}

// The option as it is typed, with its value.
std::string Typed(const CLI::Option &option) {
  const std::string value = ValueWord(option);
  std::string text = option.get_positional() ? value : option.get_name();
  if (!option.get_positional() && !value.empty()) text += ' ' + value;
  return IsRepeated(option) ? text + "..." : text;
}

std::string Typed(const CLI::Option &option, bool required) {
  return required ? ' ' + Typed(option) : fmt::format(" [{}]", Typed(option));
}

}  // namespace

// The parser tells a list of choices in the name of the type alone, as "TEXT:{on,off}".
std::vector<std::string> ChoicesOf(const CLI::Option &option) {
  const std::string type = option.get_type_name();
  const std::size_t open = type.find(":{");
  const std::size_t close = type.find('}', open);
  if (open == std::string::npos || close == std::string::npos) return {};
  return CLI::detail::split(type.substr(open + 2, close - open - 2), ',');
}

std::string ValueWord(const CLI::Option &option) {
  if (IsFlag(option)) return "";
  const std::vector<std::string> choices = ChoicesOf(option);
  if (!choices.empty()) return fmt::format("{}", fmt::join(choices, "|"));
  if (option.get_positional()) return option.get_name(true);
  const std::string full = option.get_type_name();
  std::string type = full.substr(0, full.find(':'));
  if (type == "UINT" || type == "INT") return "N";
  if (type != "TEXT") return type;
  std::string name = option.get_lnames().empty() ? "VALUE" : option.get_lnames().front();
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return name;
}

bool IsRepeated(const CLI::Option &option) {
  return option.get_items_expected_max() > 1;
}

Options PositionalsOf(const CLI::App &command) {
  return command.get_options([](const CLI::Option *option) { return option->get_positional(); });
}

Options NamedOptionsOf(const CLI::App &command) {
  Options options = ByName(command);
  for (const CLI::App *set : SetsOf(command)) {
    const Options members = ByName(*set);
    options.insert(options.end(), members.begin(), members.end());
  }
  return options;
}

std::vector<Options> AlternativesOf(const CLI::App &command) {
  std::vector<Options> sets;
  for (const CLI::App *set : SetsOf(command)) {
    if (set->get_require_option_min() == 1 && set->get_require_option_max() == 1) {
      sets.push_back(ByName(*set));
    }
  }
  return sets;
}

std::string UsageOf(const CLI::App &command, const std::string &words) {
  std::string usage = words;
  for (const CLI::Option *argument : PositionalsOf(command))
    usage += Typed(*argument, argument->get_required());
  Options optional;
  for (const CLI::Option *option : ByName(command)) {
    if (option->get_required()) {
      usage += Typed(*option, true);
    } else {
      optional.push_back(option);
    }
  }
  for (const Options &set : AlternativesOf(command)) {
    std::vector<std::string> members;
    for (const CLI::Option *option : set)
      members.push_back(Typed(*option));
    usage += fmt::format(" {}", fmt::join(members, "|"));
  }
  for (const CLI::Option *option : optional)
    usage += Typed(*option, false);
  return usage;
}

std::string HelpFormatter::make_usage(const CLI::App *app, std::string name) const {
  const auto below =
      app->get_subcommands([](const CLI::App *one) { return !one->get_name().empty(); });
  if (below.empty()) return fmt::format("Usage: {}\n", UsageOf(*app, name));
  return fmt::format("Usage: {} COMMAND ...\n", name);
}

std::string HelpFormatter::make_option_name(const CLI::Option *option, bool positional) const {
  return positional ? ValueWord(*option) : Formatter::make_option_name(option, positional);
}

std::string HelpFormatter::make_option_opts(const CLI::Option *option) const {
  const std::string value = ValueWord(*option);
  const std::string several = IsRepeated(*option) ? "..." : "";
  return option->get_positional() || value.empty() ? several : ' ' + value + several;
}

std::string HelpFormatter::make_option_desc(const CLI::Option *option) const {
  const std::string &standard = option->get_default_str();
  return option->get_description() +
         (standard.empty() ? "" : fmt::format(" (default {})", standard));
}

}  // namespace kvrctl
