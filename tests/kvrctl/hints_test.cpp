// What is told beside a change: this host's own share of it, names kept whole, and ways out that a
// shell can follow.
#include "fabric_folder.h"

namespace {

class Hints : public FabricFolder {
 protected:
  void SetUp() override {
    Describe(4);
    network.hosts[3].name = "[h2]";
    Save();
    ASSERT_TRUE(RunAll({"create", "acg add h2 [h2] h3 h2"}));
  }
};

TEST_F(Hints, TellWhatThisHostsTableRefused) {
  SpoilKey("h1");
  network.faults = {{"h1", {}, "TQ_WriteSaTable", 1, {}},
                    {"h2", {}, "TQ_WriteAccessControlTable", 1, {}}};
  Save();
  EXPECT_FALSE(Ask("h1", "renew-keys", 4)["result"].value("here", true));
  EXPECT_EQ(Ask("h1", "switch-access on", 4)["notes"].size(), 1u) << "5030 beside the 5008";
}

TEST_F(Hints, KeepNamesWhole) {
  EXPECT_EQ(ResultOf("h1", "acg remove --yes [h2]")["done"], Json({"[h2]"}));
  network.faults = {{"h3", {}, "TQ_WriteSaTableHeader", 1, {}}};
  Save();
  const std::string note = Ask("h1", "group create g --client h3")["notes"].dump();
  EXPECT_NE(note.find("`kvrctl group rename @h3 g`"), std::string::npos) << note;
}

TEST_F(Hints, NeverTakeAFailedCountForNone) {
  ASSERT_TRUE(RunAll(
      {"group create a --client h2 --reserve 1 --server h3", "group create a/b --client h3"}));
  network.hosts[2].up = false;
  for (const std::uint32_t call : {2u, 3u, 4u, 99u}) {
    network.faults = {{"h2", {}, "TQ_ReadAccessControlTable", call, 2}};
    Save();
    EXPECT_NE(Run("h1", "group delete --yes a").status, 0) << "from call " << call;
  }
}

}  // namespace
