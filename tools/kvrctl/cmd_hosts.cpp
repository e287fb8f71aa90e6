// `kvrctl hosts`: every host that this one sees, and its part in the configuration.
#include <algorithm>
#include <utility>

#include "command.h"
#include "library.h"
#include "slot_reader.h"

namespace kvrctl {
namespace {

Json RowOf(const Host &host, const Library &library, const Slots &slots) {
  Json clientOf;
  Json serves = Json::array();
  ForEachGroup(library.Groups(), [&](const Group &group) {
    if (group.client == &host) clientOf = group.path;
    const auto &servers = group.servers;
    if (std::find(servers.begin(), servers.end(), &host) != servers.end()) {
      serves.push_back(group.path);
    }
  });
  return {{"name", host.name},           {"wide_name", host.wideName},
          {"in_acg", host.inAcg},        {"slot", SlotOf(slots, &host)},
          {"client_of", clientOf},       {"serves", serves},
          {"backup_msc", host.backupMsc}};
}

Outcome ShowHosts() {
  const Library library;
  const Slots slots = ReadSlots(library.Hosts());
  Json rows = Json::array();
  for (const Host &host : library.Hosts())
    rows.push_back(RowOf(host, library, slots));
  std::sort(rows.begin(), rows.end(),
            [](const Json &a, const Json &b) { return a.at("name") < b.at("name"); });
  std::vector<std::string> notes = library.Notes();
  for (std::string &note : library.GroupNotes())
    notes.push_back(std::move(note));
  return {rows,
          AsTable({{"name", "HOST"},
                   {"wide_name", "UTF-16 NAME"},
                   {"in_acg", "IN ACG"},
                   {"slot", "SLOT"},
                   {"backup_msc", "BACKUP MSC"},
                   {"client_of", "CLIENT OF"},
                   {"serves", "SERVES"}},
                  "No other host is seen."),
          std::move(notes)};
}

}  // namespace

void AddHostsCommand(CLI::App &app, Commands &commands) {
  AddCommand(app,
             {"hosts", "List the other hosts and their part in the configuration",
              R"([{"name","wide_name","in_acg","slot","client_of","serves":[…],"backup_msc"}])",
              Effect::Reads, false, "`slot` is null where a host holds none, or none can be read."},
             commands, ShowHosts);
}

}  // namespace kvrctl
