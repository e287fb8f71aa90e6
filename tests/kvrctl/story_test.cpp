// One configuration told by its hosts in turn, each run a process: what one host writes another
// rebuilds from the tables, and both forms of output say the same.
#include "fabric_folder.h"

namespace {

class Story : public FabricFolder {
 protected:
  // h1 is the MSC; sales (client h2, servers h3 and h4) has the child north (client h3, server h4).
  void SetUp() override {
    Describe(7);
    ASSERT_TRUE(RunAll({{"create"},
                        {"acg", "add", "h2", "Wïrt-c", "h4", "h5"},
                        {"group", "create", "sales", "--client", "h2", "--reserve", "5"},
                        {"group", "add-server", "sales", "h3", "h4"},
                        {"group", "create", "sales/north", "--client", "h3"},
                        {"group", "add-server", "@h3", "h4"}}));
  }
};

// Each group as path, client, servers and, in brackets, the groups below.
std::string Outline(const Json &tree) {
  std::string text;
  for (const Json &node : tree) {
    EXPECT_EQ(node["offline"], node["client"].is_null());
    EXPECT_EQ(node["slot"].is_null(), node["client"].is_null());
    text += node["path"].get<std::string>() + " " + node["client"].dump() + node["servers"].dump() +
            "(" + Outline(node["children"]) + ")";
  }
  return text;
}

// Expects every name and number of the result somewhere in the text; what the tree draws as nesting
// it does not write as paths.
void ExpectFactsIn(const std::string &text, const Json &facts) {
  if (facts.is_structured()) {
    for (const auto &[key, value] : facts.items()) {
      if (!(key == "path" && facts.contains("children"))) ExpectFactsIn(text, value);
    }
  } else if (facts.is_string() || facts.is_number()) {
    const std::string fact = facts.is_string() ? facts.get<std::string>() : facts.dump();
    EXPECT_NE(text.find(fact), std::string::npos) << fact << " is not in\n" << text;
  }
}

TEST_F(Story, IsRebuiltFromTheTablesByEveryHost) {
  EXPECT_EQ(Outline(ResultOf("h1", {"tree"})),
            R"(sales "h2"["h3","h4"](sales/north "h3"["h4"]()))");
  EXPECT_EQ(Outline(ResultOf("h2", {"tree"})), R"(north "h3"["h4"]())");
  EXPECT_EQ(Outline(ResultOf("h5", {"tree"})), "") << "a host that only serves sees no groups";

  const Words south = {"group", "create", "süd😀", "--client", "h4", "--reserve", "9"};
  ASSERT_EQ(Run("h2", south).status, 0);
  EXPECT_EQ(ResultOf("h1", {"slots", "sales"})["free"], 0)
      << "h4 got the last four: one of its own, three to hold";
  EXPECT_EQ(ResultOf("h1", {"group", "show", "sales/süd😀"})["free"], 3);

  std::map<std::string, Json> hosts;
  for (const Json &host : ResultOf("h1", {"hosts"})) hosts[host["name"]] = host;
  EXPECT_EQ(hosts["h3"]["client_of"], "sales/north");
  EXPECT_EQ(hosts["h4"]["serves"], Json({"sales", "sales/north"}));
  EXPECT_TRUE(hosts["h5"]["in_acg"] && hosts["h5"]["slot"].is_null() && !hosts["h6"]["in_acg"]);
  EXPECT_EQ(hosts["h2"]["slot"], ResultOf("h2", {"status"})["slot"]);
  const Json status = ResultOf("h1", {"status"});
  EXPECT_TRUE(status["msc"] && status["groups"] == 3 && status["acg"] == 4) << status;
}

TEST_F(Story, ShowsWhatHangsBelowAHostThatIsDownAsOffline) {
  network.knownAtStart = false;  // the discovery's event comes from a thread of its own
  Save();
  ASSERT_TRUE(RunAll({{"fabric", "set", "h2", "--down"}}));
  EXPECT_EQ(Outline(ResultOf("h1", {"tree"})),
            R"(Offline Client null[](Offline Client/north "h3"["h4"]()))");
  const std::string text = Run("h1", {"tree"}).out;
  EXPECT_NE(text.find("Offline Client  (offline)"), std::string::npos) << text;
  EXPECT_NE(text.find("└─ north"), std::string::npos) << text;
}

TEST_F(Story, SaysTheSameFactsInBothForms) {
  for (const Words &words : {Words{"status"},
                             {"hosts"},
                             {"tree"},
                             {"slots", "sales"},
                             {"group", "show", "sales"},
                             {"fabric", "show"}}) {
    SCOPED_TRACE(words.front());
    ExpectFactsIn(Run("h1", words).out, ResultOf("h1", words));
  }
  const Json made = Ask("h1", {"group", "create", "\x1b[2J", "--client", "h5", "--reserve", "245"});
  EXPECT_EQ(made["result"]["granted"], 238) << "of 245 six went to sales, one to the client";
  EXPECT_NE(made["notes"][0].get<std::string>().find("5014"), std::string::npos);
  EXPECT_EQ(ResultOf("h1", {"group", "list"})[0]["path"], "\x1b[2J");
  const std::string text = Run("h1", {"group", "list"}).out;
  EXPECT_NE(text.find("\\x1b[2J "), std::string::npos) << "a name must not steer a terminal";
}

TEST_F(Story, GoesOnPastHostsThatFail) {
  ASSERT_TRUE(RunAll({{"fabric", "set", "h6", "--down"}}));
  const Json added = Ask("h1", {"acg", "add", "h6", "h7", "h5"}, 4);
  EXPECT_EQ(added["result"]["done"], Json({"h7"}));
  const Json expected = {{{"host", "h6"}, {"code", 5019}, {"name", "KVR_ERR_REMOTE_ACCESS_FAILED"}},
                         {{"host", "h5"}, {"code", 5009}, {"name", "KVR_ERR_ALREADY_IN_ACG"}}};
  EXPECT_EQ(added["error"]["failed_hosts"], expected);

  network.faults = {{"h4", {}, "TQ_RemoveSaTable", 1, {}}};
  Save();
  const Json left = Ask("h1", {"destroy"}, 4);
  EXPECT_EQ(left["result"]["removed"], Json({"h2", "h3", "h5", "h7"}));
  EXPECT_EQ(WholeImages(), 2u);
  network.faults.clear();
  Save();
  EXPECT_TRUE(ResultOf("h1", {"destroy"})["here"]);
  EXPECT_EQ(WholeImages(), 0u);
}

}  // namespace
