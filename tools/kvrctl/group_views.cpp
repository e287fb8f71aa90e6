#include "group_views.h"

#include "library.h"
#include "slot_reader.h"

namespace kvrctl {

Outcome ListGroups() {
  const Library library;
  Json rows = Json::array();
  ForEachGroup(library.Groups(), [&rows](const Group &group) {
    rows.push_back({{"path", group.path},
                    {"client", ClientOf(group)},
                    {"offline", group.offline},
                    {"servers", group.servers.size()},
                    {"children", group.children.size()}});
  });
  return {rows,
          AsTable({{"path", "GROUP"},
                   {"client", "CLIENT"},
                   {"offline", "OFFLINE", WarningIfTrue},
                   {"servers", "SERVERS"},
                   {"children", "CHILDREN"}},
                  "There are no groups."),
          library.GroupNotes()};
}

Outcome ShowGroup(const std::string &path) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const auto available = library.AvailableServers(group);
  Json children = Json::array();
  for (const Group &child : group.children)
    children.push_back(child.path);
  const kvrapi::SlotCount slots = group.group.Slots();
  return {{{"name", group.name},
           {"path", group.path},
           {"client", ClientOf(group)},
           {"offline", group.offline},
           {"slot", SlotOf(ReadSlots(library.Hosts()), group.client)},
           {"free", slots.free},
           {"used", slots.used},
           {"servers", NamesOf(group.servers)},
           {"available", available ? Json(NamesOf(*available)) : Json()},
           {"children", children}},
          AsSheet({{"name", "name"},
                   {"path", "path"},
                   {"client", "client"},
                   {"offline", "offline", WarningIfTrue},
                   {"slot", "slot"},
                   {"free", "free slots below"},
                   {"used", "used slots below"},
                   {"servers", "servers"},
                   {"available", "could serve"},
                   {"children", "children"}})};
}

Outcome ListAvailable(const std::string &path) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const auto available = library.AvailableServers(group);
  if (!available) {
    throw Failure("Listing who could serve " + group.path, KVR_ERR_IS_BACKUP_MSC);
  }
  return {RowsOf(*available), AsHostTable("No host could be added.")};
}

}  // namespace kvrctl
