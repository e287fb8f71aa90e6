// The tree of groups as the tables describe it, with the clients whose chain cannot be followed.
#include <regex>

#include "support/world.h"
#include "tables/group_tree_rebuild.h"

using namespace kvrtest;

// roleFlags: 4 child, 8 delegated; 10, 14 and 18 free, child and delegated of a reserve.
TEST(Rebuild, PlacesEveryClientAsDeepAsTheTablesSay) {
  const std::string m = "M 5=3 10=4 11=8 12=8", a = "A 10=1 11=14 12=18", b = "B 11=1 12=14";
  const struct {
    std::vector<std::string> tables;
    const char *tree;
    std::uint32_t faultyRead = 0;  // of A's table, from 1: the scan, the walk from the top, ...
    std::optional<std::uint32_t> times = {};  // or every one from there on
  } cases[] = {
      {{"M 5=3"}, ""},
      // The chain of A, B and D, with S serving two of them; whole, and with each link missing.
      {{m, a, b, "D 12=1", "S s5 s10 s12"}, "A10{S}(B11(D12{S}))"},
      {{m, a, "D 12=1", "S s10 s12"}, "A10{S}(?(D12{S}))"},
      {{m, b, "D 12=1"}, "?(B11(D12))"},
      {{m, a, b, "D 12=1"}, "?(B11(D12))", 1},
      {{m, a, b, "D 12=1"}, "?(B11(D12)) A10", 2},
      {{m, a, b, "D 12=1"}, "A10(?(B11(D12)))", 2, 1},
      {{m + " 13=8", a + " 13=18", b + " 13=18", "E 13=1"}, "A10(B11(?(E13)))"},
      // One group "Offline Client" serves every orphan that reaches its place.
      {{m + " 13=8", a + " 13=18", "D 12=1", "E 13=1"}, "A10(?(D12 E13))"},
      {{m + " 13=8", b + " 13=10", "C 13=1", "D 12=1"}, "?(B11(?(C13) D12))"},
      {{m + " 13=8 14=8", b + " 13=18 14=18", "D 13=1", "E 14=1"}, "?(B11(?(D13 E14)))"},
      {{m + " 13=8 14=8", b + " 13=18 14=18", "D 13=1 14=14", "E 14=1"}, "?(B11(?(D13(E14))))"},
      // It stands before its siblings here, and ends the search for a place.
      {{m + " 13=8 14=4", a, "B 13=1", "D 12=1"}, "?(B13 D12) A10"},
      // Orphans met before those above them are discarded for the sub-trees of these ...
      {{m + " 13=8", "B 13=1", "C 12=1 13=14", "D 11=1 12=14 13=18", "S s13"},
       "?(D11(C12(B13{S})))"},
      {{m + " 13=8", "B 13=1", "C 12=1", "D 11=1 12=14 13=14"}, "?(D11(B13 C12))"},
      // ... and lost with a client in between; E, which B took along, comes again in its turn.
      {{m + " 13=8 14=8 15=8", "B 13=1 14=14", "D 11=1 12=14 13=18 14=18 15=14", "E 14=1", "F 15=1",
        "S s13 s14"},
       "?(D11(?(E14{S}) F15))"},
      // Relations that go round in circles end.
      {{m, a + " 10=15", b + " 10=14"}, "A10(B11)"},
      {{"M 5=3 10=8 11=8", "A 10=1 11=14", "B 10=14 11=1"}, "?(A10(B11))"}};
  for (const auto &[tables, tree, faultyRead, times] : cases) {
    const World world(tables);
    if (faultyRead != 0) world->AddFault({"A", {}, "TQ_ReadAccessControlTable", faultyRead, times});
    world.As("M");
    EXPECT_EQ(Tree(), tree);
    kvr::RebuildGroupTree();
    EXPECT_EQ(Tree(), tree);
    for (kvr::SystemRecord &system : kvr::Systems()) {
      EXPECT_EQ(system.clientGroup, Group(system.discovered.systemName)) << tree;
      kvr::AnyGroupBelow(kvr::g_topGroups, [&](auto &group) {
        if (ListFind(group.servers, &system) != nullptr) --system.asgServerCount;
        return false;
      });
      EXPECT_EQ(system.asgServerCount, 0u) << "counts the groups that it serves: " << tree;
    }
  }
}

TEST(Rebuild, ReadsEachTableAfreshInAFixedOrder) {
  const World world(
      {"M 5=3 10=4 11=8 12=8 13=8 14=8", "B 11=1 12=14 13=18 14=18", "D 13=1 14=14", "E 14=1"});
  world.Start("M");
  world.Calls();
  KVR_DiscoverServers(nullptr, 0);
  EXPECT_EQ(std::regex_replace(world.Calls(), std::regex("Read(S|A)[A-Za-z]*"), "$1"),
            "S:B A:B S:D A:D S:E A:E "      // who is there, by headers and access tables
            "S:B A:B S:D A:D S:E A:E A:D "  // the orphans B and D, and D's child E
            "A:B A:B");                     // B takes D; nobody takes B
}
