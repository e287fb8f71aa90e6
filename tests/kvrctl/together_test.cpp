// Several processes on one fabric: readers beside writers, and a writer that is killed.
#include <memory>

#include "fabric_folder.h"

namespace {

constexpr int kHosts = 60;

class Together : public FabricFolder {
 protected:
  void SetUp() override {
    Describe(kHosts);
    ASSERT_EQ(Run("h1", {"create"}).status, 0);
  }

  // "acg add" of the hosts with these numbers.
  static Words Adding(int first, int last) {
    Words words = {"acg", "add"};
    for (int i = first; i <= last; ++i)
      words.push_back("h" + std::to_string(i));
    return words;
  }
};

TEST_F(Together, ReadersAndWritersOfDifferentHostsDoNotDisturbEachOther) {
  ASSERT_EQ(Run("h1", Adding(2, 9)).status, 0);
  for (const Words &words : {Words{"group", "create", "a", "--client", "h2", "--reserve", "3"},
                             {"group", "create", "b", "--client", "h3", "--reserve", "3"},
                             {"group", "add-server", "a", "h4", "h5"},
                             {"group", "add-server", "b", "h6", "h7"}}) {
    ASSERT_EQ(Run("h1", words).status, 0);
  }
  std::vector<std::unique_ptr<Process>> writers;
  const auto write = [&](const std::string &host, const Words &words) {
    writers.push_back(std::make_unique<Process>(Line(host, words)));
  };
  write("h2", {"group", "create", "c", "--client", "h4"});
  write("h3", {"group", "create", "c", "--client", "h6"});
  write("h1", Adding(10, kHosts));
  for (int i = 0; i < 5; ++i) {
    const Json tree = ResultOf("h1", {"tree"});
    ASSERT_EQ(tree.size(), 2u);
    EXPECT_EQ(tree[0]["servers"], Json({"h4", "h5"}));
  }
  for (const auto &writer : writers) {
    const Result result = writer->Finish();
    EXPECT_EQ(result.status, 0) << result.err;
  }
  const Json tree = ResultOf("h1", {"tree"});
  EXPECT_EQ(tree[0]["children"][0]["client"], "h4");
  EXPECT_EQ(tree[1]["children"][0]["client"], "h6");
  EXPECT_EQ(ResultOf("h1", {"status"})["acg"], kHosts - 1);
}

// The trace holds the writer back: it gets at most a page of lines ahead of the test that reads it.
TEST_F(Together, AKilledWriterLeavesWholeTablesAndCanBeRepeated) {
  Words words = Adding(2, kHosts);
  words.push_back("--trace");
  Process writer(Line("h1", words));
  ASSERT_TRUE(writer.ReadErrorsUntil("TQ_WriteSaTable", 3));
  writer.Kill();
  EXPECT_EQ(writer.Finish().status, 128 + 9);

  const std::size_t images = WholeImages();
  EXPECT_GE(images, 4u);
  EXPECT_LT(images, static_cast<std::size_t>(kHosts)) << "killed only when all was done";
  EXPECT_EQ(ResultOf("h1", {"status"})["acg"], images - 1);
  EXPECT_EQ(ResultOf("h1", {"tree"}), Json::array());

  const Json repeated = Ask("h1", Adding(2, kHosts), 4);
  EXPECT_EQ(repeated["error"]["failed_hosts"].size(), images - 1) << "those that were in already";
  EXPECT_EQ(WholeImages(), static_cast<std::size_t>(kHosts));
}

}  // namespace
