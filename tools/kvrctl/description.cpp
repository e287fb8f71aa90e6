#include "description.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>

#include "option_words.h"

namespace kvrctl {
namespace {

struct Meaning {
  const char *name;
  const char *meaning;
};

// The failures that the library has no code for.
constexpr Meaning kFailures[] = {
    {"USAGE", "the command line is not understood"},
    {"INVALID_PATH", "a group's path is not written as one"},
    {"NO_SUCH_HOST", "no host of that name is seen, or it is this host itself"},
    {"AMBIGUOUS_HOST", "several hosts have that name"},
    {"NO_SUCH_GROUP", "there is no group at that path"},
    {"AMBIGUOUS_GROUP", "several groups have that path"},
    {"NO_SUCH_FILE", "the file of a batch cannot be read"},
    {"NO_SUCH_TABLE", "what is named is neither a host that is seen nor a file"},
    {"NOT_A_TABLE", "the file does not hold a table"},
    {"NO_TABLE", "the host holds no table, or none of its adapters answers"},
    {"CONFIRMATION_NEEDED", "the change must be confirmed, and there is no terminal to do so"},
    {"NOT_CONFIRMED", "the change was asked about and not confirmed"},
    {"NO_DRY_RUN", "the network behind the library cannot keep writes to itself"},
    {"LOST_CHILDREN", "slots of the group's reserve are in use by hosts that were not found"},
    {"FABRIC_EXISTS", "the folder of a new fabric holds one already"},
    {"NO_FABRIC", "no fabric is named, or its description is refused"},
    {"SYSTEM", "the operating system refused what the command needs"},
};

constexpr Meaning kEnvironment[] = {
    {"KVR_FABRIC", "the folder of the simulated network; --fabric overrides it"},
    {"KVR_HOST", "the host of it that a run plays; --host overrides it"},
    {"KVR_TRACE",
     "where set and not 0, every call to the outside libraries is printed on standard "
     "error; --trace sets it"},
    {"NO_COLOR", "where set, nothing is coloured"},
    {"TERM", "where \"dumb\", nothing is coloured"},
};

Json Listed(const Meaning *begin, const Meaning *end) {
  Json list = Json::array();
  std::for_each(begin, end, [&list](const Meaning &one) {
    list.push_back({{"name", one.name}, {"meaning", one.meaning}});
  });
  return list;
}

Json Statuses() {
  Json list = Json::array();
  for (const StatusMeaning &one : kStatusMeanings)
    list.push_back({{"status", static_cast<int>(one.status)}, {"meaning", one.meaning}});
  return list;
}

const char *EffectWord(Effect effect) {
  switch (effect) {
    case Effect::Reads:
      return "reads";
    case Effect::Changes:
      return "changes";
    case Effect::Destroys:
      return "destroys";
  }
  return "";
}

// What a shell can offer for a value, by the word for it. What is said of the simulated network
// itself, described in its file, may name this host too.
Json Completes(const CLI::Option &option, bool simulated) {
  static const std::map<std::string, std::string> kinds = {
      {"HOST", "hosts"}, {"HOST|FILE", "hosts"}, {"A", "hosts"},
      {"B", "hosts"},    {"PATH", "groups"},     {"GROUP", "groups"},
      {"FILE", "files"}, {"DIR", "folders"},     {"COMMAND", "commands"}};
  const auto kind = kinds.find(ValueWord(option));
  if (kind == kinds.end()) return {};
  return simulated && kind->second == "hosts" ? "described-hosts" : kind->second;
}

Json ArgumentJson(const CLI::Option &argument, bool simulated) {
  return {{"name", argument.get_name(true)},     {"description", argument.get_description()},
          {"required", argument.get_required()}, {"repeated", IsRepeated(argument)},
          {"choices", ChoicesOf(argument)},      {"completes", Completes(argument, simulated)}};
}

Json OptionJson(const CLI::Option &option, bool simulated) {
  Json names = Json::array();
  for (const std::string &name : option.get_snames())
    names.push_back('-' + name);
  for (const std::string &name : option.get_lnames())
    names.push_back("--" + name);
  const std::string value = ValueWord(option);
  const std::string standard = option.get_default_str();
  return {{"names", names},
          {"value", value.empty() ? Json() : Json(value)},
          {"description", option.get_description()},
          {"default", standard.empty() ? Json() : Json(standard)},
          {"choices", ChoicesOf(option)},
          {"required", option.get_required()},
          {"repeated", IsRepeated(option)},
          {"completes", Completes(option, simulated)}};
}

Json OptionsJson(const Options &options, bool simulated) {
  Json list = Json::array();
  for (const CLI::Option *option : options)
    list.push_back(OptionJson(*option, simulated));
  return list;
}

Json CommandJson(const CLI::App &command, const Description &described, const Words &words) {
  const bool simulated = words.front() == "fabric";
  Json positionals = Json::array();
  for (const CLI::Option *argument : PositionalsOf(command))
    positionals.push_back(ArgumentJson(*argument, simulated));
  Json alternatives = Json::array();
  for (const Options &set : AlternativesOf(command)) {
    Json names = Json::array();
    for (const CLI::Option *option : set)
      names.push_back(option->get_name());
    alternatives.push_back(std::move(names));
  }
  return {{"words", words},
          {"summary", described.summary},
          {"details", described.details},
          {"example", described.example},
          {"usage", UsageOf(command, fmt::format("kvrctl {}", fmt::join(words, " ")))},
          {"positionals", positionals},
          {"options", OptionsJson(NamedOptionsOf(command), simulated)},
          {"one_of", alternatives},
          {"effect", EffectWord(described.effect)},
          {"batch", !described.alone},
          {"result", described.result}};
}

// The families and commands that the description tells of.
struct Told {
  Json families = Json::array();
  Json commands = Json::array();
};

// Whether words begin as those wanted do, or lead there.
bool AreWanted(const Words &words, const Words &wanted) {
  const auto common = static_cast<std::ptrdiff_t>(std::min(words.size(), wanted.size()));
  return std::equal(words.begin(), words.begin() + common, wanted.begin());
}

// Adds what stands below app, whose own words are given, in the order in which it was declared.
void Collect(Told &told, const CLI::App &app, const Words &words, const Commands &commands,
             const Words &wanted) {
  for (const CLI::App *below : app.get_subcommands({})) {
    const bool hidden = below->get_name().empty() || below->get_group().empty();
    Words longer = words;
    longer.push_back(below->get_name());
    if (hidden || !AreWanted(longer, wanted)) continue;
    const auto described = commands.described.find(below);
    if (described != commands.described.end()) {
      told.commands.push_back(CommandJson(*below, described->second, longer));
    } else {
      told.families.push_back({{"word", below->get_name()}, {"summary", below->get_description()}});
      Collect(told, *below, longer, commands, wanted);
    }
  }
}

}  // namespace

const CLI::App *Below(const CLI::App &app, const Words &words) {
  const CLI::App *at = &app;
  for (const std::string &word : words) {
    const auto named = at->get_subcommands(
        [&](const CLI::App *one) { return !word.empty() && one->get_name() == word; });
    if (named.empty()) return nullptr;
    at = named.front();
  }
  return at;
}

Json DescriptionOf(const CLI::App &app, const Commands &commands, const Words &words) {
  Told told;
  Collect(told, app, {}, commands, words);
  Options options = {app.get_help_ptr()};
  const Options others = NamedOptionsOf(app);
  options.insert(options.end(), others.begin(), others.end());
  return {{"program", app.get_name()},
          {"version", KVRCTL_VERSION},
          {"summary", app.get_description()},
          {"options", OptionsJson(options, true)},
          {"exit_statuses", Statuses()},
          {"failures", Listed(std::begin(kFailures), std::end(kFailures))},
          {"environment", Listed(std::begin(kEnvironment), std::end(kEnvironment))},
          {"families", told.families},
          {"commands", told.commands}};
}

}  // namespace kvrctl
