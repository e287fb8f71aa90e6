// The ordered list, the registry's queries and the delivery of names.
#include "model/system_order.h"
#include "support/random_inputs.h"
#include "support/world.h"

using namespace kvrtest;

namespace {

std::vector<const void *> Items(const kvr::OrderedList &list) {
  std::vector<const void *> items;
  const kvr::ListNode *before = &list.header;
  for (kvr::ListNode *node = ListFirst(&list); node != nullptr; node = (before = node)->next) {
    if (node->prev != before) throw std::logic_error("a link back leads elsewhere");
    items.push_back(node->data);
  }
  return items;
}

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
    for (const void *item : Items(*list))
      found += std::to_string(static_cast<const kvr::GroupRecord *>(item) - items.data());
    EXPECT_EQ(found, order) << names << " " << steps;
    ListDestroy(list, 0);
  }
}

// Names of few letters, so that equal and prefixed ones abound; some hosts arrive again.
TEST(ListFillSystems, GivesTheOrderOfInsertingOneByOne) {
  const Shape shape = {{}, {4, 4, 4, 4, 4, 12}, 450};
  ExpectForRandomInputs("arrivals", shape, [](const Rows &rows) {
    std::vector<kvr::SystemRecord> systems(450);
    std::vector<kvr::SystemRecord *> arrivals;
    kvr::OrderedList *slow = kvr::ListCreate(kvr::CompareSystems);
    kvr::OrderedList *fast = kvr::ListCreate(kvr::CompareSystems);
    for (std::size_t i = 1; i < rows.size(); ++i) {
      const std::size_t again = rows[i][5];
      kvr::SystemRecord &system = systems[again < arrivals.size() ? again : arrivals.size()];
      const auto letter = [&](std::size_t n) { return "\0ab\xE9"[rows[i][n]]; };
      for (std::size_t n = 0; n < 3; ++n) system.discovered.systemName[n] = letter(n);
      for (std::size_t n = 0; n < 2; ++n)
        system.discovered.systemNameW[n] = static_cast<unsigned char>(letter(3 + n));
      arrivals.push_back(&system);
    }
    for (kvr::SystemRecord *system : arrivals) ListInsertSorted(slow, system);
    kvr::ListFillSystems(*fast, arrivals);
    if (Items(*slow) != Items(*fast)) throw std::logic_error("another order");
    std::string order;
    for (const void *item : Items(*fast))
      order += fmt::format("{} ", static_cast<const kvr::SystemRecord *>(item) - systems.data());
    ListDestroy(slow, 0);
    ListDestroy(fast, 0);
    return order;
  });
}

// The MSC M with its backup K, the client A, which B and longname1 serve and S could, and two hosts
// outside the ACG.
using Lines = std::vector<std::string>;
const Lines kHosts = {"V",    "longname1 s5 s10", "M 5=3 10=4", "B s5 s10", "A 10=1 s5", "U",
                      "S s5", "K 5=21 10=4 s5"};

TEST(Registry, ListsTheFirstSystemsThatFit) {
  const World world(kHosts);
  world.As("M");
  const auto mark = [] {
    for (const char *failed : {"A", "U", "V"}) System(failed)->lastOpFailed = 1;
  };
  const std::pair<Lines, ListOf<KVR_SYSTEM>> lists[] = {
      {{"A", "B", "K", "S", "longname1"}, KVR_GetAcgServers},
      {{"K"}, KVR_GetBackupMSCs},
      {{"S"}, [](auto *s, auto *n) { return KVR_GetAvailAsgServers(Group("A"), s, n); }},
      {{"U", "V"}, KVR_GetUnsecureServers},
      {{"B", "longname1"}, [](auto *s, auto *n) { return KVR_GetAsgServers(Group("A"), s, n); }},
      {{"A", "U", "V"},
       [&](auto *s, auto *n) { return mark(), KVR_GetLastOpFailedServers(s, n); }}};
  for (const auto &[names, list] : lists) {
    std::vector<KVR_SYSTEM> systems;
    for (const std::string &name : names) systems.push_back(System(name));
    ExpectFirstThatFit(systems, KVR_ERR_MORE_SYSTEMS, list);
  }
  KVR_SYSTEM systems[2];
  std::uint32_t count = 2;
  mark();
  EXPECT_EQ(KVR_GetLastOpFailedServers(systems, &count), KVR_ERR_MORE_SYSTEMS);
  EXPECT_EQ(KVR_GetLastOpFailedServers(systems, &count), KVR_OK) << "those delivered are no more";
  EXPECT_TRUE(count == 1 && systems[0] == System("V"));
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
