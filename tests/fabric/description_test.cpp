#include "fabric/description.h"

#include <tuple>

#include "scratch_folder.h"

using namespace fabric;

const std::string kHost = "[[host]]\nname = \"a\"\n";
// A host whose name makes the same file as that one's, and a name that makes none.
#if defined(_WIN32)
const std::string kTwin = "[[host]]\nname = \"A\"\n", kNoFile = "Aux .x";
#else
const std::string kTwin = kHost, kNoFile = "a/x";
#endif
const std::string kAdapter = "[[host.adapter]]\nid = \"2000000000000001\"\n";

TEST(Description, BadFilesAreRefusedWithLineAndReason) {
  const std::tuple<std::string, int, std::string> cases[] = {
      // text, line, reason
      {"[[host]\n", 1, ""},
      {"\n[discovry]\n", 2, "unknown key 'discovry'"},
      {"[discovery]\ndelay_ms = -1", 2, "from 0 to 4294967295"},
      {"host = [1]", 1, "[[host]]"},
      {"\n[[host]]\nup = true", 2, "needs a line name"},
      {"[[host]]\nname = \"" + std::string(32, 'x') + "\"", 2, "1 to 31"},
      {"[[host]]\nname = \"../a\"", 2, "file name"},
      {kHost + "\n" + kTwin, 5, "already described"},
      {"[[host]]\nname = \"" + kNoFile + "\"", 2, "file"},
      {kHost + "wide_name = \"" + std::string(30, 'x') + "\xF0\x9F\x92\xBE\"", 3, "this one 32"},
      {kHost + "wide_name = \"a\\u0000b\"", 3, "zero character"},
      {kHost + "[[host.adapter]]\nid = \"20000000000000g1\"", 4, "16 hexadecimal"},
      {kHost + kAdapter + "credental = \"\"", 5, "has id, credential, reach, up"},
      {kHost + kAdapter + "reach = [\n  \"2000000000000009\",\n  \"\" ]", 7, "16 hexadecimal"},
      {kHost + kAdapter + "reach = [1, 2, 3, 4, 5, 6]", 5, "at most 5"},
      {kHost + kAdapter + "[[host]]\nname = \"b\"\n" + kAdapter, 8, "already described"},
      {"[[fault]]\nhost = \"a\"\nfunction = \"*\"", 2, "no host 'a'"},
      {kHost + "[[fault]]\nhost = \"a\"\nfunction = \"TQ_Read\"", 5, "TQ_Read"},
      {kHost + "[[fault]]\nhost = \"a\"\nadapter = 0\nfunction = \"*\"", 5, "has 0 adapters"},
      {kHost + "[[fault]]\nhost = \"a\"\nfunction = \"*\"\nfirst_call = 0", 6, "from 1"},
  };
  const ScratchFolder folder;
  for (const auto &[text, line, reason] : cases) {
    folder.Put("fabric.toml", text);
    const std::string place = "fabric.toml:" + std::to_string(line) + ": ";
    try {
      LoadDescription(folder.Path());
      ADD_FAILURE() << "accepted:\n" << text;
    } catch (const DescriptionError &error) {
      const std::string said = error.what();
      EXPECT_TRUE(said.find(place) != said.npos && said.find(reason) != said.npos) << said;
    }
  }
}

TEST(Description, SurvivesBeingSavedAndLoaded) {
  Description description = MakeDescription(200, 7);
  description.knownAtStart = false;
  description.delayMs = 0xFFFFFFFF;
  description.hosts[1].up = description.hosts[2].adapters[1].up = false;
  description.hosts[3].excluded = true;
  description.hosts[4].name = "it's a host's [name] = #1";
  description.hosts[5].wideName = u"\"\\\n\u007F\u00DF\u20AC\U0001F4BE";
  description.hosts[7].adapters[0].credential.reset();
  std::vector<Adapter> &adapters = description.hosts[8].adapters;
  for (std::uint8_t n = 0; adapters.size() < 100; ++n) adapters.push_back({{n}, {}, {}, true});
  description.faults = {{description.hosts[0].name, {}, "*", 1, {}},
                        {description.hosts[1].name, 1, "TQ_WriteKeyTable", 3, 2}};
  const ScratchFolder folder;
  SaveDescription(folder.Path() / "new" / "fabric", description);
  EXPECT_EQ(LoadDescription(folder.Path() / "new" / "fabric"), description);

  adapters.push_back({{0xFF}, {}, {}, true});
  EXPECT_THROW(SaveDescription(folder.Path(), description), DescriptionError);
}

// A text in which @ stands where the edit happens, and what stands there before and after.
TEST(Description, SetHostUpChangesNothingElse) {
  const std::string cases[][3] = {
      {"# plan\n[[host]]\nup = true\nname=\"b\"\n[[host]] # it\nup=@ # runs\nname = \"a\"\n",
       "true", "false"},
      {"[[host]]\n\tname = 'a' # it@\n\t[[host.adapter]]\nid = \"2000000000000001\"\nup = true\n",
       "", "\n\tup = false"},
      {"[[host]]\r\nname = \"a\"@\r\nexcluded = true\r\n", "", "\r\nup = false"},
      {"[[host]]\nname = \"a\"@", "", "\nup = false"},
      {"host = [{wide_name = \"\xC3\xA4\xF0\x9F\x92\xBE\", up = @, name = \"a\"}]", "true",
       "false"},
      {"host = [{wide_name = \"\xC3\xA4\", name = \"a\"@}, {name = \"b\"}]", "", ", up = false"},
  };
  const ScratchFolder folder;
  for (const auto &[text, before, after] : cases) {
    const auto with = [&, at = text.find('@')](const std::string &part) {
      return std::string(text).replace(at, 1, part);
    };
    folder.Put("fabric.toml", with(before));
    SetHostUp(folder.Path(), "a", false);
    EXPECT_EQ(folder.Get("fabric.toml"), with(after));
    SetHostUp(folder.Path(), "a", true);
    EXPECT_EQ(folder.Get("fabric.toml").find("false"), std::string::npos);
  }
}
