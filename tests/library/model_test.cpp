// The ordered list, the registry's queries and the delivery of names.
#include <rapidcheck.h>

#include "model/system_order.h"
#include "support/world.h"

using namespace kvrtest;

namespace {

TEST(OrderedList, KeepsItsOrderAndItsLinks) {
  const struct {
    std::string names;  // one letter for each item; "_" is an empty name
    std::string steps;  // items to insert, or in letters ("a" is 0) to find and remove
    const char *order;
  } cases[] = {{"", "", ""},          {"bac", "012", "102"},  {"aaa", "012", "210"},
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
    for (kvr::SystemRecord *system : arrivals)
      ListInsertSorted(slow, system);
    kvr::ListFillSystems(*fast, arrivals);
    const kvr::ListNode *expected = ListFirst(slow), *before = &fast->header;
    for (kvr::ListNode *node = ListFirst(fast); node != nullptr; node = (before = node)->next) {
      RC_ASSERT(expected != nullptr && node->data == expected->data && node->prev == before);
      expected = expected->next;
    }
    RC_ASSERT(expected == nullptr);
    ListDestroy(slow, 0);
    ListDestroy(fast, 0);
  }));
}

template <class Handle>
using ListOf = std::function<std::uint32_t(Handle *, std::uint32_t *)>;

// Every capacity gives the first handles; null pointers give 5007 and touch nothing.
template <class Handle>
void ExpectListed(const std::vector<Handle> &expected, std::uint32_t more, ListOf<Handle> list) {
  std::vector<Handle> stored(expected.size() + 1);
  for (std::uint32_t capacity = 0, count; capacity <= expected.size() + 1; ++capacity) {
    EXPECT_EQ(list(stored.data(), &(count = capacity)), capacity < expected.size() ? more : KVR_OK);
    EXPECT_EQ(count, std::min<std::size_t>(capacity, expected.size()));
    EXPECT_TRUE(std::equal(stored.begin(), stored.begin() + count, expected.begin()));
    EXPECT_EQ(stored[count], nullptr);
  }
  std::uint32_t count = 1;
  EXPECT_EQ(list(nullptr, &count) + list(stored.data(), nullptr), 2 * KVR_ERR_INVALID_HANDLE);
  EXPECT_EQ(count, 1u);
}

std::vector<KVR_SYSTEM> Systems(const std::string &names) {
  std::vector<KVR_SYSTEM> systems;
  std::ranges::transform(Words(names), std::back_inserter(systems), System);
  return systems;
}

// The MSC M with the clients A and abcdef, the backup K, and the servers B, S and abcdef of A.
const std::vector<std::string> kHosts = {
    "V",        "abcdef 12=1 s5 s10", "S s5 s10", "M 5=3 10=4 12=4", "K 5=21 10=4 12=4 s5",
    "B s5 s10", "A 10=1 s5",          "U"};

TEST(Registry, ListsWhatFitsInOrder) {
  const World world(kHosts);
  world.Start("M");
  ExpectListed<KVR_SYSTEM>({}, 0, KVR_GetAcgServers);
  world.As("M");
  KVR_GROUP a = Group("A"), b = Group("abcdef");
  const auto available = [&](auto *s, auto *n) { return KVR_GetAvailAsgServers(b, s, n); };
  ExpectListed<KVR_SYSTEM>(Systems("A B K S abcdef"), KVR_ERR_MORE_SYSTEMS, KVR_GetAcgServers);
  ExpectListed<KVR_SYSTEM>(Systems("U V"), KVR_ERR_MORE_SYSTEMS, KVR_GetUnsecureServers);
  ExpectListed<KVR_SYSTEM>(Systems("K"), KVR_ERR_MORE_SYSTEMS, KVR_GetBackupMSCs);
  ExpectListed<KVR_SYSTEM>(Systems("A B S"), KVR_ERR_MORE_SYSTEMS, available);
  ExpectListed<KVR_GROUP>({a, b}, KVR_ERR_MORE_GROUPS, KVR_GetAsgs);
  for (const char *name : {"B", "S", "U"})
    System(name)->lastOpFailed = 1;
  for (const char *name : {"B", "S", "U"}) {
    std::uint32_t count = 1;
    KVR_SYSTEM system = nullptr;
    EXPECT_EQ(KVR_GetLastOpFailedServers(&system, &count), *name == 'U' ? 0 : 5005u);
    EXPECT_EQ(system, System(name)) << "only what was delivered is cleared";
  }
}

TEST(Registry, HidesHostsOutsideFromMembersThatAreNotTheMsc) {
  const World world(kHosts);
  for (const auto &[host, list, naming] : {std::tuple("M", 0u, 0u),
                                           {"U", 0u, 0u},
                                           {"K", KVR_ERR_NOT_MSC, KVR_ERR_INVALID_HANDLE},
                                           {"S", KVR_ERR_NOT_MSC, KVR_ERR_INVALID_HANDLE}}) {
    world.As(host);
    std::uint32_t count = 0;
    char name[8] = "?";
    EXPECT_EQ(KVR_GetUnsecureServers(nullptr, &count), list != 0 ? list : KVR_ERR_MORE_SYSTEMS);
    EXPECT_EQ(KVR_GetUnsecureServerCount() == 0, list != 0);
    EXPECT_EQ(KVR_GetSystemNameA(System("V"), name, 8), naming);
    EXPECT_STREQ(name, naming != 0 ? "" : "V");
  }
}

template <class Char, class Handle>
void ExpectCutOrPadded(std::uint32_t (*ask)(Handle, Char *, std::uint32_t), Handle handle) {
  using namespace std::string_literals;
  for (const auto &[size, result, stored] :
       {std::tuple(4u, KVR_ERR_NAME_TRUNCATED, "abcd########"s),
        {6, 0, "abcdef######"s},
        {10, 0, "abcdef\0\0\0\0##"s}}) {
    std::basic_string<Char> buffer(12, Char{'#'});
    EXPECT_EQ(ask(handle, buffer.data(), size), result);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), stored);
  }
}

TEST(Registry, CutsAndPadsNamesToTheBuffer) {
  const World world(kHosts);
  world.As("M");
  ExpectCutOrPadded<char>(KVR_GetSystemNameA, System("abcdef"));
  ExpectCutOrPadded<KVR_WCHAR>(KVR_GetSystemNameW, System("abcdef"));
  ExpectCutOrPadded<char>(KVR_GetAsgNameA, Group("abcdef"));
  ExpectCutOrPadded<KVR_WCHAR>(KVR_GetAsgNameW, Group("abcdef"));
}

TEST(CanDiscoverAllSystems, NeedsAReachIdInCommonWithEveryOther) {
  const World world({"M", "A", "B", "C"}, 2);
  for (const auto &[reach,
                    able] :  // identifiers of A, B and C; those from 4 on on the next adapter
       {std::pair("1 1 1", "ABC"),
        {"1 12 2", "B"},
        {"14 4 1", "A"},
        {"1 1 0", ""},
        {"1237 7 2", "A"}}) {
    world.As("M");
    std::string found;
    for (std::size_t i = 0; const std::string &word : Words(reach)) {
      AdapterInfo *adapters = System({"ABC"[i++]})->discovered.adapters;
      adapters[0].reachIdCount = adapters[1].reachIdCount = 0;
      for (const char c : word)
        if (c != '0')
          adapters[c > '3'].reachIds[adapters[c > '3'].reachIdCount++][0] =
              static_cast<std::uint8_t>(c);
    }
    for (const char *host : {"A", "B", "C"})
      found += KVR_CanDiscoverAllSystems(System(host)) != 0 ? host : "";
    EXPECT_EQ(found, able) << reach;
  }
}

}  // namespace
