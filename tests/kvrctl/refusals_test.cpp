// What kvrctl refuses: the exit status, the code, and the stream that says so, in both forms.
#include "fabric_folder.h"

namespace {

struct Refusal {
  const char *host;
  std::string command;
  int status;
  std::string error;    // its name in the JSON form
  std::string mention;  // what the sentence must name
};

class Refusals : public FabricFolder {
 protected:
  void ExpectRefused(const Refusal &refusal) const {
    SCOPED_TRACE(refusal.command);
    const Result text = Run(refusal.host, refusal.command);
    EXPECT_EQ(text.status, refusal.status);
    EXPECT_EQ(text.out, "");
    const Json error = Ask(refusal.host, refusal.command, refusal.status)["error"];
    EXPECT_EQ(error.value("name", ""), refusal.error);
    for (const std::string &part :
         {refusal.mention, error.value("message", "none"), error.value("hint", "none")})
      EXPECT_NE(text.err.find(part), std::string::npos) << part << " is not in\n" << text.err;
  }
};

TEST_F(Refusals, NameTheCauseThePlaceAndTheWayOut) {
  Describe(6);
  network.hosts[4].wideName = network.hosts[5].wideName = u"twin";
  Save();
  ASSERT_TRUE(RunAll({"create", "acg add h2 h3 h4", "group create a\\/b --client h2",
                      "group create a\\/b --client h3"}));
  for (const Refusal &refusal : std::vector<Refusal>{
           {"h1", "acg nonsense", 2, "USAGE", "'nonsense'"},
           {"h1", "acg add tree", 2, "NO_SUCH_HOST", "'tree'"},
           {"h1", "acg add twin", 2, "AMBIGUOUS_HOST", "h5 (twin)"},
           {"h1", "acg add h1", 2, "NO_SUCH_HOST", "this host itself"},
           {"h1", "group show a\\/b", 2, "AMBIGUOUS_GROUP", "@h2"},
           {"h1", "group create a/b --client h4", 2, "NO_SUCH_GROUP", "'a'"},
           {"h1", "group create @h2 --client h4", 2, "INVALID_PATH", "new group"},
           {"h1", "fabric new " + folder.Path().string() + " --hosts 3", 2, "FABRIC_EXISTS",
            "already"},
           {"h1", "fabric set h9 --up", 2, "NO_SUCH_HOST", "'h9'"},
           {"h1", "group create c --client h4 --server h9", 2, "NO_SUCH_HOST", "'h9'"},
           {"h1", "switch-access off-and-on", 2, "USAGE", "off-and-on"},
           {"h2", "acg add h6", 3, "KVR_ERR_NOT_MSC", "5000"},
           {"h2", "takeover --yes", 3, "KVR_ERR_NOT_MSC", "`kvrctl backup list`"},
           {"h2", "switch-access off", 3, "KVR_ERR_NOT_MSC", "5000"},
           {"h1", "takeover --yes", 3, "KVR_ERR_NO_NEW_MSC", "`kvrctl handover HOST`"},
           {"h1", "handover --yes h2", 3, "KVR_ERR_NOT_BACKUP_MSC", "`kvrctl backup list`"},
           {"h1", "backup add h2", 3, "KVR_ERR_SYSTEM_IS_CLIENT", "`kvrctl backup add h2`"},
           {"h1", "group rename @h2 " + std::string(32, 'x'), 3, "KVR_ERR_INVALID_NAME", "5015"},
           {"h1", "group set-client @h2 h3", 3, "KVR_ERR_ALREADY_CLIENT", "hosts"},
           {"h1", "group set-client @h2 twin", 2, "AMBIGUOUS_HOST", "h5 (twin)"},
           {"h1", "group remove-server @h2 h4", 3, "KVR_ERR_NOT_ASG_SERVER", "Nothing"},
           {"h6", "renew-keys", 3, "KVR_ERR_NOT_SECURED", "5004"},
           {"h6", "switch-access on", 3, "KVR_ERR_NOT_SECURED", "5004"},
           {"h6", "destroy --yes", 3, "KVR_ERR_NOT_SECURED", "5004"},
           {"nobody", "tree", 5, "KVR_ERR_NO_LOCAL_ADAPTER", "network: KVR_HOST is 'nobody'"},
       })
    ExpectRefused(refusal);
#if !defined(_WIN32)  // where a command line is UTF-16
  ExpectRefused({"h1", "group create \xff --client h4", 2, "INVALID_PATH", "UTF-8"});
#endif

  folder.Put("fabric.toml", "[discovery]\n[[host]]\nname = \"h1\"\nadaptors = 2\n");
  ExpectRefused({"h1", "status", 5, "KVR_ERR_NO_LOCAL_ADAPTER", "fabric.toml:4: "});
  ExpectRefused({"h1", "fabric show", 5, "NO_FABRIC", "fabric.toml:4: "});
  std::filesystem::remove(folder.Path() / "fabric.toml");
  ExpectRefused({"h1", "tree", 5, "KVR_ERR_NO_LOCAL_ADAPTER", "no fabric.toml"});
}

}  // namespace
