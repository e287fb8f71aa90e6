#include "fabric/description.h"

#include "scratch_folder.h"

namespace fabric {
namespace {

const std::string kHost = "[[host]]\nname = \"a\"\n";
const std::string kAdapter = "[[host.adapter]]\nid = \"2000000000000001\"\n";

std::string Repeated(const std::string &text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i)
    all += text;
  return all;
}

TEST(Description, BadFilesAreRefusedWithLineAndReason) {
  const struct {
    std::string text;
    int line;
    std::string reason;
  } cases[] = {
      {"[[host]\n", 1, ""},
      {"\n[discovry]\n", 2, "unknown key 'discovry'"},
      {"discovery = 1", 1, "[discovery]"},
      {"[discovery]\nknown_at_start = 1", 2, "true or false"},
      {"[discovery]\ndelay_ms = -1", 2, "from 0 to 4294967295"},
      {"[discovery]\ndelay_ms = 1.5", 2, "whole number"},
      {"[host]\nname = \"a\"", 1, "[[host]]"},
      {"host = [1]", 1, "[[host]]"},
      {"\n[[host]]\nup = true", 2, "needs a line name"},
      {"[[host]]\nname = 5", 2, "string in quotes"},
      {"[[host]]\nname = \"\"", 2, "1 to 31"},
      {"[[host]]\nname = \"" + std::string(32, 'x') + "\"", 2, "1 to 31"},
      {"[[host]]\nname = \"../a\"", 2, "file name"},
      {"[[host]]\nname = \"b\xC3\xA4r\"", 2, "ASCII"},
      {kHost + "\n" + kHost, 5, "already described"},
      {kHost + "wide_name = \"" + Repeated("\xF0\x9F\x92\xBE", 16) + "\"", 3, "this one 32"},
      {kHost + "wide_name = \"a\\u0000b\"", 3, "zero character"},
      {kHost + "[host.adapter]\nid = \"2000000000000001\"", 3, "[[host.adapter]]"},
      {kHost + "[[host.adapter]]\nup = true", 3, "needs a line id"},
      {kHost + "[[host.adapter]]\nid = \"200000000000000\"", 4, "16 hexadecimal"},
      {kHost + "[[host.adapter]]\nid = \"20000000000000g1\"", 4, "16 hexadecimal"},
      {kHost + "[[host.adapter]]\nid = 2000000000000001", 4, "16 hexadecimal"},
      {kHost + kAdapter + "credential = \"\"", 5, "16 hexadecimal"},
      {kHost + kAdapter + "credental = \"\"", 5, "has id, credential, reach, up"},
      {kHost + kAdapter + "reach = [\n  \"2000000000000009\",\n  \"\" ]", 7, "16 hexadecimal"},
      {kHost + kAdapter + "reach = [" + Repeated("\"2000000000000009\",", 6) + "]", 5, "at most 5"},
      {kHost + kAdapter + "[[host]]\nname = \"b\"\n" + kAdapter, 8, "already described"},
      {"[[fault]]\nhost = \"a\"\nfunction = \"*\"", 2, "no host 'a'"},
      {kHost + "[[fault]]\nhost = \"a\"", 3, "needs a line function"},
      {kHost + "[[fault]]\nhost = \"a\"\nfunction = \"TQ_Read\"", 5, "TQ_Read"},
      {kHost + "[[fault]]\nhost = \"a\"\nadapter = 0\nfunction = \"*\"", 5, "has 0 adapters"},
      {kHost + "[[fault]]\nhost = \"a\"\nfunction = \"*\"\nfirst_call = 0", 6, "from 1"},
  };
  const ScratchFolder folder;
  for (const auto &[text, line, reason] : cases) {
    folder.Put("fabric.toml", text);
    const std::string start =
        (folder.Path() / "fabric.toml").string() + ":" + std::to_string(line) + ": ";
    try {
      LoadDescription(folder.Path());
      ADD_FAILURE() << "accepted:\n" << text;
    } catch (const DescriptionError &error) {
      EXPECT_TRUE(std::string(error.what()).starts_with(start)) << error.what() << "\n" << text;
      EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
    }
  }
  EXPECT_THROW(LoadDescription(folder.Path() / "absent"), DescriptionError);
}

TEST(Description, SurvivesBeingSavedAndLoaded) {
  Description description = MakeDescription(200, 7);
  EXPECT_EQ(description, MakeDescription(200, 7));
  EXPECT_NE(description, MakeDescription(200, 8));
  description.knownAtStart = false;
  description.delayMs = 0xFFFFFFFF;
  description.hosts[1].up = description.hosts[2].adapters[1].up = false;
  description.hosts[3].excluded = true;
  description.hosts[4].name = "it's a host's [name] = #1";
  description.hosts[5].wideName = u"\"\\\n\u007F\u00DF\u20AC\U0001F4BE";
  description.hosts[6].adapters.clear();
  description.hosts[7].adapters[0].credential.reset();
  std::vector<Adapter> &adapters = description.hosts[8].adapters;
  adapters.resize(100);
  for (std::size_t n = 0; n < 100; ++n)
    adapters[n].id[7] = static_cast<std::uint8_t>(n);
  description.faults = {{description.hosts[0].name, {}, "*", 1, {}},
                        {description.hosts[1].name, 1, "TQ_WriteKeyTable", 3, 2}};
  const ScratchFolder folder;
  SaveDescription(folder.Path() / "new" / "fabric", description);
  EXPECT_EQ(LoadDescription(folder.Path() / "new" / "fabric"), description);

  Description unfit = description;
  unfit.hosts[5].wideName = u"\xD800";
  EXPECT_THROW(SaveDescription(folder.Path(), unfit), DescriptionError);
  adapters.emplace_back().id[0] = 1;
  EXPECT_THROW(SaveDescription(folder.Path(), description), DescriptionError);
}

TEST(Description, SetHostUpChangesNothingElse) {
  const struct {
    std::string before;
    bool up;
    std::string after;
  } cases[] = {
      {"# plan\n[[host]]  # first\nup=true # runs\nname = \"a\"\n", false,
       "# plan\n[[host]]  # first\nup=false # runs\nname = \"a\"\n"},
      {"[[host]]\n\tname = 'a' # it\n\t[[host.adapter]]\nid = \"2000000000000001\"\nup = true\n",
       false,
       "[[host]]\n\tname = 'a' # it\n\tup = false\n\t[[host.adapter]]\nid = \"2000000000000001\"\n"
       "up = true\n"},
      {"[[host]]\r\nname = \"a\"\r\nexcluded = true\r\n", false,
       "[[host]]\r\nname = \"a\"\r\nup = false\r\nexcluded = true\r\n"},
      {"[[host]]\nname = \"a\"", false, "[[host]]\nname = \"a\"\nup = false"},
      {"[[host]]\nname = \"b\"\nup = true\n[[host]]\nup = false\nname = \"a\"", true,
       "[[host]]\nname = \"b\"\nup = true\n[[host]]\nup = true\nname = \"a\""},
      {"host = [{wide_name = \"\xC3\xA4\xF0\x9F\x92\xBE\", up = true, name = \"a\"}]", false,
       "host = [{wide_name = \"\xC3\xA4\xF0\x9F\x92\xBE\", up = false, name = \"a\"}]"},
      {"host = [{wide_name = \"\xC3\xA4\", name = \"a\"}, {name = \"b\"}]", false,
       "host = [{wide_name = \"\xC3\xA4\", name = \"a\", up = false}, {name = \"b\"}]"},
      {"[[host]]\nname = \"a\"  # up\n", true, "[[host]]\nname = \"a\"  # up\n"},
  };
  const ScratchFolder folder;
  for (const auto &[before, up, after] : cases) {
    folder.Put("fabric.toml", before);
    SetHostUp(folder.Path(), "a", up);
    EXPECT_EQ(folder.Get("fabric.toml"), after);
  }
  EXPECT_THROW(SetHostUp(folder.Path(), "z", true), std::out_of_range);
  EXPECT_THROW(SetHostUp(folder.Path() / "absent", "a", true), DescriptionError);
}

}  // namespace
}  // namespace fabric
