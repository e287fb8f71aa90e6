// Every command in both its forms and, where it changes something, as a dry run: the same facts in
// text and JSON, the same answer dry and real, and no byte written dry.
#include <regex>
#include <set>

#include "fabric_folder.h"

namespace {

namespace fs = std::filesystem;

struct Line {
  std::string host, command;
  int status = 0;
};

using Files = std::map<std::string, std::string>;

class Forms : public FabricFolder {
 protected:
  // h1 is the MSC, h7 its backup; sales (client h2, servers h3 h4) has the child north (client h3,
  // server h4); h5 is a plain member, h6 is outside, h8 is down.
  void SetUp() override {
    Describe(8);
    network.hosts[7].up = false;
    Save();
    ASSERT_TRUE(RunAll({"create"}));
    SpoilKey("h1");
    ASSERT_TRUE(
        RunAll({"acg add h2 h3 h4 h5", "group create sales --client h2 --reserve 5 --server h3 h4",
                "group create sales/north --client h3 --server h4", "backup add h7"}));
    folder.Put("day.batch", "acg add h6\n# a comment\nkvrctl group delete 'sales/north'\n");
    before = Content();
  }

  [[nodiscard]] Files Content() const {
    Files files;
    for (const auto &entry : fs::recursive_directory_iterator(folder.Path())) {
      const std::string name = fs::relative(entry.path(), folder.Path()).generic_string();
      if (entry.is_regular_file() && !name.ends_with(".lock")) files[name] = folder.Get(name);
    }
    return files;
  }

  void Restore() const {
    for (const auto &[name, content] : Content())
      if (!before.contains(name)) fs::remove(folder.Path() / name);
    for (const auto &[name, content] : before) folder.Put(name, content);
  }

  // The hosts whose tables differ from those of before.
  [[nodiscard]] std::set<std::string> Changed() const {
    Files now = Content(), then = before;
    std::set<std::string> hosts;
    for (const Files &files : {now, then})
      for (const auto &[name, content] : files)
        if (name.ends_with(".satable") && now[name] != then[name])
          hosts.insert(fs::path(name).stem().string());
    return hosts;
  }

  // What the command answers in both forms, from the same tables. Slots and keys are drawn from the
  // second, so that two runs may differ at its turn.
  void ExpectSameFacts(const Line &line) {
    bool same = false;
    for (int attempt = 0; attempt < 3 && !same; ++attempt) {
      const Result text = Run(line.host, line.command);
      Restore();
      real = Ask(line.host, line.command, line.status);
      EXPECT_EQ(text.status, line.status) << text.err;
      missing = "";
      const std::string all =
          std::regex_replace(Flat(text.out + text.err), std::regex("UTF-16"), "");
      Seek(all, real.value("result", Json()));
      Seek(all, real.value("notes", Json()));
      Json error = real.value("error", Json::object());
      if (error.value("failed_hosts", Json()).size() < 2) error.erase("failed_hosts");
      error.erase("name");
      Seek(all, error);
      const std::regex word("\\b(h[0-9]|[0-9]+)\\b");
      const std::string json = Flat(real.dump());
      for (std::sregex_iterator at(all.begin(), all.end(), word), end; at != end; ++at)
        if (json.find(at->str()) == std::string::npos) missing += at->str() + " in JSON; ";
      same = missing.empty();
      changed = Changed();
      Restore();
    }
    EXPECT_TRUE(same) << missing << '\n' << real;
  }

  // Blanks as one, for what a column or a line parts.
  static std::string Flat(const std::string &text) {
    return std::regex_replace(text, std::regex("\\s+"), " ");
  }

  // Notes the facts that are not in the text; the tree draws as nesting what else is a path.
  void Seek(const std::string &text, const Json &facts) {
    if (facts.is_structured()) {
      for (const auto &[key, value] : facts.items())
        if (!(key == "path" && facts.contains("children")) && key != "command") Seek(text, value);
    } else if (facts.is_string() || facts.is_number()) {
      const std::string fact = Flat(facts.is_string() ? facts.get<std::string>() : facts.dump());
      if (text.find(fact) == std::string::npos) missing += fact + " in text; ";
    }
  }

  // The same answer as the real run's, the hosts told that it changed, and no change. Any discovery
  // on h1 writes to the backup h7, whether that changes anything or not.
  void ExpectDry(const Line &line) {
    const Json dry = Ask(line.host, line.command + " --dry-run", line.status);
    EXPECT_EQ(Content(), before) << line.command;
    const Json result = dry.value("result", Json::object());
    if (line.command != "create") {
      EXPECT_EQ(result.value("result", Json()), real.value("result", Json()));
    }
    std::set<std::string> told;
    for (const Json &write : result.value("would_write", Json::array())) told.insert(write["host"]);
    told.insert("h7");
    changed.insert("h7");
    EXPECT_EQ(told, changed) << dry;
  }

  Files before;
  Json real;
  std::set<std::string> changed;
  std::string missing;
};

// Each line a host, the exit status and the command.
constexpr char kReaders[] = R"(h1 0 status
h5 0 status
h1 0 hosts
h7 0 hosts
h1 0 tree
h1 0 slots
h2 0 slots north
h1 0 group list
h1 0 group show sales
h1 0 group available sales/north
h1 0 backup list
h7 0 backup list
h1 0 fabric show
h1 0 fabric set h6 --down
h1 1 doctor
h5 1 doctor -x
h1 0 table dump h2 --all
h1 1 table diff h2 h3
h1 0 can-remove h5
h1 1 can-remove h3
h1 0 can-handover h7
h5 2 can-handover h8
h7 1 can-handover h2
h1 2 fabric set h9 --up
h1 2 acg nonsense
h1 2 group show nowhere
h9 5 status
h1 2 batch nowhere)";
constexpr char kChanges[] = R"(h6 0 create
h1 3 create
h1 0 destroy --yes
h1 0 acg add h6
h1 4 acg add h6 h8 h4
h1 0 acg remove h5 --yes
h1 3 acg remove h2 h3 --yes
h1 0 backup add h6
h1 0 backup remove h7
h1 0 renew-keys
h1 0 switch-access on
h1 0 switch-access off
h1 0 sync
h1 0 handover h7 --yes
h7 0 takeover --yes
h1 3 takeover --yes
h1 0 group create x --client h5 --reserve 245 --server h4 h3
h1 4 group add-server sales h5 h3
h1 0 group remove-server sales h3 h4
h1 0 group rename sales süd
h1 0 group set-reserve sales 9
h1 0 group set-client sales h5
h1 3 group delete sales --yes
h1 0 group delete sales/north --yes
)";

std::vector<Line> Lines(const std::string &text) {
  std::vector<Line> lines;
  std::istringstream stream(text);
  for (Line line; stream >> line.host >> line.status && std::getline(stream, line.command);)
    lines.push_back(line);
  return lines;
}

TEST_F(Forms, SayTheSameFactsAndADryRunWritesNothing) {
  const std::string path = folder.Path().generic_string();
  const auto readers = Lines(kReaders + ("\nh1 0 fabric new " + path + "/lab --hosts 3"));
  for (const Line &line : readers) {
    SCOPED_TRACE(line.command);
    ExpectSameFacts(line);
    EXPECT_EQ(changed, std::set<std::string>());
  }
  const auto changes = Lines(kChanges + ("h1 0 batch --yes " + path + "/day.batch"));
  for (const Line &line : changes) {
    SCOPED_TRACE(line.command);
    ExpectSameFacts(line);
    ExpectDry(line);
  }
  const Json help = ResultOf("h1", "help");
  for (const Json &command : help["commands"]) {
    std::string words;
    for (const Json &word : command["words"]) words += " " + word.get<std::string>();
    const auto begins = [&](const Line &line) { return line.command.starts_with(words); };
    const bool changing = command["effect"] != "reads";
    EXPECT_TRUE(std::ranges::any_of(changing ? changes : readers, begins) || words == " help")
        << "no line for" << words;
  }
}

}  // namespace
