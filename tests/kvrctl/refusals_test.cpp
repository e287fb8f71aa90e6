// What kvrctl refuses: the exit status, the code, and the stream that says so, in both forms.
#include <fstream>

#include "fabric_folder.h"

namespace {

struct Refusal {
  const char *host;
  Words words;
  int status;
  const char *error;    // its name in the JSON form
  const char *mention;  // what the sentence must name
};

class Refusals : public FabricFolder {
 protected:
  void ExpectRefused(const Refusal &refusal) const {
    SCOPED_TRACE(testing::PrintToString(refusal.words));
    const Result text = Run(refusal.host, refusal.words);
    EXPECT_EQ(text.status, refusal.status);
    EXPECT_EQ(text.out, "");
    EXPECT_NE(text.err.find(refusal.mention), std::string::npos) << text.err;

    const Json answer = Ask(refusal.host, refusal.words, refusal.status);
    EXPECT_FALSE(answer.value("ok", true));
    const Json error = answer.value("error", Json::object());
    EXPECT_EQ(error.value("name", ""), refusal.error);
    const std::string message = error.value("message", "");
    EXPECT_NE(message.find(refusal.mention), std::string::npos) << message;
    EXPECT_NE(text.err.find(message), std::string::npos) << text.err;
    EXPECT_NE(text.err.find(error.value("hint", "none")), std::string::npos) << text.err;
  }

  void WriteDescription(const std::string &text) const {
    std::ofstream(folder / "fabric.toml", std::ios::trunc) << text;
  }
};

TEST_F(Refusals, NameTheCauseTheCodeAndTheWayOut) {
  Describe(6);
  network.hosts[4].wideName = u"h6";
  fabric::SaveDescription(folder, network);
  ASSERT_EQ(Run("h1", {"create"}).status, 0);
  ASSERT_EQ(Run("h1", {"acg", "add", "h2", "h3", "h4"}).status, 0);
  ASSERT_EQ(Run("h1", {"group", "create", "a/b", "--client", "h2"}).status, 2);
  ASSERT_EQ(Run("h1", {"group", "create", "a\\/b", "--client", "h2"}).status, 0);
  ASSERT_EQ(Run("h1", {"group", "create", "a\\/b", "--client", "h3"}).status, 0);
  const std::string longName(32, 'n');
  const std::vector<Refusal> refusals = {
      {"h1", {}, 2, "USAGE", "subcommand"},
      {"h1", {"acg", "add"}, 2, "USAGE", "HOST"},
      {"h1", {"acg", "nonsense"}, 2, "USAGE", "'nonsense'"},
      {"h1", {"group", "create", "x", "--client", "h4", "--reserve", "-1"}, 2, "USAGE", "reserve"},
      {"h1", {"acg", "add", "tree"}, 2, "NO_SUCH_HOST", "'tree'"},
      {"h1", {"acg", "add", "h6"}, 2, "AMBIGUOUS_HOST", "h5 (h6)"},
      {"h1", {"acg", "add", "h1"}, 2, "NO_SUCH_HOST", "this host itself"},
      {"h1", {"group", "show", "nowhere"}, 2, "NO_SUCH_GROUP", "'nowhere'"},
      {"h1", {"group", "show", "a\\/b"}, 2, "AMBIGUOUS_GROUP", "@h2"},
      {"h1", {"group", "show", "a/"}, 2, "INVALID_PATH", "empty name"},
      {"h1", {"group", "create", "@h2", "--client", "h4"}, 2, "INVALID_PATH", "new group"},
      {"h1", {"group", "create", "\xff", "--client", "h4"}, 2, "INVALID_PATH", "UTF-8"},
      {"h1", {"fabric", "new", folder.string(), "--hosts", "3"}, 2, "FABRIC_EXISTS", "already"},
      {"h1", {"fabric", "set", "h9", "--up"}, 2, "NO_SUCH_HOST", "'h9'"},
      {"h1", {"create"}, 3, "KVR_ERR_ALREADY_MSC", "5003"},
      {"h2", {"create"}, 3, "KVR_ERR_NOT_MSC", "5000"},
      {"h2", {"acg", "add", "h6"}, 3, "KVR_ERR_NOT_MSC", "5000"},
      {"h6", {"destroy"}, 3, "KVR_ERR_NOT_SECURED", "5004"},
      {"h6", {"acg", "add", "h2"}, 3, "KVR_ERR_NOT_SECURED", "5004"},
      {"h1", {"acg", "add", "h2"}, 3, "KVR_ERR_ALREADY_IN_ACG", "5009"},
      {"h1", {"acg", "remove", "h2"}, 3, "KVR_ERR_SYSTEM_IS_CLIENT", "5022"},
      {"h1", {"group", "create", longName, "--client", "h4"}, 3, "KVR_ERR_INVALID_NAME", "5015"},
      {"h1", {"group", "create", "x", "--client", "h2"}, 3, "KVR_ERR_ALREADY_CLIENT", "5016"},
      {"h1", {"group", "create", "@h2/x", "--client", "h4"}, 3, "KVR_ERR_INVALID_HANDLE", "5007"},
      {"nobody", {"tree"}, 5, "KVR_ERR_NO_LOCAL_ADAPTER", "'nobody'"},
  };
  for (const Refusal &refusal : refusals)
    ExpectRefused(refusal);
}

TEST_F(Refusals, NameFileAndLineOfADescription) {
  Describe(2);
  WriteDescription("[discovery]\n[[host]]\nname = \"h1\"\nadaptors = 2\n");
  ExpectRefused({"h1", {"status"}, 5, "KVR_ERR_NO_LOCAL_ADAPTER", "fabric.toml:4: "});
  ExpectRefused({"h1", {"fabric", "show"}, 5, "NO_FABRIC", "fabric.toml:4: "});
  WriteDescription("[[host]\n");
  ExpectRefused({"h1", {"fabric", "set", "h1", "--up"}, 5, "NO_FABRIC", "fabric.toml:1: "});
  std::filesystem::remove(folder / "fabric.toml");
  ExpectRefused({"h1", {"tree"}, 5, "KVR_ERR_NO_LOCAL_ADAPTER", "no fabric.toml"});
}

}  // namespace
