// What is made from kvrctl's description of itself: the files in docs/ say what it says, and its
// completion, sourced into a bash, completes.
#include <regex>
#include <set>

#include "fabric_folder.h"

namespace {

namespace fs = std::filesystem;

const fs::path kSource = SOURCE_DIR;

std::string ContentOf(const fs::path &file) {
  std::ifstream input(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(input), {}};
}

// The generated files in docs/, or in another folder like it.
std::set<fs::path> PagesIn(const fs::path &docs) {
  std::set<fs::path> pages = {"kvrctl-reference.md"};
  for (const char *room : {"man", "completion"}) {
    for (const auto &entry : fs::directory_iterator(docs / room))
      pages.insert(fs::relative(entry.path(), docs));
  }
  return pages;
}

class Reference : public FabricFolder {};

TEST_F(Reference, SaysWhatKvrctlSays) {
  folder.Put("kvrctl.json", Run("h1", "help --json").out);
  const std::string pages = (folder.Path() / "docs").string();
  ASSERT_EQ(
      Process({GENERATOR_PATH, folder.Path().string() + "/kvrctl.json", pages}).Finish().status, 0);
  EXPECT_EQ(PagesIn(kSource / "docs"), PagesIn(pages));
  for (const fs::path &page : PagesIn(pages)) {
    EXPECT_EQ(ContentOf(kSource / "docs" / page), ContentOf(pages / page))
        << "docs/" << page.string() << ": build the target reference_update";
  }
}

TEST_F(Reference, HelpComesInThreeForms) {
  for (const std::string command : {"", "group", "group create"}) {
    EXPECT_EQ(Run("h1", "help " + command).out, Run("h1", command + " --help").out);
    const Json bare = Json::parse(Run("h1", "help --json " + command).out);
    EXPECT_EQ(bare, ResultOf("h1", "help " + command));
  }
  EXPECT_EQ(ResultOf("h1", "help group create")["commands"].size(), 1U);
  EXPECT_EQ(Ask("h1", "help group nonsense", 2)["error"]["name"], "USAGE");
}

TEST_F(Reference, ListsEveryFailureOfItsOwn) {
  std::set<std::string> listed, thrown;
  const Json failures = ResultOf("h1", "help")["failures"];
  for (const Json &failure : failures) listed.insert(failure["name"]);
  const std::regex named(R"re(ExitStatus::\w+,\s*"([A-Z_]+)")re");
  for (const auto &entry : fs::directory_iterator(kSource / "tools/kvrctl")) {
    const std::string code = ContentOf(entry.path());
    for (std::sregex_iterator at(code.begin(), code.end(), named), end; at != end; ++at)
      thrown.insert((*at)[1]);
  }
  EXPECT_EQ(listed, thrown) << "description.cpp tells what each means";
}

TEST_F(Reference, CompletesInBash) {
  Describe(4);
  ASSERT_TRUE(RunAll({"create", "acg add h2 h3", "group create a\\/b --client h2"}));
  const std::string on = "--fabric " + folder.Path().string() + " --host ";
  for (const auto &[words, expected] : std::vector<std::pair<std::string, std::string>>{
           {"switch-access ''", "on off"},
           {"--output = j", "json"},
           {"help backup ''", "add remove list"},
           {"group create x --cl", "--client"},
           {"fabric set --", "--up --down --help --version --fabric --host --output --trace"},
           {on + "h", "h1 h2 h3 h4"},
           {on + "h1 acg add h2 ''", "h2 h3 h4"},
           {on + "h2 group create x --client h1 --server h3 h", "h1 h3"},
           {on + "h1 slots ''", "a\\\\/b"},
           {on + "nobody slots ''", ""}}) {
    const std::string script =
        "source " + (kSource / "docs/completion/kvrctl.bash").string() +
        "; COMP_WORDS=(" KVRCTL_PATH " " + words +
        "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); COMP_LINE=" +
        "${COMP_WORDS[*]}; COMP_LINE=${COMP_LINE// = /=}; _kvrctl; echo -n \"${COMPREPLY[*]}\"";
    EXPECT_EQ(Process({"/bin/bash", "-c", script}).Finish().out, expected) << words;
  }
}

}  // namespace
