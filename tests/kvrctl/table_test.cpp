// `kvrctl table`: a table of a host or in a file told field by field, and two held against each
// other.
#include "fabric_folder.h"
#include "tools/kvrctl/fingerprint.h"

namespace {

class Table : public FabricFolder {
 protected:
  void SetUp() override {
    Describe(4);
    ASSERT_TRUE(RunAll({"create", "acg add h2 h3", "group create süd --client h2 --reserve 1"}));
    file = (folder.Path() / "tables" / "h2.satable").string();
  }

  std::string file;
};

TEST(Fingerprint, IsThePublishedDigest) {
  EXPECT_EQ(kvrctl::Sha256("abc"),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(kvrctl::Sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST_F(Table, IsToldFieldByField) {
  const Json dump = ResultOf("h1", "table dump h2");
  EXPECT_EQ(dump["format"], Json({{"id", 257}, {"revision", 1}}));
  EXPECT_EQ(dump["names"],
            Json({{"ascii", "süd"}, {"wide", "süd"}, {"ascii_ended", true}, {"wide_ended", true}}));
  ASSERT_EQ(dump["positions"].size(), 3u) << "its own slot, its reserve, and that of the MSC";
  int own = 0, reserve = 0, served = 0;
  for (const Json &position : dump["positions"]) {
    own += position["self"] == true;
    reserve += position["reserved"] == true;
    served += position["serves"] == true;
    EXPECT_FALSE(position.contains("key"));
  }
  EXPECT_EQ(std::vector({own, reserve, served}), std::vector({1, 1, 1}));

  const std::string image = folder.Get("tables/h2.satable");
  const Json all = ResultOf("h2", "table dump h2 --all --keys");
  ASSERT_EQ(all["positions"].size(), KVR_POSITION_COUNT);
  std::string digits;
  for (const char byte :
       image.substr(offsetof(SaTable, entries) + offsetof(SaEntry, key) + 8, 128)) {
    digits += "0123456789abcdef"[static_cast<unsigned char>(byte) >> 4];
    digits += "0123456789abcdef"[byte & 15];
  }
  EXPECT_EQ(all["positions"][0]["key"], digits);
  EXPECT_EQ(all["fingerprint"], kvrctl::Sha256(image).substr(0, 16));
  const Json bytes =
      Json::parse(Process({KVRCTL_PATH, "table", "dump", file, "--output", "json"}).Finish().out);
  EXPECT_EQ(bytes["result"]["positions"], dump["positions"]) << "a file needs no network";
  EXPECT_EQ(ResultOf("h1", "table dump Wïrt-b")["fingerprint"], dump["fingerprint"]);
}

TEST_F(Table, IsHeldAgainstAnother) {
  EXPECT_TRUE(ResultOf("h1", "table diff h2 " + file)["equal"]);
  std::string image = folder.Get("tables/h2.satable");
  image[offsetof(SaTable, entries) + 5 * sizeof(SaEntry) + offsetof(SaEntry, access.roleFlags)] ^=
      4;
  ++image[offsetof(SaTable, entries) + offsetof(SaEntry, key.keyMaterial)];
  folder.Put("other", image);
  const std::string diff = "table diff h2 " + (folder.Path() / "other").string();
  std::vector<std::string> fields;
  const Json differences = Ask("h3", diff + " --all", 1)["result"]["differences"];
  for (const Json &one : differences)
    fields.push_back(one["field"]);
  EXPECT_EQ(fields, (std::vector<std::string>{"/fingerprint", "/keys/fingerprint",
                                              "/positions/0/key", "/positions/5/child"}));
  EXPECT_EQ(Ask("h3", diff, 1)["result"]["differences"].size(), 3u);
  image[KVR_SA_TABLE_HEADER_SIZE - 1] ^= 1;  // a byte that no other field covers
  folder.Put("third", image);
  EXPECT_EQ(Run("h3", diff + "/../third").status, 2) << "no such path";
  EXPECT_EQ(Ask("h3",
                "table diff " + (folder.Path() / "other").string() + " " +
                    (folder.Path() / "third").string(),
                1)["result"]["differences"]
                .size(),
            1u);
}

TEST_F(Table, RefusesWhatIsNone) {
  folder.Put("short", "no table");
  EXPECT_EQ(Ask("h1", "table dump " + (folder.Path() / "short").string(), 2)["error"]["name"],
            "NOT_A_TABLE");
  EXPECT_EQ(Ask("h1", "table dump nobody", 2)["error"]["name"], "NO_SUCH_TABLE");
  EXPECT_EQ(Ask("h1", "table dump h4", 3)["error"]["name"], "NO_TABLE");
  EXPECT_EQ(Process({KVRCTL_PATH, "table", "dump", "h1"}).Finish().status, 5);
}

}  // namespace
