#include "fabric/network.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <thread>

#include "fabric/current.h"
#include "scratch_folder.h"

namespace fabric {
namespace {

struct Words {
  std::uint32_t cred0, cred1, id0, id1;
};

Words ToWords(const AdapterAddress &address) {
  Words words{};
  std::memcpy(&words.cred0, address.credential.data(), 8);
  std::memcpy(&words.id0, address.id.data(), 8);
  return words;
}

// The results of all calls to one adapter, one digit each; the last two remove and write the table.
std::string CallAll(const AdapterAddress &address) {
  const auto [c0, c1, i0, i1] = ToWords(address);
  auto table = std::make_unique<SaTable>();
  std::uint32_t bytes = KVR_SA_TABLE_SIZE, head = KVR_SA_TABLE_HEADER_SIZE,
                entries = KVR_POSITION_COUNT;
  std::string results;
  for (const std::uint32_t result :
       {TQ_ReadSaTable(c0, c1, i0, i1, table.get(), &bytes),
        TQ_ReadSaTableHeader(c0, c1, i0, i1, table.get(), &head),
        TQ_ReadAccessControlTable(c0, c1, i0, i1, table.get(), &entries),
        TQ_WriteSaTableHeader(c0, c1, i0, i1, table.get()),
        TQ_WriteAccessControlTable(c0, c1, i0, i1, table.get()),
        TQ_WriteKeyTable(c0, c1, i0, i1, table.get()), TQ_syncSecurityConfig(c0, c1, i0, i1),
        TQ_RemoveSaTable(c0, c1, i0, i1), TQ_WriteSaTable(c0, c1, i0, i1, table.get())}) {
    results += std::to_string(result);
  }
  return results;
}

// Hosts "here" (the local one), "there" and "bare", the last without credentials; two adapters
// each.
Description ThreeHosts() {
  Description description;
  description.delayMs = 1;
  for (const char *name : {"here", "there", "bare"}) {
    Host &host = description.hosts.emplace_back();
    host.name = name;
    host.wideName = u"\u03A9";
    for (std::uint8_t port = 1; port <= 2; ++port) {
      Adapter &adapter = host.adapters.emplace_back();
      adapter.id = {port, static_cast<std::uint8_t>(name[0])};
      adapter.reachIds = {{9}, {port}};
      if (host.name != "bare") adapter.credential = Id8{0xC0, port, 0, 0, 0, 0, 0, 1};
    }
  }
  return description;
}

class NetworkTest : public testing::Test {
 protected:
  ~NetworkTest() override { SetCurrentNetwork(nullptr); }

  Network &Use(const Description &description = ThreeHosts()) {
    auto network = std::make_shared<Network>(description, "here");
    SetCurrentNetwork(network);
    SaTable image{};
    image.header.formatId = KVR_SA_TABLE_FORMAT_ID;
    for (const Host &host : network->Hosts())
      network->PlantImage(host.name, image);
    return *network;
  }
};

TEST_F(NetworkTest, AnswersOnlyWhereARealOneWould) {
  const Id8 zero{};
  const struct {
    const char *situation;
    std::function<void(Network &)> arrange;
    std::string host;
    std::uint32_t adapter;
    std::optional<Id8> credential;  // none: the right one
    std::string results;
  } cases[] = {
      {"remote", {}, "there", 0, {}, "000000000"},
      {"remote, second adapter", {}, "there", 1, {}, "000000000"},
      {"remote, zero credential", {}, "there", 0, zero, "111111111"},
      {"remote, credential of the other adapter",
       {},
       "there",
       0,
       Id8{0xC0, 2, 0, 0, 0, 0, 0, 1},
       "111111111"},
      {"remote without credential", {}, "bare", 0, zero, "000000000"},
      {"remote without credential, given one", {}, "bare", 0, Id8{1}, "111111111"},
      {"local", {}, "here", 0, zero, "000000000"},
      {"local by its credential", {}, "here", 0, {}, "111111111"},
      {"local, second adapter", {}, "here", 1, zero, "111111111"},
      {"local, seen from elsewhere", [](Network &n) { n.SetLocalHost("bare"); }, "here", 0, zero,
       "111111111"},
      {"no table", [](Network &n) { n.RemoveImage("there"); }, "there", 0, {}, "111111110"},
      {"host down", [](Network &n) { n.SetHostUp("there", false); }, "there", 1, {}, "111111111"},
      {"adapter down",
       [](Network &n) { n.SetAdapterUp("there", 0, false); },
       "there",
       0,
       {},
       "111111111"},
      {"other adapter down",
       [](Network &n) { n.SetAdapterUp("there", 0, false); },
       "there",
       1,
       {},
       "000000000"},
  };
  for (const auto &[situation, arrange, host, adapter, credential, results] : cases) {
    Network &network = Use();
    if (arrange) arrange(network);
    AdapterAddress address = network.AddressOf(host, adapter);
    if (credential) address.credential = *credential;
    const ImageSet before = network.Images();
    EXPECT_EQ(CallAll(address), results) << situation;
    EXPECT_EQ(network.Images() == before, results == "111111111") << situation;
  }
  Use();
  EXPECT_EQ(CallAll({zero, Id8{0xEE}}), "111111111") << "unknown identity";
}

TEST_F(NetworkTest, ViewsCoverTheirBytesAndNoOthers) {
  Network &network = Use();
  const auto viewOf = [](std::size_t offset) {
    if (offset < 512) return View::kHeader;
    const std::size_t inEntry = (offset - 512) % 160;
    return inEntry < 8 ? View::kWhole : inEntry < 24 ? View::kAccess : View::kKeys;
  };
  const std::vector<std::uint8_t> content(sizeof(SaTable), 0x77);
  for (const View view : {View::kHeader, View::kAccess, View::kKeys}) {
    network.PlantImage("there", SaTable{});
    ASSERT_EQ(network.Write(view, network.AddressOf("there"), content.data()), 0u);
    const auto image = network.Images().at("there");
    for (std::size_t i = 0; i < image.size(); ++i) {
      ASSERT_EQ(image[i], viewOf(i) == view ? 0x77 : 0) << i;
    }
  }
  SaTable numbered{};
  for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n)
    numbered.entries[n].access = {n, 1, 2, 3};
  network.PlantImage("there", numbered);
  AccessControlTable access{};
  EXPECT_NE(network.Read(View::kAccess, network.AddressOf("there"), &access, 255), 0u);
  EXPECT_EQ(access.entries[254].serveFlags, 0xA5A5A5A5);
  EXPECT_EQ(network.Read(View::kAccess, network.AddressOf("there"), &access, 256), 0u);
  EXPECT_EQ(access.entries[254].serveFlags, 254u);
}

TEST_F(NetworkTest, LocalAdaptersEndWithTheLast) {
  Network &network = Use();
  std::uint32_t request[2] = {};
  LocalAdapterInfo info{};
  EXPECT_EQ(TQ_GetNumberOfLocalAdapters(), 2u);
  EXPECT_NE(TQ_GetLocalHBAInfo(request, &info), 0u);
  request[1] = 1;
  EXPECT_EQ(TQ_GetLocalHBAInfo(request, &info), 0u);
  EXPECT_EQ(std::memcmp(info.localAdapterId, network.Hosts()[0].adapters[1].id.data(), 8), 0);
  network.SetHostUp("here", false);
  EXPECT_EQ(TQ_GetNumberOfLocalAdapters(), 0u);
  network.SetLocalHost("nobody");
  EXPECT_EQ(TQ_GetNumberOfLocalAdapters(), 0u);
}

TEST_F(NetworkTest, FaultsHitTheirCallsAndTheLogShowsThem) {
  Description description = ThreeHosts();
  description.faults = {{"there", 1, "TQ_syncSecurityConfig", 2, 2}};
  Network &network = Use(description);
  network.SetLogging(true);
  const auto results = [&](const std::string &host, std::uint32_t adapter, int calls) {
    std::string digits;
    while (calls-- > 0) {
      digits += std::to_string(network.Synchronize(network.AddressOf(host, adapter)));
    }
    return digits;
  };
  EXPECT_EQ(results("there", 0, 3), "000");
  EXPECT_EQ(results("there", 1, 5), "01100");
  EXPECT_EQ(results("bare", 0, 2), "00");
  network.FailCall(2);
  EXPECT_EQ(results("there", 0, 3), "010");
  network.FailFromCall(3);
  EXPECT_EQ(results("bare", 0, 5), "00111");
  EXPECT_EQ(TQ_GetNumberOfLocalAdapters(), 0u);
  network.ClearFaults();
  EXPECT_EQ(results("bare", 0, 1), "0");
  EXPECT_EQ(network.TqCallCount(), 20u);

  const SaTable table{};
  network.TakeLog();
  network.Write(View::kHeader, network.AddressOf("there", 1), &table);
  const auto log = network.TakeLog();
  ASSERT_EQ(log.size(), 1u);
  EXPECT_EQ(log[0].function, "TQ_WriteSaTableHeader");
  EXPECT_EQ(log[0].host, "there");
  EXPECT_EQ(log[0].adapter, 1u);
  EXPECT_EQ(log[0].payload.size(), KVR_SA_TABLE_HEADER_SIZE);
}

// What the callback below does and sees.
std::atomic<int> g_events;
std::atomic<bool> g_terminate;
std::atomic<bool> g_drop;
std::string g_delivered;

std::string Enumerate() {
  DiscoveredSystem system;
  std::string names;
  for (auto more = Vexo_GetFirstSystem(&system); more != 0; more = Vexo_GetNextSystem(&system)) {
    names += std::string(system.systemName) + (system.excluded != 0 ? "! " : " ");
  }
  return names;
}

void OnSystems(std::uint32_t, std::uint32_t) {
  Vexo_PauseDiscovery();
  g_delivered = Enumerate();
  if (g_terminate) Vexo_Terminate();
  if (g_drop) SetCurrentNetwork(nullptr);
  ++g_events;
}

void StartAndWait(int events) {
  Vexo_RegisterCallBack(OnSystems, 4, 0);
  Vexo_Startup(1);
  for (int i = 0; i < 5000 && g_events < events; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  ASSERT_EQ(g_events, events);
}

TEST_F(NetworkTest, KnownSystemsAreDeliveredAtOnce) {
  Description description = ThreeHosts();
  description.hosts[1].up = false;
  description.hosts[2].excluded = true;
  Use(description);
  EXPECT_EQ(Enumerate(), "") << "not started";
  Vexo_RegisterCallBack(OnSystems, 4, 0);
  Vexo_Startup(1);
  EXPECT_EQ(Enumerate(), "there bare! ");
  DiscoveredSystem system;
  ASSERT_NE(Vexo_GetFirstSystem(&system), 0u);
  EXPECT_EQ(system.systemNameW[0], KVR_WCHAR{0x3A9});
  ASSERT_EQ(system.adapterCount, 2u);
  EXPECT_EQ(system.adapters[1].reachIdCount, 2u);
  EXPECT_EQ(system.adapters[1].reachIds[1][0], 2);
  EXPECT_EQ(system.adapters[1].adapterId[1], 't');
  EXPECT_EQ(system.adapters[1].credential[1], 2);
  EXPECT_EQ(system.adapters[1].credentialValid, 1u);
  ASSERT_NE(Vexo_GetNextSystem(&system), 0u);
  EXPECT_EQ(system.adapters[0].credentialValid, 0u);
  Vexo_Terminate();
  Vexo_StartDiscoveryCycle();
  EXPECT_EQ(Enumerate(), "") << "shut down";
}

TEST_F(NetworkTest, LateSystemsAreAnnouncedInEveryCycle) {
  g_events = 0;
  g_terminate = true;
  Description description = ThreeHosts();
  description.knownAtStart = false;
  Use(description);
  for (int cycle = 1; cycle <= 3; ++cycle) {
    StartAndWait(cycle);
    EXPECT_EQ(g_delivered, "there bare ");
    EXPECT_EQ(Enumerate(), "") << "shut down by the callback";
  }
  g_terminate = false;
  StartAndWait(4);
  EXPECT_EQ(Enumerate(), "there bare ");

  description.hosts.resize(1);
  description.knownAtStart = true;
  Use(description);
  StartAndWait(5);
  EXPECT_EQ(g_delivered, "") << "a lone host is told that there is nobody";
  g_drop = true;
  Use(description);
  StartAndWait(6);  // the network ends within the callback, on its own thread
  g_drop = false;
}

TEST_F(NetworkTest, SearchGivenUpIsNotAnnounced) {
  g_events = 0;
  Description description = ThreeHosts();
  description.knownAtStart = false;
  description.delayMs = 20;
  Use(description);
  for (const auto stop : {Vexo_PauseDiscovery, Vexo_Terminate}) {
    Vexo_RegisterCallBack(OnSystems, 4, 0);
    Vexo_Startup(1);
    stop();
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
    EXPECT_EQ(g_events, 0);
    Vexo_Terminate();
  }
  description.delayMs = 0xFFFFFFFF;
  Use(description);
  Vexo_Startup(1);  // the end of the network must not wait for this event
}

TEST_F(NetworkTest, UnusableEnvironmentIsExplainedOnce) {
  const ScratchFolder folder;
  folder.Put("fabric.toml", "[[host]]\nname = \"a\"\n");
  const std::string path = folder.Path().string();
  const struct {
    std::string fabric, host, complaint;
  } cases[] = {
      {"", "a", "set KVR_FABRIC"},
      {path, "", "KVR_HOST"},
      {path, "b", "KVR_HOST is 'b'"},
      {path + "/tables", "a", "fabric.toml:1: "},
  };
  for (const auto &[fabric, host, complaint] : cases) {
    setenv("KVR_FABRIC", fabric.c_str(), 1);
    setenv("KVR_HOST", host.c_str(), 1);
    SetCurrentNetwork(nullptr);
    testing::internal::CaptureStderr();
    EXPECT_EQ(TQ_GetNumberOfLocalAdapters() + Vexo_Startup(1), 0u);
    EXPECT_EQ(Enumerate(), "");
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find(complaint), std::string::npos) << said;
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
  }
}

}  // namespace
}  // namespace fabric
