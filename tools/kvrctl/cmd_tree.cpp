// `kvrctl tree`: the groups as they hang below one another.
#include "command.h"
#include "library.h"
#include "slot_reader.h"

namespace kvrctl {
namespace {

Json NodesOf(const std::vector<Group> &groups, const Slots &slots) {
  Json nodes = Json::array();
  for (const Group &group : groups) {
    nodes.push_back({{"name", group.name},
                     {"path", group.path},
                     {"client", ClientOf(group)},
                     {"offline", group.offline},
                     {"slot", SlotOf(slots, group.client)},
                     {"servers", NamesOf(group.servers)},
                     {"children", NodesOf(group.children, slots)}});
  }
  return nodes;
}

using Rows = std::vector<std::vector<std::string>>;

// indent: the lines of the levels above; top-level groups have none and no branch of their own.
void AddRows(Rows &rows, const Json &nodes, const std::string &indent, bool top) {
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const Json &node = nodes[i];
    const bool last = i + 1 == nodes.size();
    const std::string name = node["name"].get<std::string>();
    rows.push_back({indent +
                        (top    ? ""
                         : last ? "└─ "
                                : "├─ ") +
                        (name.empty() ? "(no name)" : name),
                    node["offline"] ? "(offline)" : Shown(node["client"]), Shown(node["slot"]),
                    Shown(node["servers"])});
    AddRows(rows, node["children"], indent + (top ? "" : last ? "   " : "│  "), false);
  }
}

std::string DrawTree(const Json &tree, const Screen &) {
  if (tree.empty()) return "There are no groups.\n";
  Rows rows = {{"GROUP", "CLIENT", "SLOT", "SERVERS"}};
  AddRows(rows, tree, "", true);
  return Columns(rows);
}

Outcome ShowTree() {
  const Library library;
  return {NodesOf(library.Groups(), ReadSlots(library.Hosts())), DrawTree, library.GroupNotes()};
}

}  // namespace

void AddTreeCommand(CLI::App &app, Commands &commands) {
  AddCommand(app,
             {"tree", "Draw the tree of groups",
              R"([{"name","path","client","offline","slot","servers":[…],"children":[…]}])"},
             commands, ShowTree);
}

}  // namespace kvrctl
