// Groups: the slots that a new group takes, the order they stand in, and searches.
#include "support/trial.h"

using namespace kvrtest;

// The client of slot 11 is missing, so D's group hangs below an Offline Client.
const std::vector<std::string> kTables = {
    "M 5=3 10=4 11=8 12=8 13=4", "A 10=1 11=14 12=18 s5", "D 12=1 s5", "E 13=1 s5", "S s5", "U"};

TEST(CreateAsg, TakesTheLowestFreeSlotsOfItsPool) {
  const std::string top = "M 0=3 9=4 244=8 s1",
                    five = "A 9=1 10=10 11=10 12=10 13=10 14=10 246=10 s0", one = "A 9=1 20=10 s0";
  const std::string allFive = "A 10=14 11=18 12=18 13=18 14=18 S 10=1 11=10 12=10 13=10 14=10";
  const struct {
    std::string host, pool, parent;  // acting host, pool host's table, client of the parent
    std::uint32_t free, used, asked, granted;
    std::string news;  // unless empty
  } cases[] = {
      {"M", top, "", 242, 3, 2, 2, "M 2=4 3=8 4=8 S 2=1 3=10 4=10"},
      {"M", top, "", 242, 3, 300, 241, ""},
      {"A", "A 9=1 10=10 11=14 12=18 13=10 s0", "", 2, 2, 1, 1, "A 10=14 13=18 S 10=1 13=10"},
      {"M", five, "A", 5, 0, 0, 0, "A 10=14 S 10=1"},
      {"M", five, "A", 5, 0, 4, 4, allFive},
      {"M", five, "A", 5, 0, 5, 4, allFive},
      {"M", five, "A", 5, 0, 10, 4, allFive},
      {"M", one, "A", 1, 0, 0, 0, "A 20=14 S 20=1"},
      {"M", one, "A", 1, 0, 1, 0, "A 20=14 S 20=1"}};
  for (const auto &[host, pool, parent, free, used, asked, granted, news] : cases) {
    SCOPED_TRACE(fmt::format("{} {}", pool, asked));
    const World world({"M 0=3 9=4", "A 9=1 s0", parent.empty() ? "S s0" : "S s0 s9"});
    world.Plant(pool);
    world.As(host);
    const fabric::ImageSet before = world->Images();
    KVR_GROUP group = Group(parent), made = nullptr;
    EXPECT_EQ(KVR_GetFreeIndexCount(group), free);
    EXPECT_EQ(KVR_GetUsedIndexCount(group), used);
    std::uint32_t count = asked;
    EXPECT_EQ(KVR_CreateAsgW(group, WIDE("s"), System("S"), &count, &made),
              granted < asked ? KVR_ERR_RESERVED_COUNT_REDUCED : KVR_OK);
    EXPECT_EQ(count, granted);
    EXPECT_EQ(KVR_GetFreeIndexCount(group), free - granted - 1);
    EXPECT_EQ(KVR_GetUsedIndexCount(group), used + granted + 1);
    EXPECT_TRUE(news.empty() || News(world, before) == news) << News(world, before);
    // Only the form of the name that was given is in the model until the tables are read again.
    char name[2] = {'?', '?'};
    EXPECT_EQ(KVR_GetAsgNameA(made, name, 2), KVR_ERR_NO_NAME);
    EXPECT_EQ(name[0], 0);
    const std::string model = Model();
    world.As(host);
    EXPECT_EQ(Model(), model);
    EXPECT_EQ(KVR_GetAsgNameA(Group("S"), name, 2), KVR_OK);
  }
}

TEST(GroupQueries, LookBelowAGroupAndKnowAnOfflineClient) {
  const World world(kTables);
  world.Plant("S s5 s12");
  world.As("M");
  ASSERT_EQ(Tree(), "A10(?(D12{S})) E13");
  const std::tuple<const char *, std::uint32_t, std::uint32_t, std::uint32_t> cases[] = {
      // group, whether S serves below it, whether D is a client below it, its children
      {"", 1, 1, 2},
      {"A", 1, 1, 1},
      {"?", 1, 1, 1},
      {"D", 0, 0, 0},
      {"E", 0, 0, 0}};
  for (const auto &[group, servesBelow, isClientBelow, children] : cases) {
    EXPECT_EQ(KVR_IsServerInChildAsg(Group(group), System("S")), servesBelow) << group;
    EXPECT_EQ(KVR_IsClientInChildAsg(Group(group), System("D")), isClientBelow) << group;
    EXPECT_EQ(KVR_GetChildAsgCount(Group(group)), children) << group;
  }
  const auto below = [](KVR_GROUP parent) {
    return [=](auto *groups, auto *count) { return KVR_GetChildAsgs(parent, groups, count); };
  };
  ExpectFirstThatFit<KVR_GROUP>({Group("A"), Group("E")}, KVR_ERR_MORE_GROUPS, KVR_GetAsgs);
  ExpectFirstThatFit<KVR_GROUP>({Group("A"), Group("E")}, KVR_ERR_MORE_GROUPS, below(nullptr));
  ExpectFirstThatFit<KVR_GROUP>({Group("?")}, KVR_ERR_MORE_GROUPS, below(Group("A")));
  KVR_GROUP offline = Group("?");
  char name[15] = {};
  std::uint32_t count = 5;
  EXPECT_EQ(KVR_GetAsgNameA(offline, name, 14), KVR_ERR_OFFLINE_GROUP);
  EXPECT_STREQ(name, "Offline Client");
  EXPECT_EQ(KVR_GetAsgNameA(offline, name, 13), KVR_ERR_NAME_TRUNCATED);
  EXPECT_EQ(KVR_GetAvailAsgServers(offline, nullptr, &(count = 0)), KVR_OK);
  EXPECT_EQ(KVR_GetFreeIndexCount(offline) + KVR_GetAvailAsgServerCount(Group("D")), 0u)
      << "what hangs below has no servers to choose from";
  EXPECT_TRUE(KVR_IsAsgOffline(offline) == 1 && KVR_IsAsgOffline(Group("A")) == 0);
  EXPECT_EQ(KVR_GetAsgClient(offline), nullptr);
}
