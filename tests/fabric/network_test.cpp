#include "fabric/network.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

#include <gtest/gtest.h>

#include "fabric/current.h"

using namespace fabric;

namespace {

const std::string kAllDone = "000000000", kNoneDone = "111111111";

// The results of all calls to one adapter, one digit each; the last two remove and write the table.
std::string CallAll(Network &network, const AdapterAddress &address) {
  SaTable image;
  std::string results;
  const auto add = [&](std::uint32_t result) { results += std::to_string(result); };
  for (const View view : {View::kWhole, View::kHeader, View::kAccess})
    add(network.Read(view, address, &image, sizeof image));
  EXPECT_EQ(image.header.formatId == 0xA5A5A5A5, results == "111") << "a failed read's buffer";
  for (const View view : {View::kHeader, View::kAccess, View::kKeys})
    add(network.Write(view, address, &image));
  add(network.Synchronize(address));
  add(network.RemoveTable(address));
  add(network.Write(View::kWhole, address, &image));
  return results;
}

// Hosts "here" (the local one), "there" and "bare" without credentials; two adapters or more each.
Description ThreeHosts() {
  Description description = MakeDescription(3, 1);
  description.delayMs = 20;
  const char *name[] = {"here", "there", "bare"};
  for (std::size_t i = 0; i < description.hosts.size(); ++i) description.hosts[i].name = name[i];
  for (Adapter &adapter : description.hosts[2].adapters) adapter.credential.reset();
  return description;
}

// Makes the network current, every host with an empty table.
Network &Use(const Description &description = ThreeHosts()) {
  const auto network = std::make_shared<Network>(description, "here");
  SetCurrentNetwork(network);
  for (const Host &host : network->Hosts()) network->PlantImage(host.name, SaTable{});
  return *network;
}

TEST(Network, AnswersOnlyWhereARealOneWould) {
  const auto neighbours = ThreeHosts().hosts[1].adapters[1].credential;
  const auto portDown = [](Network &n) { n.SetAdapterUp("there", 0, false); };
  const std::tuple<const char *, std::function<void(Network &)>, std::string, std::uint32_t,
                   std::optional<Id8>, std::string>
      cases[] = {
          // situation, what leads to it, host, adapter, credential (none: the right one), results
          {"remote", {}, "there", 0, {}, kAllDone},
          {"remote, zero credential", {}, "there", 0, Id8{}, kNoneDone},
          {"remote, its neighbour's", {}, "there", 0, neighbours, kNoneDone},
          {"remote without credential", {}, "bare", 0, Id8{}, kAllDone},
          {"local", {}, "here", 0, Id8{}, kAllDone},
          {"local by its credential", {}, "here", 0, {}, kNoneDone},
          {"local, second adapter", {}, "here", 1, Id8{}, kNoneDone},
          {"not local", [](Network &n) { n.SetLocalHost("bare"); }, "here", 0, Id8{}, kNoneDone},
          {"no table", [](Network &n) { n.RemoveImage("there"); }, "there", 0, {}, "111111110"},
          {"host down", [](Network &n) { n.SetHostUp("there", false); }, "there", 1, {}, kNoneDone},
          {"adapter down", portDown, "there", 0, {}, kNoneDone},
          {"other adapter down", portDown, "there", 1, {}, kAllDone},
      };
  for (const auto &[situation, arrange, host, adapter, credential, results] : cases) {
    Network &network = Use();
    if (arrange) arrange(network);
    AdapterAddress address = network.AddressOf(host, adapter);
    address.credential = credential.value_or(address.credential);
    EXPECT_EQ(CallAll(network, address), results) << situation;
  }
  EXPECT_EQ(CallAll(Use(), {Id8{}, Id8{0xEE}}), kNoneDone) << "unknown identity";
}

TEST(Network, ViewsCoverTheirBytesAndNoOthers) {
  Network &network = Use();
  const std::vector<std::uint8_t> content(sizeof(SaTable), 0x77);
  std::ptrdiff_t covered = 0;
  for (const auto &[view, bytes] : {std::pair(View::kHeader, KVR_SA_TABLE_HEADER_SIZE),
                                    {View::kAccess, KVR_ACCESS_CONTROL_TABLE_SIZE},
                                    {View::kKeys, KVR_KEY_TABLE_SIZE}}) {
    ASSERT_EQ(network.Write(view, network.AddressOf("there"), content.data()), 0u);
    const auto image = network.Images().at("there");
    EXPECT_EQ(std::count(image.begin(), image.end(), 0x77), covered += bytes);
  }
}

TEST(Network, FaultsHitTheirCallsAndNoOthers) {
  Description description = ThreeHosts();
  description.faults = {{"there", 1, "TQ_syncSecurityConfig", 2, 2},
                        {"bare", {}, "*", 1, {}},
                        {"there", 0, "TQ_RemoveSaTable", 1, {}}};
  Network &network = Use(description);
  LocalAdapterInfo info;
  EXPECT_EQ(network.GetLocalAdapter(network.LocalAdapterCount() - 1, &info), 0u) << "the last";
  network.FailCall(1);
  network.FailFromCall(9);
  std::string results;
  for (std::uint32_t i = 0; i < 10; ++i)
    results += std::to_string(network.Synchronize(network.AddressOf("there", i % 2)));
  EXPECT_EQ(results, "1001010011");
}

std::atomic<int> g_events;
std::string g_delivered;
std::function<void()> g_end;  // what the callback does in the end

std::string Enumerate() {
  DiscoveredSystem system;
  std::string names;
  for (auto more = Vexo_GetFirstSystem(&system); more != 0; more = Vexo_GetNextSystem(&system))
    names += std::string(system.systemName) + (system.excluded != 0 ? "! " : " ");
  return names;
}

void OnSystems(std::uint32_t, std::uint32_t) {
  Vexo_PauseDiscovery();
  g_delivered = Enumerate();
  g_end();
  ++g_events;
}

// What a search announces; one that is given up, within some time.
std::string Announced(const std::function<void()> &end, std::uint32_t (*giveUp)() = nullptr) {
  g_events = 0;
  g_end = end;
  Vexo_RegisterCallBack(OnSystems, 4, 0);
  Vexo_Startup(1);
  if (giveUp != nullptr) giveUp();
  for (int i = giveUp != nullptr ? 50 : 5000; i > 0 && g_events == 0; --i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return g_events == 1 ? g_delivered : "nothing";
}

TEST(Discovery, DeliversKnownSystemsAtOnceAndLateOnesInEveryCycleUnlessGivenUp) {
  Description description = ThreeHosts();
  description.hosts[1].up = false;
  description.hosts[2].excluded = true;
  Use(description);
  Vexo_Startup(1);
  EXPECT_EQ(Enumerate(), "there bare! ");
  Vexo_Terminate();
  Vexo_StartDiscoveryCycle();
  EXPECT_EQ(Enumerate(), "") << "shut down";

  description.knownAtStart = false;
  Use(description);
  for (int cycle = 1; cycle <= 3; ++cycle) {
    EXPECT_EQ(Announced(Vexo_Terminate), "there bare! ");
    EXPECT_EQ(Enumerate(), "") << "shut down by the callback";
    EXPECT_EQ(Announced(Vexo_Terminate, Vexo_Terminate), "nothing");
  }
  EXPECT_EQ(Announced(Vexo_Terminate, Vexo_PauseDiscovery), "nothing");
  description.delayMs = 0xFFFFFFFF;
  Use(description);
  Vexo_Startup(1);
  SetCurrentNetwork(nullptr);  // must not wait for this event
}

TEST(Discovery, TellsALoneHostThatThereIsNobody) {
  Description description = ThreeHosts();
  description.hosts.resize(1);
  Use(description);
  EXPECT_EQ(Announced([] { SetCurrentNetwork(nullptr); }), "") << "ended on its own thread";
}

}  // namespace
