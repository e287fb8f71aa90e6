// `kvrctl table`: a table of a host or in a file told field by field, and two held against each
// other.
#include <fmt/format.h>

#include "fabric_folder.h"
#include "tools/kvrctl/fingerprint.h"

namespace {

TEST(Fingerprint, IsThePublishedDigest) {
  EXPECT_EQ(kvrctl::Sha256("abc"),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(kvrctl::Sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

class Table : public FabricFolder {
 protected:
  void SetUp() override {
    Describe(4);
    ASSERT_TRUE(RunAll({"create", "acg add h2 h3", "group create süd --client h2 --reserve 1"}));
    image = folder.Get("tables/h2.satable");
  }

  [[nodiscard]] std::string File(const char *name) const { return (folder.Path() / name).string(); }

  std::string image;
};

TEST_F(Table, IsToldFieldByField) {
  const Json dump = ResultOf("h1", "table dump h2");
  EXPECT_EQ(dump["format"], Json({{"id", 257}, {"revision", 1}}));
  EXPECT_EQ(dump["names"].value("ascii", "") + dump["names"].value("wide", ""), "südsüd");
  std::map<std::string, int> marks;
  for (const Json &position : dump["positions"])
    for (const char *mark : {"self", "reserved", "serves", "msc"})
      marks[mark] += position[mark] == true;
  EXPECT_EQ(marks,
            (std::map<std::string, int>{{"self", 1}, {"reserved", 1}, {"serves", 1}, {"msc", 0}}));

  const Json all = ResultOf("h2", "table dump h2 --all --keys");
  ASSERT_EQ(all["positions"].size(), KVR_POSITION_COUNT);
  const auto first = static_cast<unsigned char>(
      image[offsetof(SaTable, entries) + offsetof(SaEntry, key.keyMaterial)]);
  EXPECT_EQ(all["positions"][0]["key"].get<std::string>().substr(0, 2),
            fmt::format("{:02x}", first));
  EXPECT_EQ(all["fingerprint"], kvrctl::Sha256(image).substr(0, 16));
  const Result alone =
      Process({KVRCTL_PATH, "table", "dump", File("tables/h2.satable"), "--output=json"}).Finish();
  EXPECT_EQ(Json::parse(alone.out)["result"]["positions"], dump["positions"])
      << "no network needed";
}

TEST_F(Table, IsHeldAgainstAnother) {
  EXPECT_TRUE(ResultOf("h1", "table diff Wïrt-b " + File("tables/h2.satable"))["equal"]);
  image[offsetof(SaTable, entries) + 5 * sizeof(SaEntry) + offsetof(SaEntry, access.roleFlags)] ^=
      4;
  ++image[offsetof(SaTable, entries) + offsetof(SaEntry, key.keyMaterial)];
  folder.Put("other", image);
  std::string fields;
  const Json all = Ask("h3", "table diff h2 " + File("other") + " --all", 1)["result"];
  for (const Json &one : all["differences"]) fields += one["field"].get<std::string>() + " ";
  EXPECT_EQ(fields, "/fingerprint /keys/fingerprint /positions/0/key /positions/5/child ");
  image[KVR_SA_TABLE_HEADER_SIZE - 1] ^= 1;
  folder.Put("third", image);
  EXPECT_EQ(Run("h3", "table diff " + File("other") + " " + File("third")).status, 1)
      << "a byte that no other field covers";
}

TEST_F(Table, RefusesWhatIsNone) {
  folder.Put("short", "no table");
  EXPECT_EQ(Ask("h1", "table dump " + File("short"), 2)["error"]["name"], "NOT_A_TABLE");
  EXPECT_EQ(Ask("h1", "table dump nobody", 2)["error"]["name"], "NO_SUCH_TABLE");
  EXPECT_EQ(Ask("h1", "table dump h4", 3)["error"]["name"], "NO_TABLE");
  EXPECT_EQ(Process({KVRCTL_PATH, "table", "dump", "h1"}).Finish().status, 5);
}

}  // namespace
