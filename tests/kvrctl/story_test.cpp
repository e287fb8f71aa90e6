// One configuration told by its hosts in turn, each run a process: what one host writes another
// rebuilds from the tables, and both forms of output say the same.
#include "fabric_folder.h"

namespace {

class Story : public FabricFolder {
 protected:
  // h1 is the MSC; sales (client h2, servers h3 and h4) has the child north (client h3, server h4).
  void SetUp() override {
    Describe(7);
    ASSERT_TRUE(
        RunAll({"create", "acg add h2 Wïrt-c h4 h5", "group create sales --client h2 --reserve 5",
                "group add-server sales h3 h4", "group create sales/north --client h3",
                "group add-server @h3 h4"}));
  }

  // Lets these calls fail, and no others, from now on.
  void SetFaults(const std::vector<fabric::Fault> &faults) {
    network.faults = faults;
    Save();
  }

  // Leaves only these hosts up.
  void LeaveUp(const std::string &names) {
    for (auto &host : network.hosts) host.up = names.find(host.name) != std::string::npos;
    Save();
  }

  // Lets a shell run, as h1, the command that the hint of a failure names last.
  [[nodiscard]] int RunHinted(const Json &answer) const {
    const std::string hint = answer["error"]["hint"];
    const std::size_t first = hint.rfind("`kvrctl ") + 7, last = hint.rfind('`');
    const std::string words = hint.substr(first, last - first) + " --host h1 --fabric ";
    const std::string program = std::filesystem::path(KVRCTL_PATH).make_preferred().string();
    return RunInShell(program + words + folder.Path().string());
  }

  // The first key of a host's stored table.
  [[nodiscard]] std::string KeyOf(const std::string &host) const {
    const std::size_t offset = offsetof(SaTable, entries) + offsetof(SaEntry, key);
    return folder.Get("tables/" + host + ".satable").substr(offset, sizeof(KeyEntry));
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
    for (const auto &[key, value] : facts.items())
      if (!(key == "path" && facts.contains("children"))) ExpectFactsIn(text, value);
  } else if (facts.is_string() || facts.is_number()) {
    const std::string fact = facts.is_string() ? facts.get<std::string>() : facts.dump();
    EXPECT_NE(text.find(fact), std::string::npos) << fact << " is not in\n" << text;
  }
}

TEST_F(Story, IsRebuiltFromTheTablesByEveryHost) {
  EXPECT_EQ(Outline(ResultOf("h1", "tree")), R"(sales "h2"["h3","h4"](sales/north "h3"["h4"]()))");
  EXPECT_EQ(Outline(ResultOf("h2", "tree")), R"(north "h3"["h4"]())");
  EXPECT_EQ(Outline(ResultOf("h5", "tree")), "") << "a host that only serves sees no groups";

  ASSERT_EQ(Run("h2", "group create süd😀 --client h4 --reserve 9").status, 0);
  EXPECT_EQ(ResultOf("h1", "slots sales")["free"], 0)
      << "h4 got the last four: one of its own, three to hold";
  EXPECT_EQ(ResultOf("h1", "group show sales/süd😀")["free"], 3);

  std::map<std::string, Json> hosts;
  for (const Json &host : ResultOf("h1", "hosts")) hosts[host["name"]] = host;
  EXPECT_EQ(hosts["h3"]["client_of"], "sales/north");
  EXPECT_EQ(hosts["h4"]["serves"], Json({"sales", "sales/north"}));
  EXPECT_TRUE(hosts["h5"]["in_acg"] && hosts["h5"]["slot"].is_null() && !hosts["h6"]["in_acg"]);
  EXPECT_EQ(hosts["h2"]["slot"], ResultOf("h2", "status")["slot"]);
  const Json status = ResultOf("h1", "status");
  EXPECT_TRUE(status["msc"] && status["groups"] == 3 && status["acg"] == 4) << status;
}

TEST_F(Story, ShowsWhatHangsBelowAHostThatIsDownAsOffline) {
  network.knownAtStart = false;  // the discovery's event comes from a thread of its own
  Save();
  ASSERT_TRUE(RunAll({"fabric set h2 --down"}));
  EXPECT_EQ(Outline(ResultOf("h1", "tree")),
            R"(Offline Client null[](Offline Client/north "h3"["h4"]()))");
  const std::string text = Run("h1", "tree").out;
  EXPECT_NE(text.find("Offline Client  (offline)"), std::string::npos) << text;
  EXPECT_NE(text.find("└─ north"), std::string::npos) << text;
}

TEST_F(Story, SaysTheSameFactsInBothForms) {
  for (const char *command : {"status", "hosts", "tree", "slots sales", "group show sales",
                              "group available sales", "backup list", "fabric show"}) {
    SCOPED_TRACE(command);
    ExpectFactsIn(Run("h1", command).out, ResultOf("h1", command));
  }
  const Json made = Ask("h1", "group create \x1b[2J --client h5 --reserve 245");
  EXPECT_EQ(made["result"]["granted"], 238) << "of 245 six went to sales, one to the client";
  EXPECT_NE(made["notes"][0].get<std::string>().find("5014"), std::string::npos);
  EXPECT_EQ(ResultOf("h1", "group list")[0]["path"], "\x1b[2J");
  const std::string text = Run("h1", "group list").out;
  EXPECT_NE(text.find("\\x1b[2J "), std::string::npos) << "a name must not steer a terminal";
}

TEST_F(Story, GoesOnPastHostsThatFail) {
  ASSERT_TRUE(RunAll({"fabric set h6 --down"}));
  const Json added = Ask("h1", "acg add h6 h7 h5", 4);
  EXPECT_EQ(added["result"]["done"], Json({"h7"}));
  const Json expected = {{{"host", "h6"}, {"code", 5019}, {"name", "KVR_ERR_REMOTE_ACCESS_FAILED"}},
                         {{"host", "h5"}, {"code", 5009}, {"name", "KVR_ERR_ALREADY_IN_ACG"}}};
  EXPECT_EQ(added["error"]["failed_hosts"], expected);

  SetFaults({{"h4", {}, "TQ_RemoveSaTable", 1, {}}});
  const Json left = Ask("h1", "destroy --yes", 4);
  EXPECT_EQ(left["result"]["removed"], Json({"h2", "h3", "h5", "h7"}));
  EXPECT_EQ(WholeImages(), 2u);
  SetFaults({});
  EXPECT_TRUE(ResultOf("h1", "destroy --yes")["here"]);
  EXPECT_EQ(WholeImages(), 0u);
}

TEST_F(Story, IsChangedByItsAdministratorAndHandedOn) {
  ASSERT_TRUE(RunAll({"acg add h6", "group add-server sales h5 h6"}));
  EXPECT_EQ(ResultOf("h1", "group rename sales/north nörd/1")["new_path"], "sales/nörd\\/1");
  EXPECT_EQ(ResultOf("h1", "group set-client @h3 h5")["former_client"], "h3");
  ASSERT_TRUE(RunAll({"group remove-server sales h3 h6", "group set-reserve sales 3"}));
  EXPECT_EQ(ResultOf("h1", "slots sales"), Json({{"group", "sales"}, {"free", 2}, {"used", 1}}));
  ASSERT_TRUE(
      RunAll({"group create labs --client h3 --server h4 h6", "group rename labs lab",
              "backup add h7", "switch-access on", "switch-access on", "renew-keys", "sync"}));
  const Json wide = Ask("h1", "group set-reserve lab 300");
  EXPECT_EQ(wide["result"]["granted"], 240) << "of 246 six went to the MSC, the clients and sales";
  EXPECT_NE(wide["notes"][0].get<std::string>().find("240 of 300"), std::string::npos) << wide;
  const std::string outline =
      R"(lab "h3"["h4","h6"]()sales "h2"["h4","h5"](sales/nörd\/1 "h5"["h4"]()))";
  EXPECT_EQ(Outline(ResultOf("h1", "tree")), outline);
  EXPECT_TRUE(ResultOf("h4", "status")["switch_access"]);

  ASSERT_EQ(Run("h1", "handover --yes h7").status, 0);
  EXPECT_EQ(Outline(ResultOf("h7", "tree")), outline);
  EXPECT_FALSE(ResultOf("h1", "status")["msc"]);
  EXPECT_EQ(ResultOf("h7", "backup add h1")["done"], Json({"h1"}));
  EXPECT_EQ(ResultOf("h7", "group delete --yes lab")["done"], Json({"h4", "h6"}));

  LeaveUp("h1 h2 h3 h4 h5 h6");
  EXPECT_NE(Ask("h1", "takeover --yes")["notes"][0].get<std::string>().find("destroy"),
            std::string::npos);
  LeaveUp("h7");
  EXPECT_EQ(ResultOf("h7", "destroy --yes")["removed"], Json::array());
  LeaveUp("h1 h2 h3 h4 h5 h6 h7");
  EXPECT_EQ(ResultOf("h1", "backup add h7")["done"], Json({"h7"}));
  EXPECT_EQ(ResultOf("h1", "backup list")[0]["name"], "h7");
  EXPECT_EQ(Outline(ResultOf("h1", "tree")), outline.substr(outline.find("sales")));
}

// Every change of several hosts that stops at h4 leaves the others done, and names the command that
// does the rest.
TEST_F(Story, CanBeRepeatedAfterAFailureInTheMiddle) {
  using Attempt = std::tuple<const char *, std::string, Json>;
  for (const auto &[function, command, done] : std::vector<Attempt>{
           {"TQ_WriteKeyTable", "renew-keys", {"h2", "h3", "h5"}},
           {"TQ_WriteAccessControlTable", "switch-access on", {"h2", "h3", "h5"}},
           {"TQ_WriteAccessControlTable", "switch-access off", {"h2", "h3", "h5"}},
           {"TQ_WriteAccessControlTable",
            "group create it's\"&x --client h5 --server h4 h3",
            {"h3"}},
           {"TQ_WriteAccessControlTable", "group delete --yes it's\"&x", {"h3"}},
           {"TQ_WriteAccessControlTable", "group remove-server sales h3 h4", {"h3"}},
       }) {
    SCOPED_TRACE(command);
    SetFaults({{"h4", {}, function, 1, {}}});
    const Json answer = Ask("h1", command, 4);
    EXPECT_EQ(answer["result"]["done"], done);
    EXPECT_EQ(answer["error"]["failed_hosts"].size(), 1u);
    EXPECT_EQ(answer["error"]["failed_hosts"][0]["host"], "h4");
    EXPECT_NE(RunHinted(answer), 0) << "while the fault lasts";
    SetFaults({});
    EXPECT_EQ(RunHinted(answer), 0) << answer;
    if (command.starts_with("switch-access")) {
      EXPECT_EQ(ResultOf("h4", "status")["switch_access"], command.ends_with("on"));
    }
  }
  EXPECT_EQ(Outline(ResultOf("h1", "tree")), R"(sales "h2"[](sales/north "h3"["h4"]()))");
  EXPECT_EQ(KeyOf("h1"), KeyOf("h4"));

  EXPECT_EQ(Run("h1", "group delete --yes sales").status, 3) << "it has a child";
  SetFaults({{"h2", {}, "TQ_WriteSaTableHeader", 1, {}}});
  EXPECT_EQ(Run("h1", "group rename sales south").status, 3) << "not stored";
  EXPECT_EQ(ResultOf("h1", "group list")[0]["path"], "sales");
}

}  // namespace
