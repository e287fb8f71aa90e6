#include "group_views.h"

#include "kvrapi/kvrapi.h"

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
  const std::vector<Fact> columns = {{"path", "GROUP"},
                                     {"client", "CLIENT"},
                                     {"offline", "OFFLINE"},
                                     {"servers", "SERVERS"},
                                     {"children", "CHILDREN"}};
  return {rows, Table(rows, columns, "There are no groups."), library.GroupNotes(), std::nullopt};
}

Outcome ShowGroup(const std::string &path) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const auto available = library.AvailableServers(group);
  Json children = Json::array();
  for (const Group &child : group.children)
    children.push_back(child.path);
  const Json shown = {{"name", group.name},
                      {"path", group.path},
                      {"client", ClientOf(group)},
                      {"offline", group.offline},
                      {"slot", SlotOf(ReadSlots(library.Hosts()), group.client)},
                      {"free", KVR_GetFreeIndexCount(group.handle)},
                      {"used", KVR_GetUsedIndexCount(group.handle)},
                      {"servers", NamesOf(group.servers)},
                      {"available", available ? Json(NamesOf(*available)) : Json()},
                      {"children", children}};
  const std::vector<Fact> lines = {{"name", "name"},
                                   {"path", "path"},
                                   {"client", "client"},
                                   {"offline", "offline"},
                                   {"slot", "slot"},
                                   {"free", "free slots below"},
                                   {"used", "used slots below"},
                                   {"servers", "servers"},
                                   {"available", "could serve"},
                                   {"children", "children"}};
  return {shown, Sheet(shown, lines), {}, std::nullopt};
}

Outcome ListAvailable(const std::string &path) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const auto available = library.AvailableServers(group);
  if (!available) {
    throw Failure("Listing who could serve " + group.path, KVR_ERR_IS_BACKUP_MSC);
  }
  const Json rows = RowsOf(*available);
  return {rows, HostTable(rows, "No host could be added."), {}, std::nullopt};
}

}  // namespace kvrctl
