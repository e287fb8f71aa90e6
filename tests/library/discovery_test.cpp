// The load of this host's role, discovery with and without an event, and synchronization.
#include "discovery/discovery.h"

#include <thread>

#include "kvrapi/vexonet.h"

#include "support/world.h"

using namespace kvrtest;

namespace {

bool g_eventAtRegistration = false;

// The cycle of a former discovery may end while the next one registers.
extern "C" std::uint32_t __real_Vexo_RegisterCallBack(VEXO_CALLBACK, std::uint32_t, std::uint32_t);
extern "C" std::uint32_t __wrap_Vexo_RegisterCallBack(VEXO_CALLBACK callback, std::uint32_t four,
                                                      std::uint32_t zero) {
  const std::uint32_t result = __real_Vexo_RegisterCallBack(callback, four, zero);
  if (g_eventAtRegistration) callback(0, 0);
  return result;
}

TEST(Initialization, DerivesTheRoleFromTheLocalTable) {
  const std::pair<const char *, const char *> cases[] = {
      // table, active + secure client + MSC + backup + switch access, slot
      {"M 5=0", "00000 -1"},
      {"M s7", "10000 -1"},
      {"M 0=1", "11000 0"},
      {"M 245=3", "11100 245"},
      {"M 246=1 247=3 s247", "00000 -1"},
      {"M 5=21 s246", "11011 5"},
      {"M 5=23", "11100 5"},
      {"M 3=3 9=1", "11100 9"},
      {"M 3=21 9=3", "11110 9"},
      {"M 3=2 4=20", "00000 -1"},
      {"M s246", "00001 -1"}};
  const World world({"M", "A"});
  for (const auto &[table, role] : cases) {
    world.Plant(table);
    EXPECT_EQ(world.Start("M"), KVR_OK);
    EXPECT_EQ(
        fmt::format("{:d}{}{}{}{} {}", KVR_SecurityState() == KVR_OK, KVR_IsSecureClient(),
                    KVR_IsMSC(), KVR_IsBackupMSC(), KVR_IsSwitchAccessEnabled(), kvr::g_localIndex),
        role)
        << table;
    EXPECT_EQ(KVR_GetAsgCount(), 0u);
  }
}

TEST(Initialization, LoadsOncePerProcess) {
  const std::tuple<const char *, std::uint32_t, std::uint32_t, const char *> cases[] = {
      // host, ordinal (from 1) of its adapter whose description ends the enumeration, result, calls
      {"X", 0, KVR_ERR_NO_LOCAL_ADAPTER, ""},
      {"M", 0, KVR_OK, " {0}:M {0}:M1 {0}:M2 ReadSaTable:M"},
      {"M", 2, KVR_OK, " {0}:M {0}:M1 ReadSaTable:M"},
      {"M", 1, KVR_ERR_NOT_SECURED, " {0}:M ReadSaTable!"},
      {"A", 0, KVR_ERR_NOT_SECURED, " {0}:A {0}:A1 {0}:A2 ReadSaTable:A!"}};
  for (const auto &[host, faultyAdapter, result, calls] : cases) {
    const std::uint32_t again = *host == 'X' ? KVR_ERR_NO_LOCAL_ADAPTER : KVR_OK;
    const World world({"M 5=3", "A"}, 3);
    if (faultyAdapter != 0) world->AddFault({"M", {}, "TQ_GetLocalHBAInfo", faultyAdapter, 1});
    EXPECT_EQ(world.Start(host), result);
    const std::string local = *calls != 0 ? std::string(":") + host : "";
    EXPECT_EQ(world.Calls(), "InitLib" + local + " GetNumberOfLocalAdapters" + local +
                                 fmt::format(fmt::runtime(calls), "GetLocalHBAInfo"));
    EXPECT_EQ(KVR_Initialize(), again);
    EXPECT_EQ(world.Calls(), "");
    EXPECT_EQ(KVR_SecurityState(), again != KVR_OK ? KVR_ERR_NOT_INITIALIZED : result);
    EXPECT_EQ(KVR_IsMSC(), result == KVR_OK ? 1u : 0u);
    EXPECT_EQ(kvr::g_localAdapterCount, again == KVR_OK ? 3u : 0u);
  }
}

const std::thread::id kTestThread = std::this_thread::get_id();
std::atomic<std::uintptr_t> g_completed = 0;

// The context, the members in the model at that moment, and whether on the caller's thread.
void OnComplete(std::uintptr_t context) {
  g_completed +=
      context + KVR_GetAcgServerCount() * 10 + (std::this_thread::get_id() == kTestThread);
}

const std::vector<std::string> kHosts = {"M 5=3 s246", "A s5", "B", "X excluded s5"};
const std::string kCollection =
    "PauseDiscovery GetFirstSystem:A ReadSaTableHeader:A ReadAccessControlTable:A "
    "GetNextSystem:B ReadSaTableHeader:B! GetNextSystem:X GetNextSystem Terminate";

void AwaitEnd() {
  while (kvr::g_discoveryActive != 0) std::this_thread::yield();
}

TEST(Discovery, CollectsOnceInEveryMode) {
  for (const unsigned mode : {0u, 1u, 2u, 3u}) {
    const bool known = (mode & 1) != 0, waiting = (mode & 2) != 0;
    const std::uintptr_t completed = waiting ? 0 : known ? 7011 : 7010;
    const World world(kHosts, 1, known);
    world.Start("M");
    world.Calls();
    g_completed = 0;
    EXPECT_EQ(KVR_DiscoverServers(waiting ? nullptr : OnComplete, 7000), KVR_OK);
    EXPECT_EQ(g_completed, known ? completed : 0u) << "does not wait for the event";
    if (!waiting) AwaitEnd();
    EXPECT_EQ(kvr::g_discoveryActive, 0u);
    EXPECT_EQ(world.Calls(true),
              "RegisterCallBack Startup GetFirstSystem" +
                  (known ? ":A " + kCollection + " StartDiscoveryCycle" : " " + kCollection));
    EXPECT_EQ(g_completed, completed);
    const std::string model = Model();
    kvr::OnDiscoveryEvent(1, 2);
    EXPECT_EQ(world.Calls(true), "") << "a second event does nothing";
    KVR_DiscoverServers(nullptr, 0);
    EXPECT_EQ(Model(), model);
    EXPECT_EQ(KVR_IsSwitchAccessEnabled(), 1u) << "kept where a registry was released";
  }
}

TEST(Discovery, ServesACallMadeWhileWaitingWithThePendingEvent) {
  const World world(kHosts, 1, false);
  world.As("M");
  g_completed = 0;
  KVR_DiscoverServers(OnComplete, 1000);
  KVR_DiscoverServers(nullptr, 0);
  EXPECT_EQ(world.Calls(true), "RegisterCallBack Startup GetFirstSystem " + kCollection);
  EXPECT_EQ(g_completed, 0u) << "the callback given last is none";
  KVR_DiscoverServers(OnComplete, 1000);
  KVR_DiscoverServers(OnComplete, 2000);
  AwaitEnd();
  EXPECT_EQ(g_completed, 2010u);
}

TEST(Discovery, WaitsForTheEndOfTheFormerOneWhenAskedRightAfterItsCallback) {
  const World world(kHosts, 1, false);
  world.As("M");
  g_completed = 0;
  const auto lingering = [](std::uintptr_t context) {
    g_completed = context;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  };
  KVR_DiscoverServers(lingering, 1);
  while (g_completed == 0) std::this_thread::yield();
  KVR_DiscoverServers(nullptr, 0);
  EXPECT_EQ(KVR_GetAcgServerCount(), 1u);
}

TEST(Discovery, IsNotTakenByAnEventOfAFormerOne) {
  for (const bool known : {true, false}) {
    const World world(kHosts, 1, known);
    world.As("M");
    g_eventAtRegistration = true;
    for (int round = 0; round < 2; ++round) {
      KVR_DiscoverServers(nullptr, 0);
      EXPECT_EQ(world.Calls(true),
                "RegisterCallBack Startup GetFirstSystem" +
                    (known ? ":A " + kCollection + " StartDiscoveryCycle" : " " + kCollection));
    }
    g_eventAtRegistration = false;
  }
}

TEST(Discovery, AsksOnlyWhatTheRoleOfThisHostAllows) {
  const World world(kHosts);
  for (const auto &[host, calls] :
       {std::pair("B", ""), {"A", "ReadSaTableHeader:M ReadSaTableHeader:B!"}}) {
    world.Start(host);
    world.Calls();
    KVR_DiscoverServers(nullptr, 0);
    EXPECT_EQ(world.Calls(), calls);
    EXPECT_EQ(kvr::g_systemCount, 2u);
  }
}

TEST(Synchronization, AsksEverySystemAndThisHostAfterEach) {
  const World world({"M 5=3", "A s5", "B", "C s5"}, 2);
  world->SetAdapterUp("A", 0, false);
  world.Start("M");
  world.Calls();
  EXPECT_EQ(KVR_SyncDiscovery(), KVR_OK);
  EXPECT_EQ(world.Calls(), "");
  world.As("M");
  EXPECT_EQ(KVR_SyncDiscovery(), KVR_OK);
  EXPECT_EQ(world.Calls(), fmt::format("{0}:A! {0}:A1 {0}:M {0}:B! {0}:B1! {0}:M {0}:C {0}:M",
                                       "syncSecurityConfig"));
}

TEST(PushToBackups, CopiesTheAccessTableButForTheSlotOfTheMsc) {
  const World world({"M", "K 5=21 30=4 s5 s31", "L 5=21 30=4 s5 s31", "A 5=1"});
  SaTable msc = MakeImage("M 5=3 10=4 11=8 s20 s246"), pushed = *world->Image("L");
  msc.entries[255].access.reserved3 = msc.entries[5].access.reserved2 = 9;
  world->PlantImage("M", msc);
  world->AddFault({"K", {}, "TQ_WriteAccessControlTable", 1, {}});
  const fabric::ImageSet before = world->Images();
  world.As("M");
  for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n)
    pushed.entries[n].access = msc.entries[n].access;
  pushed.entries[5].access = {ACE_SERVES, ACE_SELF | ACE_BACKUP_MSC, 9, 0};
  EXPECT_EQ(fabric::ChangedHosts(before, world->Images()), std::vector<std::string>{"L"});
  EXPECT_TRUE(Same(*world->Image("L"), pushed));
}

}  // namespace
