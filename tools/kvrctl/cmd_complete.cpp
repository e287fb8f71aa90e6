// `kvrctl complete`: the names that only the network knows, one a line, for the completions of
// shells.
#include <memory>

#include "command.h"
#include "dry_run.h"
#include "library.h"
#include "no_network.h"
#include "text.h"

namespace kvrctl {
namespace {

std::vector<std::string> NamesSeen(bool groups) {
  const DryRun unwritten;  // a discovery may write, and nobody asked for a change
  const Library library;
  std::vector<std::string> names;
  if (groups) {
    ForEachGroup(library.Groups(), [&](const Group &group) { names.push_back(group.path); });
  } else {
    for (const Host &host : library.Hosts())
      names.push_back(host.name);
  }
  return names;
}

std::vector<std::string> NamesDescribed() {
  std::vector<std::string> names;
  for (const fabric::Host &host : ReadDescription(FabricFolder()).hosts)
    names.push_back(host.name);
  return names;
}

// A shell can't ask back: where the network can't be asked, there are no names.
Outcome Complete(const std::string &kind) {
  Json names = Json::array();
  try {
    for (std::string &name :
         kind == "described-hosts" ? NamesDescribed() : NamesSeen(kind == "groups")) {
      if (Printable(name) == name) names.push_back(std::move(name));
    }
  } catch (const std::exception &) {
    names = Json::array();
  }
  return {names, [](const Json &result, const Screen &) {
            std::string lines;
            for (const Json &name : result)
              lines += name.get<std::string>() + '\n';
            return lines;
          }};
}

}  // namespace

void AddCompleteCommand(CLI::App &app, Commands &commands) {
  const auto kind = std::make_shared<std::string>();
  CLI::App *complete = AddCommand(
      app,
      {"complete", "Print names, for a shell's completion", R"(["NAME"])", Effect::Reads, true},
      commands, [kind] { return Complete(*kind); });
  complete->group("");
  complete->add_option("KIND", *kind, "What to name")
      ->required()
      ->check(CLI::IsMember({"hosts", "described-hosts", "groups"}));
}

}  // namespace kvrctl
