// A file of commands: read whole before any is run, run with one discovery, and gone on with.
#include "fabric_folder.h"

namespace {

class Batch : public FabricFolder {
 protected:
  void SetUp() override { Describe(6); }

  [[nodiscard]] std::string Of(const std::string &lines) const {
    folder.Put("lines", lines);
    return "batch " + (folder.Path() / "lines").generic_string();
  }
};

TEST_F(Batch, ChangesNothingBeforeEveryLineIsUnderstood) {
  const std::vector<std::pair<std::string, std::string>> refused = {
      {"create\nacg ad h2\n", "line 2"},       {"create\nacg add 'h2\n", "not closed"},
      {"create\nacg add h2\\\n", "backslash"}, {"create\n\n# c\ntakeover --yes", "line 4"},
      {"create\nbatch lines", "no place"},     {"create\nfabric set h2 --down", "no place"},
      {"create\nacg remove h2", "--yes"},      {"create --dry-run", "--dry-run"},
      {"create\nstatus --help", "help"}};
  for (const auto &[lines, mention] : refused) {
    const Json error = Ask("h1", Of(lines), 2)["error"];
    EXPECT_NE(error.dump().find(mention), std::string::npos) << error;
    EXPECT_FALSE(ResultOf("h1", "status")["secured"]) << lines;
  }
}

TEST_F(Batch, RunsOnOneDiscoveryAlsoAfterDeletionsAndAnewAfterAHandOver) {
  const std::string lines =
      "create\r\nkvrctl acg add h2 h3 \"h4\"  # the clients\n"
      "group create 'a b' --client h2 --reserve 2 --server h3\n"
      "group create 'a b/c' --client h3\ngroup rename 'a b/c' süd\n"
      "group delete --yes 'a b/süd'\ngroup create 'a b'/'d\"' --client h3\n"
      "group set-client @h3 h3\ngroup list\nbackup add h5\n";
  const Result traced = Run("h1", Of(lines) + " --trace --output json");
  const Json result = Json::parse(traced.out, nullptr, false)["result"];
  EXPECT_EQ(result["done"], 10) << traced.out;
  EXPECT_EQ(result["lines"][8]["result"][1]["path"], "a b/d\"");
  std::size_t discoveries = 0;
  for (std::size_t at = 0; (at = traced.err.find("Vexo_Startup", at)) != std::string::npos; ++at)
    ++discoveries;
  EXPECT_EQ(discoveries, 2u) << "the library's, and one for the adapters' addresses";

  const Json after = Ask("h1", Of("handover --yes h5\nstatus\ngroup list\n"));
  EXPECT_FALSE(after["result"]["lines"][1]["result"]["msc"]);
  EXPECT_EQ(ResultOf("h5", "group list").size(), 2u);
}

TEST_F(Batch, StopsAtTheFirstFailureOrGoesOn) {
  const std::string lines = "create\nacg add h2 h9\nacg add h2\ngroup create x --client h6\n";
  const Json stopped = Ask("h1", Of(lines), 4);
  EXPECT_EQ(stopped["result"]["not_run"], 2);
  EXPECT_NE(stopped["error"]["hint"].dump().find("kvrctl batch --from 2"), std::string::npos);
  const Json whole = Ask("h1", Of(lines) + " --from 2 --keep-going", 4);
  EXPECT_EQ(whole["result"]["done"], 1);
  EXPECT_EQ(whole["result"]["failed"], 2);
  EXPECT_EQ(whole["error"]["name"], "NO_SUCH_HOST") << "the first failure stands for all";
  EXPECT_EQ(Ask("h1", Of("acg add h9\n") + " --keep-going", 2)["result"]["done"], 0);
}

}  // namespace
