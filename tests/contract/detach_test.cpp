// A program that loads the library, uses it and lets it go, again and again.
#include <thread>

#include <gtest/gtest.h>

#include "../fabric/scratch_folder.h"
#include "fabric/description.h"
#include "loaded_library.h"
#include "support/process.h"

namespace {

constexpr std::uint32_t kHosts = 40;

// Whether the systems are known at the start, or an event announces them; and whether the library
// goes while the event is still to come. Waiting for an event takes a quarter of a second a life.
struct Way {
  const char *name;
  bool known, early;
  int lives;
};

// A network of the test's own, for this process and those it starts.
struct OwnNetwork {
  OwnNetwork() {
    SetVariable("KVR_FABRIC", folder.Path().string());
    SetVariable("KVR_HOST", description.hosts[0].name);
  }
  void Save(bool known, std::uint32_t delay_ms) {
    description.knownAtStart = known;
    description.delayMs = delay_ms;
    fabric::SaveDescription(folder.Path(), description);
  }
  const ScratchFolder folder;
  fabric::Description description = fabric::MakeDescription(kHosts, 1);
};

class Unload : public testing::TestWithParam<Way> {};

// One life of the library in this process; the first one makes a configuration of all hosts.
void Live(const Way &way, bool first) {
  const LoadedLibrary library(LIBRARY_KVRAPI);
  const auto call = [&](const char *name, auto... arguments) {
    return static_cast<std::uint32_t>(library.Call(name, std::uintptr_t{arguments}...));
  };
  ASSERT_EQ(call("KVR_SecurityState"), 5999u) << "knows of the life before";
  ASSERT_EQ(call("KVR_Initialize"), first ? 5004u : 0u);
  const auto ignore = reinterpret_cast<std::uintptr_t>(+[](std::uintptr_t) {});
  ASSERT_EQ(call("KVR_DiscoverServers", way.early ? ignore : 0u), 0u);
  if (way.early) return;
  if (first) {
    std::uintptr_t hosts[kHosts];
    std::uint32_t count = kHosts;
    ASSERT_EQ(call("KVR_CreateKVR"), 0u);
    ASSERT_EQ(call("KVR_GetUnsecureServers", reinterpret_cast<std::uintptr_t>(hosts),
                   reinterpret_cast<std::uintptr_t>(&count)),
              0u);
    ASSERT_EQ(count, kHosts - 1);
    for (std::uint32_t i = 0; i < count; ++i) call("KVR_AddServerToACG", hosts[i]);
  }
  EXPECT_EQ(call("KVR_GetAcgServerCount"), kHosts - 1);
}

// What the process holds more after so many lives, behind as many by which it has settled.
template <class Life>
Holdings Growth(int lives, Life life) {
  Holdings settled = HoldingsNow();
  for (int i = 0; i < 2 * lives; ++i) {
    if (i == lives) settled = HoldingsNow();
    std::thread(life).join();  // which keeps no memory for its own next call
    for (const char *library : {LIBRARY_KVRAPI, LIBRARY_TQLINK, LIBRARY_VEXONET})
      EXPECT_FALSE(LoadedLibrary::IsInProcess(library)) << library;
  }
  const Holdings now = HoldingsNow();
  return {now.bytes - settled.bytes, now.handles - settled.handles};
}

TEST_P(Unload, LeavesNothingBehind) {
  const Way way = GetParam();
  OwnNetwork network;
  network.Save(true, 1);
  Live({"", true, false, 0}, true);
  network.Save(way.known, way.early ? 60'000 : 1);

  // The compiler's runtime for threads keeps some bytes for every library that it was part of, and
  // for every lock; the C library keeps some of what it is given back for later.
  const Holdings unused = Growth(way.lives, [] { const LoadedLibrary library(LIBRARY_KVRAPI); });
  const Holdings used = Growth(way.lives, [&] { Live(way, false); });
  const auto more = static_cast<std::ptrdiff_t>(used.bytes - unused.bytes);
  EXPECT_LT(more, 256 + 48 * way.lives);
  EXPECT_LE(static_cast<std::ptrdiff_t>(used.handles), 0) << "or fewer: idle threads end";
}

TEST(Detach, EndsAProcessInTheMiddleOfADiscovery) {
  OwnNetwork network;
  network.Save(false, network.description.delayMs);
  for (const char *when : {"early", "late"})
    EXPECT_EQ(Process({LEAVER, when}).Finish().status, 7) << when;
}

INSTANTIATE_TEST_SUITE_P(Ways, Unload,
                         testing::Values(Way{"Known", true, false, 24},
                                         Way{"Announced", false, false, 5},
                                         Way{"BeforeTheEvent", false, true, 24}),
                         [](const auto &way) { return way.param.name; });

}  // namespace
