// `kvrctl tree`: the groups as they hang below one another.
#include <fmt/format.h>

#include "columns.h"
#include "command.h"
#include "library.h"
#include "slot_reader.h"

namespace kvrctl {
namespace {

Json ReserveOf(const Slots &slots, const Group &group) {
  const auto found = slots.find(group.client);
  if (found == slots.end()) return {};
  const kvrapi::SlotCount &reserve = found->second.reserve;
  return {{"used", reserve.used}, {"free", reserve.free}};
}

Json NodesOf(const std::vector<Group> &groups, const Slots &slots) {
  Json nodes = Json::array();
  for (const Group &group : groups) {
    nodes.push_back({{"name", group.name},
                     {"path", group.path},
                     {"client", ClientOf(group)},
                     {"offline", group.offline},
                     {"slot", SlotOf(slots, group.client)},
                     {"reserve", ReserveOf(slots, group)},
                     {"servers", NamesOf(group.servers)},
                     {"children", NodesOf(group.children, slots)}});
  }
  return nodes;
}

// Where a group stands: the bars of the levels above it, and the branch that leads to it.
struct Place {
  std::string bars;
  bool top;
  bool last;  // of those below one group

  std::string Branch() const { return top ? "" : bars + (last ? "└─ " : "├─ "); }
  std::string Bars() const { return top ? "" : bars + (last ? "   " : "│  "); }
};

std::string ReserveText(const Json &reserve) {
  if (reserve.is_null()) return Shown(reserve);
  return fmt::format("{} used, {} free", Shown(reserve.at("used")), Shown(reserve.at("free")));
}

Row RowOf(const Json &node, const Place &place) {
  const std::string name = Shown(node.at("name"));
  const std::string trail = place.Bars() + (node.at("children").empty() ? "" : "│  ");
  const Cell client =
      node.at("offline") ? Cell{"(offline)", kWarningStyle} : Cell{Shown(node.at("client"))};
  return {{name.empty() ? "(no name)" : name, {}, place.Branch(), trail},
          client,
          {Shown(node.at("slot"))},
          {ReserveText(node.at("reserve"))},
          {Shown(node.at("servers"))}};
}

void AddRows(std::vector<Row> &rows, const Json &nodes, const std::string &bars, bool top) {
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const Place place{bars, top, i + 1 == nodes.size()};
    rows.push_back(RowOf(nodes[i], place));
    AddRows(rows, nodes[i].at("children"), place.Bars(), false);
  }
}

std::string DrawTree(const Json &tree, const Screen &screen) {
  if (tree.empty()) return "There are no groups.\n";
  std::vector<Row> rows;
  AddRows(rows, tree, "", true);
  return Columns({"GROUP", "CLIENT", "SLOT", "RESERVE", "SERVERS"}, rows, screen);
}

Outcome ShowTree() {
  const Library library;
  return {NodesOf(library.Groups(), ReadSlots(library.Hosts())), DrawTree, library.GroupNotes()};
}

}  // namespace

void AddTreeCommand(CLI::App &app, Commands &commands) {
  AddCommand(app,
             {"tree", "Draw the tree of groups",
              R"([{"name","path","client","offline","slot","reserve":{"used","free"},)"
              R"("servers":[…],"children":[…]}])"},
             commands, ShowTree);
}

}  // namespace kvrctl
