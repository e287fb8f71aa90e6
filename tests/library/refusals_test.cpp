// The refusals of every change in their order: what is wrong is put right one after another, so
// that each code shows although everything after it is wrong as well.
#include <cstring>
#include <utility>

#include "support/trial.h"

using namespace kvrtest;

namespace {

using Repairs = std::vector<std::pair<std::uint32_t, std::function<void()>>>;

void BeMsc() { kvr::g_isMsc = kvr::g_securityActive = 1; }
void BeNoBackup() { kvr::g_isBackupMsc = 0; }
void TakeFirst(kvr::OrderedList *list) { ListUnlink(ListFirst(list), 0); }

// On the MSC. The client of slot 11 is missing, so D's group hangs below an Offline Client; of A's
// reserve both slots are in use. What is given to a change is wrong at first.
struct Stage {
  // Each code in turn, without anything written or changed, and the last one at the end.
  void Expect(const Repairs &repairs, const std::function<std::uint32_t()> &change,
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
  void ExpectOfGroup(KVR_GROUP right, bool givesSystem, const Repairs &rest,
                     const std::function<std::uint32_t()> &change, std::uint32_t last = KVR_OK) {
    kvr::g_isBackupMsc = 1;
    Repairs repairs = {{KVR_ERR_IS_BACKUP_MSC, BeNoBackup},
                       {KVR_ERR_INVALID_HANDLE, [&] { group = Group("?"); }}};
    if (givesSystem) repairs.emplace_back(KVR_ERR_INVALID_HANDLE, [&] { system = s; });
    repairs.emplace_back(KVR_ERR_OFFLINE_GROUP, [&] { group = right; });
    repairs.insert(repairs.end(), rest.begin(), rest.end());
    Expect(repairs, change, last);
  }

  // A client whose slot went in a deletion of the configuration that stopped halfway.
  static Repairs::value_type LostSlot(KVR_GROUP of) {
    const std::int32_t slot = std::exchange(of->client->saIndex, -1);
    return {KVR_ERR_SYSTEM_NOT_IN_ACG, [=] { of->client->saIndex = slot; }};
  }

  const KVR_WCHAR *WideName() {
    return name != nullptr ? units.assign(name, name + std::strlen(name)).c_str() : nullptr;
  }

  World world{{"M 5=3 10=4 11=8 12=8 13=4", "A 10=1 11=14 12=18 s5", "D 12=1 s5", "E 13=1 s5",
               "S s5", "U", "K"}};
  std::uint32_t started = world.As("M");
  KVR_SYSTEM s = System("S"), system = reinterpret_cast<KVR_SYSTEM>(Group("A"));
  KVR_GROUP a = Group("A"), d = Group("D"), e = Group("E"), group = reinterpret_cast<KVR_GROUP>(s);
  const char *name = nullptr;
  std::basic_string<KVR_WCHAR> units;
};

const char *const kTooLong = "this name has thirty-two letters";

TEST(Refusals, OfCreateAsg) {
  for (const bool wide : {false, true}) {
    Stage w;
    std::uint32_t reserve = 9;
    KVR_GROUP made = w.group;
    w.s->saIndex = 7;
    w.s->inAcg = 0;
    if (wide) w.system = nullptr;
    w.ExpectOfGroup(
        w.a, true,
        {{KVR_ERR_ALREADY_CLIENT, [&] { w.s->saIndex = -1; }},
         {KVR_ERR_INVALID_NAME, [&] { w.name = kTooLong; }},
         {KVR_ERR_INVALID_NAME, [&] { w.name = kTooLong + 1; }},
         {KVR_ERR_SYSTEM_NOT_IN_ACG, [&] { w.s->inAcg = 1; }},
         {KVR_ERR_INVALID_HANDLE, [&] { ListInsertSorted(w.a->servers, w.s); }},
         {KVR_ERR_NO_FREE_INDEX, [&] { w.world.Plant("A 10=1 11=14 12=18 14=10 15=10"); }}},
        [&] {
          EXPECT_EQ(made, reinterpret_cast<KVR_GROUP>(w.s)) << "untouched by a refusal";
          if (!wide) return KVR_CreateAsgA(w.group, w.name, w.system, &reserve, &made);
          return KVR_CreateAsgW(w.group, w.WideName(), w.system, &reserve, &made);
        },
        KVR_ERR_RESERVED_COUNT_REDUCED);
    EXPECT_TRUE(made == Group("S") && reserve == 1);
  }
}

TEST(Refusals, OfRenameAsg) {
  for (const bool wide : {false, true}) {
    Stage w;
    w.ExpectOfGroup(w.a, false,
                    {{KVR_ERR_INVALID_NAME, [&] { w.name = ""; }},
                     {KVR_ERR_INVALID_NAME, [&] { w.name = kTooLong; }},
                     {KVR_ERR_INVALID_NAME, [&] { w.name = kTooLong + 1; }}},
                    [&] {
                      return wide ? KVR_RenameAsgW(w.group, w.WideName())
                                  : KVR_RenameAsgA(w.group, w.name);
                    });
    EXPECT_EQ(Tree(), wide ? "A10(?(D12)) E13" : "E13 A10(?(D12))");
  }
}

TEST(Refusals, OfDeleteAsgAndItsReserve) {
  Stage w;
  std::uint32_t one = 1;
  w.ExpectOfGroup(
      w.d, true,
      {{KVR_ERR_OFFLINE_GROUP, [&] { w.group = w.a; }},
       {KVR_ERR_RESERVED_INDICES_IN_USE, [&] { one = 2; }}},
      [&] { return KVR_ModifyReservedIndexCount(w.group, w.system == w.s ? &one : nullptr); });
  w.group = nullptr;
  w.ExpectOfGroup(w.a, false, {{KVR_ERR_HAS_CHILD_GROUPS, [&] { w.group = w.e; }}, w.LostSlot(w.e)},
                  [&] { return KVR_DeleteAsg(w.group); });
}

TEST(Refusals, OfServers) {
  Stage w;
  ListInsertSorted(w.d->servers, w.s);
  ListInsertSorted(kvr::g_backupMscList, w.s);
  w.d->parent = w.e;
  w.s->inAcg = 0;
  w.ExpectOfGroup(w.d, true,
                  {{KVR_ERR_SYSTEM_NOT_IN_ACG, [&] { w.s->inAcg = 1; }},
                   {KVR_ERR_ALREADY_ASG_SERVER, [&] { TakeFirst(w.d->servers); }},
                   {KVR_ERR_INVALID_HANDLE, [&] { ListInsertSorted(w.e->servers, w.s); }},
                   {KVR_ERR_IS_BACKUP_MSC, [] { TakeFirst(kvr::g_backupMscList); }},
                   w.LostSlot(w.d)},
                  [&] { return KVR_AddServerToAsg(w.group, w.system); });
  EXPECT_EQ(w.world.Calls(), "ReadAccessControlTable:S WriteAccessControlTable:S");
  TakeFirst(w.d->servers);
  w.group = nullptr, w.system = nullptr;
  w.ExpectOfGroup(
      w.d, true,
      {{KVR_ERR_NOT_ASG_SERVER, [&] { ListInsertSorted(w.d->servers, w.s); }}, w.LostSlot(w.d)},
      [&] { return KVR_RemoveServerFromAsg(w.group, w.system); });
}

TEST(Refusals, OfAssignNewClient) {
  Stage w;
  w.s->saIndex = 7;
  w.s->inAcg = 0;
  w.d->parent = w.e;
  w.ExpectOfGroup(w.d, true,
                  {{KVR_ERR_ALREADY_CLIENT, [&] { w.s->saIndex = -1; }},
                   {KVR_ERR_SYSTEM_NOT_IN_ACG, [&] { w.s->inAcg = 1; }},
                   {KVR_ERR_INVALID_HANDLE, [&] { ListInsertSorted(w.e->servers, w.s); }},
                   w.LostSlot(w.d)},
                  [&] { return KVR_AssignNewClient(w.group, w.system); });
  w.world.Calls();
  EXPECT_EQ(KVR_AssignNewClient(w.d, w.s), KVR_OK) << "the client already";
  EXPECT_EQ(w.world.Calls(), "");
}

TEST(Refusals, OfMembershipAndSuccession) {
  Stage w;
  const auto useS = [&] { w.system = w.s; };
  const auto beWrong = [&](KVR_SYSTEM system) { w.system = system, kvr::g_isMsc = 0; };
  const auto beLone = [] { kvr::g_securityActive = 0; };
  beWrong(nullptr);
  w.Expect({{KVR_ERR_NOT_MSC, BeMsc},
            {KVR_ERR_INVALID_HANDLE, [&] { w.system = System("U"); }},
            {KVR_ERR_NOT_IN_ACG, [&] { w.system = System("A"); }},
            {KVR_ERR_SYSTEM_IS_CLIENT, useS}},
           [&] { return KVR_RemoveServerFromACG(w.system); });
  beWrong(nullptr);
  w.Expect({{KVR_ERR_NOT_MSC, beLone},
            {KVR_ERR_NOT_SECURED, BeMsc},
            {KVR_ERR_INVALID_HANDLE, [&] { w.system = System("A"); }},
            {KVR_ERR_ALREADY_IN_ACG, useS}},
           [&] { return KVR_AddServerToACG(w.system); });
  beWrong(reinterpret_cast<KVR_SYSTEM>(w.a));
  ListInsertSorted(kvr::g_backupMscList, w.s);
  ListInsertSorted(w.d->servers, w.s);
  w.s->saIndex = 7;
  w.Expect({{KVR_ERR_NOT_MSC, beLone},
            {KVR_ERR_NOT_SECURED, BeMsc},
            {KVR_ERR_INVALID_HANDLE, useS},
            {KVR_ERR_ALREADY_BACKUP_MSC, [] { TakeFirst(kvr::g_backupMscList); }},
            {KVR_ERR_SYSTEM_IS_CLIENT, [&] { w.s->saIndex = -1; }},
            {KVR_ERR_SYSTEM_IS_ASG_SERVER, [&] { TakeFirst(w.d->servers); }}},
           [&] { return KVR_AddBackupMSC(w.system); });
  beWrong(nullptr);
  w.Expect({{KVR_ERR_NOT_MSC, BeMsc},
            {KVR_ERR_INVALID_HANDLE, [&] { w.system = System("A"); }},
            {KVR_ERR_NOT_BACKUP_MSC, useS}},
           [&] { return KVR_RemoveBackupMSC(w.system); });
  beWrong(nullptr);
  kvr::g_localIndex = -1;
  w.Expect({{KVR_ERR_NOT_MSC, [] { kvr::g_isBackupMsc = 1; }},
            {KVR_ERR_NOT_MSC, [&] { kvr::g_localIndex = 5, BeMsc(); }},
            {KVR_ERR_NO_NEW_MSC, [&] { w.system = reinterpret_cast<KVR_SYSTEM>(w.a); }},
            {KVR_ERR_INVALID_HANDLE, useS},
            {KVR_ERR_NOT_BACKUP_MSC, [&] { ListInsertSorted(kvr::g_backupMscList, w.s); }}},
           [&] { return KVR_AssignNewMSC(w.system); });
  EXPECT_NE(w.world.Calls().find("syncSecurityConfig:A"), std::string::npos);
}

// Changes that take no argument to be wrong, and all on the hosts that are not the MSC.
TEST(Refusals, OfTheConfiguration) {
  const std::tuple<const char *, Change, std::uint32_t> cases[] = {
      // as each of these hosts
      {"A K S", {"CreateKVR"}, KVR_ERR_NOT_MSC},
      {"M", {"CreateKVR"}, KVR_ERR_ALREADY_MSC},
      {"A K S", {"DeleteKVR"}, KVR_ERR_NOT_MSC},
      {"U", {"DeleteKVR"}, KVR_ERR_NOT_SECURED},
      {"A K S", {"GenerateNewKeys"}, KVR_ERR_NOT_MSC},
      {"A K S", {"EnableSwitchAccess", "", "", 1}, KVR_ERR_NOT_MSC}};
  const Stage w;
  w.world.Plant("K 5=21 s5");
  for (const auto &[hosts, change, code] : cases) {
    for (const std::string &host : Words(hosts)) {
      w.world.As(host);
      w.Expect(
          {{code, [] {}}}, [&, change = change] { return Make(w.world, change); }, code);
      EXPECT_EQ(w.world.Calls(), "");
    }
  }
}

// The local table is neither stored nor removed, and no outside call is made for it.
TEST(Refusals, OfAHostWithoutAdapters) {
  const std::pair<std::string, Change> cases[] = {
      {"U", {"CreateKVR"}},           {"M", {"DeleteKVR"}},
      {"M", {"CreateAsgA", "", "S"}}, {"M", {"CreateAsgW", "", "S"}},
      {"M", {"DeleteAsg", "E"}},      {"M", {"ModifyReservedIndexCount", "E", "", 3}},
      {"K", {"AssignNewMSC"}}};
  for (const auto &[host, change] : cases) {
    const Stage w;
    w.world.Plant("K 5=21 s5");
    w.world.As(host);
    const std::uint32_t count = std::exchange(kvr::g_localAdapterCount, 0);
    EXPECT_EQ(Make(w.world, change), KVR_ERR_NO_LOCAL_ADAPTER) << change.function;
    EXPECT_EQ(w.world.Calls().find(":" + host), std::string::npos);
    kvr::g_localAdapterCount = count;
  }
}

}  // namespace
