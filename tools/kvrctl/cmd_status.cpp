// `kvrctl status` and `kvrctl slots`: this host's role, and the slots that are left.
#include <memory>

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
  const kvrapi::Session &session = library.Session();
  const auto host = fabric::Environment("KVR_HOST");
  std::size_t groups = 0;
  ForEachGroup(library.Groups(), [&](const Group &group) { groups += group.offline ? 0 : 1; });
  return {{{"host", host ? Json(*host) : Json()},
           {"secured", session.IsSecured()},
           {"secure_client", session.HoldsSlot()},
           {"msc", session.IsMsc()},
           {"backup_msc", session.IsBackupMsc()},
           {"switch_access", session.IsSwitchAccessOn()},
           {"slot", session.HoldsSlot() ? ReadLocalSlot() : Json()},
           {"hosts", library.Hosts().size()},
           {"acg", session.Members().size()},
           {"groups", groups}},
          AsSheet({{"host", "host"},
                   {"secured", "secured"},
                   {"secure_client", "secure client"},
                   {"msc", "MSC"},
                   {"backup_msc", "backup MSC"},
                   {"switch_access", "switch access"},
                   {"slot", "slot"},
                   {"hosts", "other hosts"},
                   {"acg", "in the ACG"},
                   {"groups", "groups"}}),
          library.Notes()};
}

std::string DrawSlots(const Json &result, const Screen &) {
  const std::string where =
      result.at("group").is_null() ? "At the top level" : "Under " + Shown(result.at("group"));
  return Line("{} {} free, {} used.", where, Shown(result.at("free")), Shown(result.at("used")));
}

Outcome ShowSlots(const std::string &path) {
  const Library library;
  const Group *group = path.empty() ? nullptr : &library.GroupAt(SplitPath(path));
  const kvrapi::SlotCount count =
      group == nullptr ? library.Session().Slots() : CountSlotsBelow(library, *group);
  return {{{"group", group == nullptr ? Json() : Json(group->path)},
           {"free", count.free},
           {"used", count.used}},
          DrawSlots,
          library.GroupNotes()};
}

}  // namespace

void AddStatusCommands(CLI::App &app, Commands &commands) {
  AddCommand(app,
             {"status", "Show this host's role and what it sees",
              R"({"host","secured","secure_client","msc","backup_msc","switch_access","slot",)"
              R"("hosts","acg","groups"})",
              Effect::Reads, false,
              "`hosts` are the other hosts that this one sees, `acg` those of them in the "
              "configuration, `groups` those of the whole tree that have a client."},
             commands, ShowStatus);

  const auto path = std::make_shared<std::string>();
  AddCommand(app,
             {"slots", "Count the slots from which new groups are made",
              R"({"group","free","used"})", Effect::Reads, false, "", "slots sales/north"},
             commands, [path] { return ShowSlots(*path); })
      ->add_option("GROUP", *path, "Under this group, as sales/north or @HOST; else the top level");
}

}  // namespace kvrctl
