// Several processes on one fabric: readers beside writers, and a writer that is killed.
#include "fabric_folder.h"

namespace {

constexpr std::size_t kHosts = 60;

class Together : public FabricFolder {
 protected:
  void SetUp() override {
    Describe(kHosts);
    ASSERT_TRUE(RunAll({"create"}));
  }

  // "acg add" of the hosts with these numbers.
  static std::string Adding(std::size_t first, std::size_t last) {
    std::string command = "acg add";
    for (std::size_t i = first; i <= last; ++i) command += " h" + std::to_string(i);
    return command;
  }
};

TEST_F(Together, ReadersAndWritersOfDifferentHostsDoNotDisturbEachOther) {
  ASSERT_TRUE(RunAll({Adding(2, 9), "group create a --client h2 --reserve 3",
                      "group create b --client h3 --reserve 3", "group add-server a h4 h5",
                      "group add-server b h6 h7"}));
  Process writers[] = {Process(Words("h2", "group create c --client h4")),
                       Process(Words("h3", "group create c --client h6")),
                       Process(Words("h1", Adding(10, kHosts)))};
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(ResultOf("h1", "tree").at(0)["servers"], Json({"h4", "h5"}));
  for (Process &writer : writers) EXPECT_EQ(writer.Finish().status, 0);
  const Json tree = ResultOf("h1", "tree");
  EXPECT_EQ(tree[0]["children"][0]["client"], "h4");
  EXPECT_EQ(tree[1]["children"][0]["client"], "h6");
  EXPECT_EQ(ResultOf("h1", "status")["acg"], kHosts - 1);
}

// The trace holds the writer back: it gets at most a page of lines ahead of the test that reads it.
TEST_F(Together, AKilledWriterLeavesWholeTablesAndCanBeRepeated) {
  Process writer(Words("h1", Adding(2, kHosts) + " --trace"));
  ASSERT_TRUE(writer.ReadErrorsUntil("TQ_WriteSaTable host h4 "));
  writer.Kill();
  EXPECT_EQ(writer.Finish().status, Process::kKilled);

  const std::size_t images = WholeImages();
  EXPECT_GE(images, 4u);
  EXPECT_LT(images, kHosts) << "killed only when all was done";
  EXPECT_EQ(ResultOf("h1", "status")["acg"], images - 1);

  const Json alreadyIn = Ask("h1", Adding(2, kHosts), 4)["error"]["failed_hosts"];
  EXPECT_EQ(alreadyIn.size(), images - 1);
  EXPECT_EQ(WholeImages(), kHosts);
}

// The run ahead is shorter than the 120 hosts' share of the trace.
TEST_F(Together, AKilledKeyRenewalIsFoundByTheDoctorAndRepaired) {
  SpoilKey("h1");
  Describe(120);
  ASSERT_TRUE(RunAll({Adding(2, 120), "doctor -x"}));
  Process writer(Words("h1", "renew-keys --trace"));
  ASSERT_TRUE(writer.ReadErrorsUntil("TQ_WriteKeyTable host h10 "));
  writer.Kill();
  EXPECT_EQ(writer.Finish().status, Process::kKilled);

  const Json findings = Ask("h1", "doctor -x", 1)["result"]["findings"];
  ASSERT_EQ(findings.size(), 1u) << findings;
  EXPECT_EQ(findings[0]["code"], "KEYS_DIFFER");
  EXPECT_NE(findings[0]["next"].dump().find("`kvrctl renew-keys`"), std::string::npos);
  ASSERT_TRUE(RunAll({"renew-keys", "doctor -x"}));
}

}  // namespace
