// The refusals of every change in their order: what is wrong is put right one after another, so
// that each code shows although everything after it is wrong as well.
#include <optional>
#include <utility>

#include "support/world.h"

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
                     const std::function<std::uint32_t()> &change) {
    kvr::g_isBackupMsc = 1;
    Repairs repairs = {{KVR_ERR_IS_BACKUP_MSC, BeNoBackup},
                       {KVR_ERR_INVALID_HANDLE, [&] { group = Group("?"); }}};
    if (givesSystem) repairs.emplace_back(KVR_ERR_INVALID_HANDLE, [&] { system = s; });
    repairs.emplace_back(KVR_ERR_OFFLINE_GROUP, [&] { group = right; });
    repairs.insert(repairs.end(), rest.begin(), rest.end());
    Expect(repairs, change);
  }

  // A client whose slot went in a deletion of the configuration that stopped halfway.
  static Repairs::value_type LostSlot(KVR_GROUP of) {
    const std::int32_t slot = std::exchange(of->client->saIndex, -1);
    return {KVR_ERR_SYSTEM_NOT_IN_ACG, [=] { of->client->saIndex = slot; }};
  }

  const char *Name() const { return name ? name->c_str() : nullptr; }
  const KVR_WCHAR *WideName() {
    if (name) units.assign(name->begin(), name->end());
    return name ? units.c_str() : nullptr;
  }

  World world{{"M 5=3 10=4 11=8 12=8 13=4", "A 10=1 11=14 12=18 s5", "D 12=1 s5", "E 13=1 s5",
               "S s5", "U", "K"}};
  std::uint32_t started = world.As("M");
  KVR_SYSTEM s = System("S"), system = reinterpret_cast<KVR_SYSTEM>(Group("A"));
  KVR_GROUP a = Group("A"), d = Group("D"), e = Group("E"), group = reinterpret_cast<KVR_GROUP>(s);
  std::optional<std::string> name;
  std::u16string units;
};

const std::string kLongest(31, 'x');

TEST(Refusals, OfCreateAsg) {
  for (const bool wide : {false, true}) {
    Stage w;
    std::uint32_t reserve = 9;
    KVR_GROUP made = w.group;
    w.s->saIndex = 7;
    w.s->inAcg = 0;
    kvr::g_isBackupMsc = 1;
    w.Expect(
        {{KVR_ERR_IS_BACKUP_MSC, BeNoBackup},
         {KVR_ERR_INVALID_HANDLE, [&] { w.group = Group("?"); }},
         {KVR_ERR_INVALID_HANDLE, [&] { w.system = nullptr; }},
         {KVR_ERR_INVALID_HANDLE, [&] { w.system = w.s; }},
         {KVR_ERR_OFFLINE_GROUP, [&] { w.group = w.a; }},
         {KVR_ERR_ALREADY_CLIENT, [&] { w.s->saIndex = -1; }},
         {KVR_ERR_INVALID_NAME, [&] { w.name = kLongest + 'x'; }},
         {KVR_ERR_INVALID_NAME, [&] { w.name = kLongest; }},
         {KVR_ERR_SYSTEM_NOT_IN_ACG, [&] { w.s->inAcg = 1; }},
         {KVR_ERR_INVALID_HANDLE, [&] { ListInsertSorted(w.a->servers, w.s); }},
         {KVR_ERR_NO_FREE_INDEX, [&] { w.world.Plant("A 10=1 11=14 12=18 14=10 15=10"); }}},
        [&] {
          EXPECT_EQ(made, reinterpret_cast<KVR_GROUP>(w.s)) << "untouched by a refusal";
          if (!wide) return KVR_CreateAsgA(w.group, w.Name(), w.system, &reserve, &made);
          return KVR_CreateAsgW(w.group, w.WideName(), w.system, &reserve, &made);
        },
        KVR_ERR_RESERVED_COUNT_REDUCED);
    EXPECT_TRUE(made == Group("S") && reserve == 1);
  }
}

TEST(Refusals, OfRenameAsg) {
  for (const bool wide : {false, true}) {
    Stage w;
    w.ExpectOfGroup(w.e, false,
                    {{KVR_ERR_INVALID_NAME, [&] { w.name = ""; }},
                     {KVR_ERR_INVALID_NAME, [&] { w.name = kLongest + 'x'; }},
                     {KVR_ERR_INVALID_NAME, [&] { w.name = kLongest; }}},
                    [&] {
                      return wide ? KVR_RenameAsgW(w.group, w.WideName())
                                  : KVR_RenameAsgA(w.group, w.Name());
                    });
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
  EXPECT_TRUE(Same(*w.world->Image("S"), MakeImage("S s5 s12")));
  TakeFirst(w.d->servers);
  w.group = nullptr, w.system = nullptr;
  w.ExpectOfGroup(
      w.d, true,
      {{KVR_ERR_NOT_ASG_SERVER, [&] { ListInsertSorted(w.d->servers, w.s); }}, w.LostSlot(w.d)},
      [&] { return KVR_RemoveServerFromAsg(w.group, w.system); });
  EXPECT_TRUE(Same(*w.world->Image("S"), MakeImage("S s5")));
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
}

// Changes that take no argument to be wrong, and all on the hosts that are not the MSC.
TEST(Refusals, OfTheConfiguration) {
  const auto create = [] { return KVR_CreateKVR(nullptr); };
  const auto enable = [] { return KVR_EnableSwitchAccess(1); };
  const struct {
    const char *hosts;  // as each of these
    std::function<std::uint32_t()> change;
    std::uint32_t code;
  } cases[] = {{"A K S", create, KVR_ERR_NOT_MSC},
               {"M", create, KVR_ERR_ALREADY_MSC},
               {"A K S", KVR_DeleteKVR, KVR_ERR_NOT_MSC},
               {"U", KVR_DeleteKVR, KVR_ERR_NOT_SECURED},
               {"A K S", KVR_GenerateNewKeys, KVR_ERR_NOT_MSC},
               {"A K S", enable, KVR_ERR_NOT_MSC}};
  const Stage w;
  w.world.Plant("K 5=21 s5");
  for (const auto &[hosts, change, code] : cases) {
    for (const std::string &host : Words(hosts)) {
      w.world.As(host);
      w.Expect({{code, [] {}}}, change, code);
      EXPECT_EQ(w.world.Calls(), "");
    }
  }
}

// The local table is neither stored nor removed, and no outside call is made for it.
TEST(Refusals, OfAHostWithoutAdapters) {
  std::uint32_t three = 3;
  const std::pair<const char *, std::function<std::uint32_t()>> cases[] = {
      {"U", [] { return KVR_CreateKVR(nullptr); }},
      {"M", KVR_DeleteKVR},
      {"M", [] { return Create("", "S", 0); }},
      {"M", [] { return KVR_CreateAsgW(nullptr, u"s", System("S"), nullptr, nullptr); }},
      {"M", [] { return KVR_DeleteAsg(Group("E")); }},
      {"M", [&] { return KVR_ModifyReservedIndexCount(Group("E"), &three); }},
      {"K", [] { return KVR_AssignNewMSC(nullptr); }}};
  for (const auto &[host, change] : cases) {
    const Stage w;
    w.world.Plant("K 5=21 s5");
    w.world.As(host);
    const std::uint32_t count = std::exchange(kvr::g_localAdapterCount, 0);
    EXPECT_EQ(change(), KVR_ERR_NO_LOCAL_ADAPTER) << host;
    EXPECT_EQ(w.world.Calls().find(std::string(":") + host), std::string::npos);
    kvr::g_localAdapterCount = count;
  }
}

}  // namespace
