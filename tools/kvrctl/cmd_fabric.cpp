// `kvrctl fabric`: makes, shows and edits the description of a simulated network. The library is
// not called.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>

#include "command.h"
#include "fabric/description.h"
#include "fabric/platform_files.h"
#include "no_network.h"

namespace kvrctl {
namespace {

constexpr std::uint32_t kMaxHosts = 10000;

struct NewFabric {
  std::string folder;
  std::uint32_t hosts = 0;
  std::uint64_t seed = 1;
};

Outcome MakeFabric(const NewFabric &asked) {
  const std::filesystem::path folder = fabric::PathOf(asked.folder);
  if (std::filesystem::exists(folder / "fabric.toml")) {
    throw Failure(ExitStatus::Usage, "FABRIC_EXISTS",
                  fmt::format("There is a fabric in '{}' already.", asked.folder),
                  "Name another folder, or remove that one first.");
  }
  fabric::SaveDescription(folder, fabric::MakeDescription(asked.hosts, asked.seed));
  return {{{"folder", asked.folder}, {"hosts", asked.hosts}, {"seed", asked.seed}},
          [](const Json &result, const Screen &) {
            return Line("Made a fabric of {} hosts in '{}', from seed {}.",
                        Shown(result.at("hosts")), Shown(result.at("folder")),
                        Shown(result.at("seed")));
          }};
}

Json RowOf(const fabric::Host &host, const std::filesystem::path &folder) {
  const auto up = std::count_if(host.adapters.begin(), host.adapters.end(),
                                [](const fabric::Adapter &adapter) { return adapter.up; });
  return {{"name", host.name},
          {"wide_name", kvrapi::Utf8Of(host.wideName)},
          {"up", host.up},
          {"excluded", host.excluded},
          {"adapters", host.adapters.size()},
          {"adapters_up", up},
          {"table", std::filesystem::exists(folder / "tables" / (host.name + ".satable"))}};
}

Outcome ShowFabric() {
  const std::filesystem::path folder = FabricFolder();
  Json rows = Json::array();
  for (const fabric::Host &host : ReadDescription(folder).hosts) {
    rows.push_back(RowOf(host, folder));
  }
  return {rows, AsTable({{"name", "HOST"},
                         {"wide_name", "UTF-16 NAME"},
                         {"up", "UP", WarningIfFalse},
                         {"excluded", "EXCLUDED"},
                         {"adapters", "ADAPTERS"},
                         {"adapters_up", "OF THEM UP"},
                         {"table", "TABLE"}},
                        "The fabric has no hosts.")};
}

Outcome SwitchHost(const std::string &host, bool up) {
  const std::filesystem::path folder = FabricFolder();
  ReadDescription(folder);
  try {
    fabric::SetHostUp(folder, host, up);
  } catch (const std::out_of_range &) {
    throw Failure(ExitStatus::Usage, "NO_SUCH_HOST",
                  fmt::format("The fabric has no host '{}'.", host),
                  "Choose one of the hosts that `kvrctl fabric show` lists.");
  }
  return {{{"host", host}, {"up", up}}, [](const Json &result, const Screen &) {
            return Line("Host {} is {} now.", Shown(result.at("host")),
                        result.at("up") ? "up" : "down");
          }};
}

Description Simulated(const char *name, const char *summary, const char *result,
                      const char *details = "", const char *example = "") {
  return {name, summary, result, Effect::Reads, true, details, example};
}

void AddSet(CLI::App &fabric, Commands &commands) {
  struct Switch {
    std::string host;
    bool up = false;
    bool down = false;
  };
  const auto asked = std::make_shared<Switch>();
  CLI::App *set = AddCommand(fabric,
                             Simulated("set", "Take a host of the fabric up or down",
                                       R"({"host","up"})", "", "fabric set web-0002 --down"),
                             commands, [asked] { return SwitchHost(asked->host, asked->up); });
  set->add_option("HOST", asked->host, "The host")->required();
  CLI::Option_group *state = set->add_option_group("state", "The new state");
  state->add_flag("--up", asked->up, "Its adapters answer");
  state->add_flag("--down", asked->down, "None of its adapters answers");
  state->require_option(1);
}

}  // namespace

void AddFabricCommands(CLI::App &app, Commands &commands) {
  CLI::App *fabric = AddFamily(app, "fabric", "Make, show or edit a simulated network");

  const auto asked = std::make_shared<NewFabric>();
  CLI::App *made = AddCommand(
      *fabric,
      Simulated("new", "Make a fabric in a new folder", R"({"folder","hosts","seed"})",
                "A folder that holds a fabric.toml is left alone.", "fabric new lab --hosts 6"),
      commands, [asked] { return MakeFabric(*asked); });
  made->add_option("DIR", asked->folder, "The folder")->required();
  made->add_option("--hosts", asked->hosts, "Number of hosts, 1 to 10000")
      ->required()
      ->check(CLI::Range(std::uint32_t{1}, kMaxHosts));
  made->add_option("--seed", asked->seed, "The same seed makes the same fabric")
      ->check([](const std::string &text) {
        return text.find('-') == std::string::npos ? "" : text + " is below 0";
      })
      ->capture_default_str();

  AddCommand(*fabric,
             Simulated("show", "List the fabric's hosts as they are described",
                       R"([{"name","wide_name","up","excluded","adapters","adapters_up","table"}])",
                       "`table` tells whether the host stores one."),
             commands, ShowFabric);
  AddSet(*fabric, commands);
}

}  // namespace kvrctl
