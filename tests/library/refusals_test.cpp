// The refusals of every change in their order: what is wrong is put right one after another, so
// that each code shows although everything after it is wrong as well.
#include <utility>

#include "support/world.h"

using namespace kvrtest;

namespace {

// On the MSC. The client of slot 11 is missing, so D's group hangs below an Offline Client; of A's
// reserve both slots are in use. What is given to a change is wrong at first.
struct Stage {
  using Repair = std::pair<std::uint32_t, std::function<void()>>;

  // Each code in turn, without anything written or changed, and the last one at the end.
  void Expect(const std::vector<Repair> &repairs, const std::function<std::uint32_t()> &change,
              std::uint32_t last = KVR_OK) const {
    for (const auto &[code, repair] : repairs) {
      const std::string model = Model();
      world.Calls();
      EXPECT_EQ(change(), code);
      EXPECT_EQ(world.Calls().find("Write"), std::string::npos) << code;
      EXPECT_EQ(Model(), model) << code;
      repair();
    }
    EXPECT_EQ(change(), last);
  }

  // The same for a change of a group, which begins alike for all of them.
  void ExpectOfGroup(KVR_GROUP right, std::vector<Repair> rest,
                     const std::function<std::uint32_t()> &change) {
    kvr::g_isBackupMsc = 1;
    std::vector<Repair> repairs = {{KVR_ERR_IS_BACKUP_MSC, [] { kvr::g_isBackupMsc = 0; }},
                                   {KVR_ERR_INVALID_HANDLE, [&] { group = Group("?"); }}};
    if (rest[0].first == KVR_ERR_INVALID_HANDLE) {
      repairs.push_back(rest[0]);
      rest.erase(rest.begin());
    }
    repairs.emplace_back(KVR_ERR_OFFLINE_GROUP, [&] { group = right; });
    repairs.insert(repairs.end(), rest.begin(), rest.end());
    Expect(repairs, change);
  }

  // A client whose slot went in a deletion of the configuration that stopped halfway.
  static Repair LostSlot(KVR_GROUP of) {
    const std::int32_t slot = std::exchange(of->client->saIndex, -1);
    return {KVR_ERR_SYSTEM_NOT_IN_ACG, [=] { of->client->saIndex = slot; }};
  }

  World world{{"M 5=3 10=4 11=8 12=8 13=4", "A 10=1 11=14 12=18 s5", "D 12=1 s5", "E 13=1 s5",
               "S s5", "U", "K"}};
  std::uint32_t started = world.As("M");
  KVR_SYSTEM s = System("S"), system = nullptr;
  KVR_GROUP a = Group("A"), d = Group("D"), e = Group("E"), group = nullptr;
};

TEST(Refusals, OfCreateAsg) {
  const std::string longest(31, 'x');
  for (const bool wide : {false, true}) {
    Stage w;
    KVR_SYSTEM s = System("S"), client = reinterpret_cast<KVR_SYSTEM>(Group("A"));
    KVR_GROUP parent = reinterpret_cast<KVR_GROUP>(s), made = parent;
    std::string name;
    bool named = false;
    std::uint32_t reserve = 9;
    s->saIndex = 7;
    s->inAcg = 0;
    kvr::g_isBackupMsc = 1;
    w.Expect(
        {{KVR_ERR_IS_BACKUP_MSC, [] { kvr::g_isBackupMsc = 0; }},
         {KVR_ERR_INVALID_HANDLE, [&] { parent = Group("?"); }},
         {KVR_ERR_INVALID_HANDLE, [&] { client = nullptr; }},
         {KVR_ERR_INVALID_HANDLE, [&] { client = s; }},
         {KVR_ERR_OFFLINE_GROUP, [&] { parent = Group("A"); }},
         {KVR_ERR_ALREADY_CLIENT, [&] { s->saIndex = -1; }},
         {KVR_ERR_INVALID_NAME, [&] { named = true, name = longest + 'x'; }},
         {KVR_ERR_INVALID_NAME, [&] { name = longest; }},
         {KVR_ERR_SYSTEM_NOT_IN_ACG, [&] { s->inAcg = 1; }},
         {KVR_ERR_INVALID_HANDLE, [&] { ListInsertSorted(parent->servers, s); }},
         {KVR_ERR_NO_FREE_INDEX,
          [&] {
            EXPECT_EQ(made, reinterpret_cast<KVR_GROUP>(s)) << "untouched by a refusal";
            w.world.Plant("A 10=1 11=14 12=18 14=10 15=10");
          }}},
        [&] {
          const std::u16string units(name.begin(), name.end());
          return wide ? KVR_CreateAsgW(parent, named ? units.c_str() : nullptr, client, &reserve,
                                       &made)
                      : KVR_CreateAsgA(parent, named ? name.c_str() : nullptr, client, &reserve,
                                       &made);
        },
        KVR_ERR_RESERVED_COUNT_REDUCED);
    EXPECT_EQ(made, Group("S"));
    EXPECT_EQ(reserve, 1u);
  }
}

TEST(Refusals, OfChangesOfAGroup) {
  const std::string longest(31, 'x');
  for (const bool wide : {false, true}) {
    Stage w;
    std::string name;
    bool named = false;
    w.ExpectOfGroup(w.e,
                    {{KVR_ERR_INVALID_NAME, [&] { named = true; }},
                     {KVR_ERR_INVALID_NAME, [&] { name = longest + 'x'; }},
                     {KVR_ERR_INVALID_NAME, [&] { name = longest; }}},
                    [&] {
                      const std::u16string units(name.begin(), name.end());
                      return wide ? KVR_RenameAsgW(w.group, named ? units.c_str() : nullptr)
                                  : KVR_RenameAsgA(w.group, named ? name.c_str() : nullptr);
                    });
  }
  {
    Stage w;
    w.ExpectOfGroup(w.a, {{KVR_ERR_HAS_CHILD_GROUPS, [&] { w.group = w.e; }}, w.LostSlot(w.e)},
                    [&] { return KVR_DeleteAsg(w.group); });
  }
  {
    Stage w;
    ListInsertSorted(w.d->servers, w.s);
    ListInsertSorted(kvr::g_backupMscList, w.s);
    w.d->parent = w.e;
    w.s->inAcg = 0;
    w.ExpectOfGroup(
        w.d,
        {{KVR_ERR_INVALID_HANDLE, [&] { w.system = w.s; }},
         {KVR_ERR_SYSTEM_NOT_IN_ACG, [&] { w.s->inAcg = 1; }},
         {KVR_ERR_ALREADY_ASG_SERVER, [&] { ListUnlink(ListFirst(w.d->servers), 0); }},
         {KVR_ERR_INVALID_HANDLE, [&] { ListInsertSorted(w.e->servers, w.s); }},
         {KVR_ERR_IS_BACKUP_MSC, [] { ListUnlink(ListFirst(kvr::g_backupMscList), 0); }},
         w.LostSlot(w.d)},
        [&] { return KVR_AddServerToAsg(w.group, w.system); });
    EXPECT_EQ(w.world.Calls(), "ReadAccessControlTable:S WriteAccessControlTable:S");
    EXPECT_TRUE(Same(*w.world->Image("S"), MakeImage("S s5 s12")));
  }
  {
    Stage w;
    w.ExpectOfGroup(w.e,
                    {{KVR_ERR_INVALID_HANDLE, [&] { w.system = w.s; }},
                     {KVR_ERR_NOT_ASG_SERVER, [&] { ListInsertSorted(w.e->servers, w.s); }},
                     w.LostSlot(w.e)},
                    [&] { return KVR_RemoveServerFromAsg(w.group, w.system); });
  }
  {
    Stage w;
    std::uint32_t one = 1, *count = nullptr;
    w.ExpectOfGroup(w.d,
                    {{KVR_ERR_INVALID_HANDLE, [&] { count = &one; }},
                     {KVR_ERR_OFFLINE_GROUP, [&] { w.group = w.a; }},
                     {KVR_ERR_RESERVED_INDICES_IN_USE, [&] { one = 2; }}},
                    [&] { return KVR_ModifyReservedIndexCount(w.group, count); });
  }
  {
    Stage w;
    w.s->saIndex = 7;
    w.s->inAcg = 0;
    w.d->parent = w.e;
    w.ExpectOfGroup(w.d,
                    {{KVR_ERR_INVALID_HANDLE, [&] { w.system = w.s; }},
                     {KVR_ERR_ALREADY_CLIENT, [&] { w.s->saIndex = -1; }},
                     {KVR_ERR_SYSTEM_NOT_IN_ACG, [&] { w.s->inAcg = 1; }},
                     {KVR_ERR_INVALID_HANDLE, [&] { ListInsertSorted(w.e->servers, w.s); }},
                     w.LostSlot(w.d)},
                    [&] { return KVR_AssignNewClient(w.group, w.system); });
    w.world.Calls();
    EXPECT_EQ(KVR_AssignNewClient(w.d, w.s), KVR_OK) << "the client already";
    EXPECT_EQ(w.world.Calls(), "");
  }
}

TEST(Refusals, OfSuccession) {
  const auto beMsc = [] { kvr::g_isMsc = kvr::g_securityActive = 1; };
  const auto wrong = [](Stage &w) { w.system = reinterpret_cast<KVR_SYSTEM>(w.a); };
  for (const bool add : {true, false}) {
    Stage w;
    wrong(w);
    kvr::g_isMsc = 0;
    std::vector<Stage::Repair> repairs = {{KVR_ERR_NOT_MSC, beMsc},
                                          {KVR_ERR_INVALID_HANDLE, [&] { w.system = w.s; }}};
    const auto list = [&] { ListInsertSorted(kvr::g_backupMscList, w.s); };
    if (add) {
      list();
      w.s->saIndex = 7;
      ListInsertSorted(w.d->servers, w.s);
      repairs[0].second = [] { kvr::g_securityActive = 0; };
      repairs.insert(repairs.begin() + 1, {KVR_ERR_NOT_SECURED, beMsc});
      repairs.emplace_back(KVR_ERR_ALREADY_BACKUP_MSC,
                           [] { ListUnlink(ListFirst(kvr::g_backupMscList), 0); });
      repairs.emplace_back(KVR_ERR_SYSTEM_IS_CLIENT, [&] { w.s->saIndex = -1; });
      repairs.emplace_back(KVR_ERR_SYSTEM_IS_ASG_SERVER,
                           [&] { ListUnlink(ListFirst(w.d->servers), 0); });
    } else {
      repairs.emplace_back(KVR_ERR_NOT_BACKUP_MSC, list);
    }
    w.Expect(repairs,
             [&] { return add ? KVR_AddBackupMSC(w.system) : KVR_RemoveBackupMSC(w.system); });
  }
  Stage w;
  kvr::g_isMsc = 0;
  kvr::g_localIndex = -1;
  w.Expect({{KVR_ERR_NOT_MSC, [] { kvr::g_isBackupMsc = 1; }},
            {KVR_ERR_NOT_MSC, [&] { kvr::g_localIndex = 5, beMsc(); }},
            {KVR_ERR_NO_NEW_MSC, [&] { wrong(w); }},
            {KVR_ERR_INVALID_HANDLE, [&] { w.system = w.s; }},
            {KVR_ERR_NOT_BACKUP_MSC, [&] { ListInsertSorted(kvr::g_backupMscList, w.s); }}},
           [&] { return KVR_AssignNewMSC(w.system); });
}

// The local table is neither stored nor removed, and no outside call is made for it.
TEST(Refusals, OfAHostWithoutAdapters) {
  const struct {
    const char *host;
    std::function<std::uint32_t()> change;
  } cases[] = {{"U", [] { return KVR_CreateKVR(nullptr); }},
               {"M", KVR_DeleteKVR},
               {"M", [] { return Create("", "S", 0); }},
               {"M", [] { return KVR_CreateAsgW(nullptr, u"s", System("S"), nullptr, nullptr); }},
               {"M", [] { return KVR_DeleteAsg(Group("E")); }},
               {"M",
                [] {
                  std::uint32_t count = 3;
                  return KVR_ModifyReservedIndexCount(Group("E"), &count);
                }},
               {"K", [] { return KVR_AssignNewMSC(nullptr); }}};
  for (const auto &[host, change] : cases) {
    Stage w;
    w.world.Plant("K 5=21 s5");
    w.world.As(host);
    const std::uint32_t count = std::exchange(kvr::g_localAdapterCount, 0);
    EXPECT_EQ(change(), KVR_ERR_NO_LOCAL_ADAPTER) << host;
    EXPECT_EQ(w.world.Calls().find(std::string(":") + host), std::string::npos);
    kvr::g_localAdapterCount = count;
  }
}

}  // namespace
