// The ordered list, the registry's queries and the delivery of names.
#include <rapidcheck.h>

#include "model/system_order.h"
#include "support/world.h"

using namespace kvrtest;

namespace {

TEST(OrderedList, KeepsItsOrderAndItsLinks) {
  const std::tuple<std::string, std::string, const char *> cases[] = {
      // names of the items, "_" for an empty one; numbers of those inserted, or from "a" on found
      // and removed; order
      {"", "", ""},          {"bac", "012", "102"},  {"aaa", "012", "210"},
      {"x__", "012", "210"}, {"ba", "0010", "1000"}, {"acb", "012b", "02"},
      {"aa", "0b", "0"},     {"a", "0a00a", "0"},    {"acb", "012ca2", "21"}};
  for (const auto &[names, steps, order] : cases) {
    std::vector<kvr::GroupRecord> items(3);
    for (std::size_t i = 0; i < names.size(); ++i)
      items[i].name[0] = names[i] == '_' ? '\0' : names[i];
    kvr::OrderedList *list = kvr::ListCreate(kvr::CompareGroups);
    for (const char step : steps) {
      kvr::GroupRecord *item = &items[step % 16 - (step >= 'a')];
      step >= 'a' ? ListUnlink(ListFind(list, item), 0) : ListInsertSorted(list, item);
    }
    std::string found;
    const kvr::ListNode *before = &list->header;
    for (kvr::ListNode *node = ListFirst(list); node != nullptr; node = (before = node)->next) {
      EXPECT_EQ(node->prev, before);
      found += std::to_string(static_cast<kvr::GroupRecord *>(node->data) - items.data());
    }
    EXPECT_EQ(found, order) << names << " " << steps;
    ListDestroy(list, 0);
  }
}

// Names of few letters, so that equal and prefixed ones abound; some hosts arrive again.
TEST(ListFillSystems, GivesTheOrderOfInsertingOneByOne) {
  const auto name = rc::gen::container<std::string>(rc::gen::element('a', 'b', '\xE9'));
  const auto arrival = rc::gen::tuple(rc::gen::resize(3, name), rc::gen::resize(2, name),
                                      rc::gen::inRange<std::size_t>(0, 12));
  const auto plans = rc::gen::container<std::vector<decltype(*arrival)>>(arrival);
  EXPECT_TRUE(rc::check("fills like single insertions", [&] {
    std::vector<kvr::SystemRecord> systems(450);
    std::vector<kvr::SystemRecord *> arrivals;
    kvr::OrderedList *slow = kvr::ListCreate(kvr::CompareSystems);
    kvr::OrderedList *fast = kvr::ListCreate(kvr::CompareSystems);
    for (const auto &[ascii, wide, again] : *rc::gen::resize(450, plans)) {
      kvr::SystemRecord &system = systems[again < arrivals.size() ? again : arrivals.size()];
      ascii.copy(system.discovered.systemName, 31);
      std::copy(wide.begin(), wide.end(), system.discovered.systemNameW);
      arrivals.push_back(&system);
    }
    for (kvr::SystemRecord *system : arrivals) ListInsertSorted(slow, system);
    kvr::ListFillSystems(*fast, arrivals);
    const kvr::ListNode *one = ListFirst(slow), *other = ListFirst(fast);
    for (; one != nullptr && other != nullptr; one = one->next, other = other->next)
      RC_ASSERT((one->data == other->data && other->prev->next == other));
    RC_ASSERT((one == other));
    ListDestroy(slow, 0);
    ListDestroy(fast, 0);
  }));
}

// The MSC M with its backup K, the client A, which B and longname1 serve and S could, and two hosts
// outside the ACG.
using Lines = std::vector<std::string>;
const Lines kHosts = {"V",    "longname1 s5 s10", "M 5=3 10=4", "B s5 s10", "A 10=1 s5", "U",
                      "S s5", "K 5=21 10=4 s5"};

TEST(Registry, ListsTheFirstSystemsThatFit) {
  const World world(kHosts);
  const std::pair<Lines, std::function<std::uint32_t(KVR_SYSTEM *, std::uint32_t *)>> lists[] = {
      {{"A", "B", "K", "S", "longname1"}, KVR_GetAcgServers},
      {{"K"}, KVR_GetBackupMSCs},
      {{"S"}, [](auto *s, auto *n) { return KVR_GetAvailAsgServers(Group("A"), s, n); }},
      {{"U", "V"}, KVR_GetUnsecureServers},
      {{"B", "longname1"}, [](auto *s, auto *n) { return KVR_GetAsgServers(Group("A"), s, n); }},
      {{"A", "U", "V"}, KVR_GetLastOpFailedServers}};
  for (const auto &[names, list] : lists) {
    for (std::uint32_t capacity = 0, count; capacity <= names.size() + 1; ++capacity) {
      world.As("M");
      for (const char *failed : {"A", "U", "V"}) System(failed)->lastOpFailed = 1;
      KVR_SYSTEM systems[7] = {};
      EXPECT_EQ(list(systems, &(count = capacity)), capacity < names.size() ? 5005u : 0u);
      ASSERT_EQ(count, std::min<std::size_t>(capacity, names.size()));
      for (std::uint32_t i = 0; i < 7; ++i)
        EXPECT_EQ(systems[i], i < count ? System(names[i]) : nullptr);
      EXPECT_EQ(list(nullptr, &(count = 1)), KVR_ERR_INVALID_HANDLE);
      EXPECT_EQ(list(systems, nullptr) + count, KVR_ERR_INVALID_HANDLE + 1);
      KVR_GetLastOpFailedServers(systems, &(count = 7));
      EXPECT_EQ(count, names.size() == 3 ? 3 - std::min(capacity, 3u) : 3)
          << "only those delivered";
    }
  }
}

TEST(Registry, NamesHostsOutsideTheAcgOnlyOnItsMsc) {
  const World world(kHosts);
  for (const auto &[host, list, naming] :
       {std::tuple("M", 0u, 0u), {"B", 5000, 5007}, {"K", 5000, 5007}, {"U", 0, 0}}) {
    world.As(host);
    std::uint32_t count = 8;
    KVR_SYSTEM systems[8];
    char name[12] = "???????????";
    EXPECT_EQ(KVR_GetUnsecureServers(systems, &count), list);
    EXPECT_EQ(KVR_GetUnsecureServerCount(), list == 0 ? count : 0);
    EXPECT_EQ(KVR_GetSystemNameA(System("V"), name, 12), naming);
    EXPECT_STREQ(name, naming == 0 ? "V" : "");
    if (KVR_IsBackupMSC() == 0) continue;
    EXPECT_EQ(KVR_GetAvailAsgServers(nullptr, nullptr, &count), KVR_ERR_IS_BACKUP_MSC);
  }
}

template <class Char, class Handle>
void ExpectCutOrPadded(std::uint32_t (*ask)(Handle, Char *, std::uint32_t), Handle handle) {
  using namespace std::string_literals;
  for (const auto &[size, stored] :
       {std::pair(8u, "longname####"s), {9, "longname1###"s}, {11, "longname1\0\0#"s}}) {
    std::basic_string<Char> buffer(12, Char{'#'});
    EXPECT_EQ(ask(handle, buffer.data(), size), size < 9 ? KVR_ERR_NAME_TRUNCATED : KVR_OK);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), stored);
    EXPECT_EQ(ask(nullptr, buffer.data(), size), KVR_ERR_INVALID_HANDLE);
  }
}

TEST(Names, AreCutAndPaddedToTheBuffer) {
  const World world({"M 5=3 6=4", "longname1 6=1"});
  world.As("M");
  ExpectCutOrPadded<char>(KVR_GetSystemNameA, System("longname1"));
  ExpectCutOrPadded<KVR_WCHAR>(KVR_GetSystemNameW, System("longname1"));
  ExpectCutOrPadded<char>(KVR_GetAsgNameA, Group("longname1"));
  ExpectCutOrPadded<KVR_WCHAR>(KVR_GetAsgNameW, Group("longname1"));
  EXPECT_EQ(KVR_GetAsgNameW(Group("longname1"), nullptr, 9), KVR_ERR_NO_NAME);
}

TEST(CanDiscoverAllSystems, NeedsAReachIdInCommonWithEveryOther) {
  const World world({"M", "A", "B", "C"}, 2);
  world.As("M");
  const auto able = [](const char *host) { return KVR_CanDiscoverAllSystems(System(host)) == 1; };
  AdapterInfo *b = System("B")->discovered.adapters, *c = System("C")->discovered.adapters;
  b[0].reachIds[0][7] = c[0].reachIds[0][7] = 1;
  c[1].reachIdCount = 0;
  EXPECT_TRUE(!able("A") && able("B") && !able("C")) << "B reaches A by its second adapter";
  b[0].reachIdCount = 0;
  EXPECT_FALSE(able("A") || able("B") || able("C"));
}

}  // namespace
