// One host's tables: the adapter loop, the local host's cached table, and the name blocks.
#include <cstring>

#include "support/world.h"
#include "tables/host_names.h"
#include "tables/host_tables.h"

using namespace kvrtest;

// Each adapter lets only calls with its own credential through, the second one those without.
TEST(AdapterLoop, EndsAtTheFirstAdapterThatAnswers) {
  const std::pair<std::uint32_t, const char *> cases[] = {
      // with one adapter more down in each
      {0, "{0}:A"},
      {0, "{0}:A! {0}:A1"},
      {0, "{0}:A! {0}:A1! {0}:A2"},
      {KVR_ERR_REMOTE_ACCESS_FAILED, "{0}:A! {0}:A1! {0}:A2!"}};
  SaTable image = MakeImage("A 7=1");
  AccessControlTable table = {};
  const std::pair<const char *, std::function<std::uint32_t(KVR_SYSTEM)>> accesses[] = {
      {"ReadSaTableHeader", [&](auto a) { return kvr::ReadSaHeader(a, image.header); }},
      {"WriteSaTableHeader", [&](auto a) { return kvr::WriteSaHeader(a, image.header); }},
      {"ReadAccessControlTable", [&](auto a) { return kvr::ReadAccessTable(a, table); }},
      {"WriteAccessControlTable", [&](auto a) { return kvr::WriteAccessTable(a, table); }},
      {"RemoveSaTable", [](auto a) { return kvr::RemoveHostSaTable(*a); }},
      {"WriteSaTable", [&](auto a) { return kvr::WriteHostSaTable(*a, image); }}};
  const World world({"M", "A 7=1"}, 3);
  world.As("M");
  for (std::uint32_t down = 0; down <= 3; ++down) {
    if (down > 0) world->SetAdapterUp("A", down - 1, false);
    for (const auto &[function, access] : accesses) {
      EXPECT_EQ(access(System("A")), cases[down].first) << function;
      EXPECT_EQ(world.Calls(), fmt::format(fmt::runtime(cases[down].second), function));
    }
  }
  System("A")->discovered.adapterCount = 0;
  EXPECT_EQ(kvr::ReadAccessTable(System("A"), table), KVR_ERR_REMOTE_ACCESS_FAILED);
  EXPECT_EQ(world.Calls(), "");
}

TEST(LocalTable, KeepsNewContentThatCouldNotBeStored) {
  const World world({"M 5=3", "A"});
  world.As("M");
  const AccessControlTable written = {{{1, 2, 3, 4}, {5, 6, 7, 8}}};
  AccessControlTable read = {};
  world->FailCall(1);
  EXPECT_EQ(kvr::WriteAccessTable(kvr::LOCAL_SYSTEM, written), KVR_ERR_LOCAL_WRITE_FAILED);
  EXPECT_EQ(kvr::ReadAccessTable(kvr::LOCAL_SYSTEM, read), KVR_OK);
  EXPECT_EQ(std::memcmp(&written, &read, sizeof read), 0);
  EXPECT_TRUE(Same(*world->Image("M"), MakeImage("M 5=3")));
  EXPECT_EQ(kvr::WriteHostNameA(kvr::LOCAL_SYSTEM, "abc"), KVR_OK);
  EXPECT_EQ(world.Calls(), "WriteSaTable:M! WriteSaTable:M");
  EXPECT_TRUE(Same(*world->Image("M"), kvr::g_localSaTable));
}

TEST(HostNames, AreStoredInBothFormsWithTheBytesOfEachWordReversed) {
  using namespace std::string_literals;
  const std::string digits = "0123456789012345678901234567890";
  using WideText = std::basic_string<KVR_WCHAR>;
  // clang-format off
  const std::tuple<std::string, WideText, std::string, WideText> cases[] = {
      // given in 8 bits, or else in 16; the 8-bit block but for zeros, the 16-bit name as read back
      {digits, WIDE(""), "3210765410985432987632107654\0"s + "098", {digits.begin(), digits.end()}},
      {"\xE9t\xFF", WIDE(""), "\0\xFFt\xE9"s, WIDE("\u00E9t\u00FF")},
      {"", WIDE("\u00E9t\u0416x"), "\0\0t\xE9"s, WIDE("\u00E9t\u0416x")},
      {"", WIDE("\u0416"), "", WIDE("\u0416")}};
  // clang-format on
  const World world({"M", "A 7=1 s9"});
  world.As("M");
  KVR_SYSTEM a = System("A");
  for (const auto &[given, wideGiven, stored, wide] : cases) {
    SaTable expected = MakeImage("Another 7=1 s9");
    expected.header.reserved128[95] = expected.header.configId[0] = 77;
    world->PlantImage("A", expected);
    EXPECT_EQ(given.empty() ? kvr::WriteHostNameW(a, wideGiven.c_str())
                            : kvr::WriteHostNameA(a, given.c_str()),
              KVR_OK);
    SaTable actual = *world->Image("A");
    std::memcpy(expected.header.wideName, actual.header.wideName, 64);
    std::memset(expected.header.asciiName, 0, 32);
    std::memcpy(expected.header.asciiName, stored.data(), stored.size());
    EXPECT_TRUE(Same(actual, expected)) << stored;
    EXPECT_EQ(kvr::ClearHostName(a), KVR_OK);
    char ascii[KVR_NAME_CAPACITY];
    KVR_WCHAR units[KVR_NAME_CAPACITY];
    EXPECT_EQ(kvr::ReadHostName(a, &ascii, &units), KVR_OK);
    EXPECT_STREQ(ascii, "");
    EXPECT_EQ(units, wide);
  }
  world.Calls();
  world->FailCall(1);
  EXPECT_EQ(kvr::WriteHostNameA(a, "x"), KVR_ERR_REMOTE_ACCESS_FAILED);
  EXPECT_EQ(world.Calls(), "ReadSaTableHeader:A!") << "nothing is written over what is unknown";
}
