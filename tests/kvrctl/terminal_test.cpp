// kvrctl on a terminal: what fits its width, what is painted, and what it asks there.
#include <regex>

#include "fabric_folder.h"

namespace {

// The columns that the text takes where every character beyond U+2E80 is wide.
std::size_t ColumnsOf(const std::string &utf8) {
  std::size_t columns = 0;
  for (const unsigned char byte : utf8)
    columns += byte >= 0xE3 ? 2u : (byte & 0xC0) != 0x80 ? 1u : 0u;
  return columns;
}

// The text without blanks, line breaks and the bars of a tree.
std::string Joined(const std::string &text) {
  return std::regex_replace(text, std::regex("[ \r\n]|│|├─|└─"), "");
}

class Terminal : public FabricFolder {
 protected:
  void SetUp() override {
    Describe(30);
    for (std::size_t i = 4; i < 30; ++i)
      network.hosts[i].wideName = u"計算機の名前" + network.hosts[i].wideName;
    Save();
    std::string all;
    for (int i = 2; i <= 30; ++i) all += " h" + std::to_string(i);
    ASSERT_TRUE(
        RunAll({"create", "acg add" + all, "group create 東京の販売部 --client h2 --reserve 9",
                "group add-server @h2" + all.substr(3),
                "group create @h2/north-and-north-east --client h3 --reserve 4",
                "group add-server @h3" + all.substr(6), "group create @h3/z --client h4",
                "group create @h2/y --client h5"}));
  }

  // The command as h1 on a terminal; the input ends behind what is typed.
  [[nodiscard]] Result Show(const std::string &command, int columns,
                            const std::string &setting = "", const std::string &typed = "") const {
    std::string line = "stty -echo cols " + std::to_string(columns) + "; env TERM=xterm " + setting;
    for (const std::string &word : Words("h1", command)) line += " '" + word + "'";
    folder.Put("typed", typed);
    line = "script -qec \"" + line + "\" /dev/null < " + folder.Path().string() + "/typed";
    return Process({"/bin/sh", "-c", line}).Finish();
  }

  void ExpectFits(const std::string &command, int columns) const {
    SCOPED_TRACE(command + " on " + std::to_string(columns));
    const std::string shown = Show(command, columns, "NO_COLOR=1").out;
    std::istringstream lines(shown);
    for (std::string line; std::getline(lines, line);) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      EXPECT_LE(ColumnsOf(line), static_cast<std::size_t>(columns)) << line;
    }
    ExpectFacts(Joined(shown), ResultOf("h1", command));
  }

  static void ExpectFacts(const std::string &text, const Json &facts) {
    if (facts.is_structured()) {
      for (const auto &[key, value] : facts.items())
        if (!(key == "path" && facts.contains("reserve"))) ExpectFacts(text, value);
    } else if (facts.is_string() || facts.is_number()) {
      const std::string fact = Joined(facts.is_string() ? facts.get<std::string>() : facts.dump());
      EXPECT_NE(text.find(fact), std::string::npos) << fact << " is not in\n" << text;
    }
  }
};

TEST_F(Terminal, ShowsEveryFactWithinItsWidth) {
  for (const char *command :
       {"hosts", "tree", "group list", "group show @h3", "status", "fabric show"})
    for (const int columns : {20, 41, 80, 300}) ExpectFits(command, columns);
  EXPECT_NE(Show("tree", 80).out.find("\n│  │  "), std::string::npos) << "no bars beside a wrap";
}

TEST_F(Terminal, PaintsOnlyWhereColoursAreTaken) {
  network.hosts[1].up = false;
  Save();
  EXPECT_NE(Show("tree", 80).out.find("\x1b[33m(offline)"), std::string::npos);
  EXPECT_NE(Show("acg add h99", 80).out.find("\x1b[31mkvrctl:"), std::string::npos);
  for (const std::string command : {"tree", "acg add h99"})
    for (const std::string &shown :
         {Show(command, 80, "NO_COLOR=1").out, Show(command, 80, "TERM=dumb").out,
          Show(command + " --output json", 80).out, Run("h1", command).out})
      EXPECT_EQ(shown.find('\x1b'), std::string::npos) << shown;
}

TEST_F(Terminal, ChangesNothingWithoutTheWordAskedFor) {
  const std::string before = folder.Get("tables/h9.satable");
  EXPECT_EQ(Run("h1", "acg remove h9").status, 2);
  for (const char *typed : {"", "yes\n", "removed\n"})
    EXPECT_EQ(Show("acg remove h9", 80, "", typed).status, 3) << typed;
  EXPECT_EQ(folder.Get("tables/h9.satable"), before);
  EXPECT_EQ(Show("acg remove h9", 80, "", "remove\n").status, 0);
  EXPECT_NE(folder.Get("tables/h9.satable"), before);
}

// The discovery alone takes longer than a run that shows no progress.
TEST_F(Terminal, LeavesNothingOfTheProgressLine) {
  network.knownAtStart = false;
  network.delayMs = 600;
  Save();
  const std::string shown = Show("status", 40).out;
  const std::regex shownAndGone(R"(\rDiscovering the hosts \.\.\.\r {25}\r[^D]*$)");
  EXPECT_TRUE(std::regex_search(shown, shownAndGone)) << shown;
  EXPECT_EQ(Show("status", 40, "TERM=dumb").out.find("Discovering"), std::string::npos);
}

}  // namespace
