// `kvrctl status` and `kvrctl slots`: this host's role, and the slots that are left.
#include <memory>

#include "kvrapi/kvrapi.h"

#include "command.h"
#include "fabric/platform_files.h"
#include "library.h"
#include "slot_reader.h"

namespace kvrctl {
namespace {

// "hosts" are those that this host sees, itself not counted; "groups" those of the whole tree that
// have a client.
Outcome ShowStatus() {
  const Library library;
  const auto host = fabric::Environment("KVR_HOST");
  std::size_t groups = 0;
  ForEachGroup(library.Groups(), [&](const Group &group) { groups += group.offline ? 0 : 1; });
  const Json status = {{"host", host ? Json(*host) : Json()},
                       {"secured", KVR_SecurityState() == KVR_OK},
                       {"secure_client", KVR_IsSecureClient() != 0},
                       {"msc", KVR_IsMSC() != 0},
                       {"backup_msc", KVR_IsBackupMSC() != 0},
                       {"switch_access", KVR_IsSwitchAccessEnabled() != 0},
                       {"slot", KVR_IsSecureClient() != 0 ? ReadLocalSlot() : Json()},
                       {"hosts", library.Hosts().size()},
                       {"acg", KVR_GetAcgServerCount()},
                       {"groups", groups}};
  const std::vector<Fact> lines = {
      {"host", "host"},    {"secured", "secured"},       {"secure_client", "secure client"},
      {"msc", "MSC"},      {"backup_msc", "backup MSC"}, {"switch_access", "switch access"},
      {"slot", "slot"},    {"hosts", "other hosts"},     {"acg", "in the ACG"},
      {"groups", "groups"}};
  return {status, Sheet(status, lines), library.Notes(), std::nullopt};
}

Outcome ShowSlots(const std::string &path) {
  const Library library;
  const Group *group = path.empty() ? nullptr : &library.GroupAt(SplitPath(path));
  const SlotCount count = group == nullptr ? CountSlots(nullptr) : CountSlotsBelow(library, *group);
  return {{{"group", group == nullptr ? Json() : Json(group->path)},
           {"free", count.free},
           {"used", count.used}},
          group == nullptr
              ? Line("At the top level {} free, {} used.", count.free, count.used)
              : Line("Under {} {} free, {} used.", group->path, count.free, count.used),
          library.GroupNotes(),
          std::nullopt};
}

}  // namespace

void AddStatusCommands(CLI::App &app, Chosen &chosen) {
  AddCommand(app, "status", "Show this host's role and what it sees", chosen, ShowStatus);

  const auto path = std::make_shared<std::string>();
  AddCommand(app, "slots", "Count the slots from which new groups are made", chosen, [path] {
    return ShowSlots(*path);
  })->add_option("GROUP", *path, "Under this group, as sales/north or @HOST; else the top level");
}

}  // namespace kvrctl
