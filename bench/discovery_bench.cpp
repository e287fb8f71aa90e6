// How much a discovery costs beside what it cannot do without: the same outside calls, and for each
// host one zeroed allocation and one copy of its record. Both are measured in turn in one run, so
// that the ratio means something on a noisy machine.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

#include "kvrapi/kvrapi.h"
#include "kvrapi/tqlink.h"
#include "kvrapi/vexonet.h"

#include "discovery/initialization.h"
#include "fabric/current.h"
#include "fabric/network.h"
#include "model/local_state.h"
#include "model/release.h"
#include "model/system_record.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t GROUPS = 200;
constexpr std::size_t SERVERS_PER_GROUP = 10;

void Require(std::uint32_t result) {
  if (result != KVR_OK) throw std::runtime_error("result " + std::to_string(result));
}

// One outside call of a discovery, ready to be repeated.
struct RecordedCall {
  enum class Kind { First, Next, ReadHeader, ReadAccess, Other } kind;
  std::uint32_t words[4];
};

// The MSC of a network of the given number of hosts, all in the ACG, with groups among them.
class SecuredNetwork {
 public:
  explicit SecuredNetwork(std::size_t hosts)
      : network_(std::make_shared<fabric::Network>(
            fabric::MakeDescription(static_cast<std::uint32_t>(hosts), 1), "")) {
    network_->SetLocalHost(network_->Hosts()[0].name);
    fabric::SetCurrentNetwork(network_);
    kvr::ReleaseLocalState();
    kvr::g_apiInitialized = 0;
    kvr::g_securityActive = kvr::g_isSecureClient = kvr::g_isMsc = 0;
    KVR_Initialize();
    Require(KVR_DiscoverServers(nullptr, 0));
    Require(KVR_CreateKVR(nullptr));
    Secure();
    Record();
  }

  const std::vector<RecordedCall> &Calls() const { return calls_; }

 private:
  void Secure() {
    std::uint32_t count = KVR_GetUnsecureServerCount();
    std::vector<KVR_SYSTEM> systems(count);
    Require(KVR_GetUnsecureServers(systems.data(), &count));
    for (KVR_SYSTEM system : systems)
      Require(KVR_AddServerToACG(system));
    const std::size_t groups = std::min(GROUPS, systems.size() / 2);
    for (std::size_t i = 0; i < groups; ++i) {
      KVR_GROUP group = nullptr;
      const std::string name = "group-" + std::to_string(i);
      Require(KVR_CreateAsgA(nullptr, name.c_str(), systems[i], nullptr, &group));
      for (std::size_t j = 0; j < std::min(SERVERS_PER_GROUP, groups); ++j) {
        Require(KVR_AddServerToAsg(group, systems[(i * 7 + j) % systems.size()]));
      }
    }
  }

  void Record() {
    network_->SetLogging(true);
    Require(KVR_DiscoverServers(nullptr, 0));
    for (const fabric::CallRecord &call : network_->TakeLog())
      calls_.push_back(Recorded(call));
    network_->SetLogging(false);
  }

  static RecordedCall::Kind KindOf(std::string_view function) {
    if (function == "Vexo_GetFirstSystem") return RecordedCall::Kind::First;
    if (function == "Vexo_GetNextSystem") return RecordedCall::Kind::Next;
    if (function == "TQ_ReadSaTableHeader") return RecordedCall::Kind::ReadHeader;
    if (function == "TQ_ReadAccessControlTable") return RecordedCall::Kind::ReadAccess;
    return RecordedCall::Kind::Other;
  }

  RecordedCall Recorded(const fabric::CallRecord &call) const {
    RecordedCall recorded{KindOf(call.function), {}};
    if (call.adapter.has_value()) {
      const fabric::AdapterAddress address = network_->AddressOf(call.host, *call.adapter);
      std::memcpy(recorded.words, address.credential.data(), 8);
      std::memcpy(recorded.words + 2, address.id.data(), 8);
    }
    return recorded;
  }

  std::shared_ptr<fabric::Network> network_;
  std::vector<RecordedCall> calls_;
};

// The least that a discovery has to do; its records go on living like the library's.
class Floor {
 public:
  explicit Floor(const std::vector<RecordedCall> &calls)
      : calls_(calls), delivered_(std::make_unique<DiscoveredSystem>()) {}
  ~Floor() { Release(); }
  Floor(const Floor &) = delete;
  Floor &operator=(const Floor &) = delete;

  void Run() {
    Vexo_RegisterCallBack([](std::uint32_t, std::uint32_t) {}, 4, 0);
    Vexo_Startup(1);
    bool probed = false;  // the first record delivered only tells that there are some
    for (const RecordedCall &call : calls_) {
      if (!Repeat(call)) continue;
      if (probed) Keep();
      probed = true;
    }
    Vexo_Terminate();
  }

  void Release() {
    for (void *record : records_)
      std::free(record);
    records_.clear();
  }

 private:
  void Keep() {
    void *record = std::calloc(1, sizeof(kvr::SystemRecord));
    std::memcpy(record, delivered_.get(), sizeof(DiscoveredSystem));
    records_.push_back(record);
  }

  // Makes an outside call; whether it delivered a record.
  bool Repeat(const RecordedCall &call) {
    using Kind = RecordedCall::Kind;
    const auto &w = call.words;
    if (call.kind == Kind::First) return Vexo_GetFirstSystem(delivered_.get()) != 0;
    if (call.kind == Kind::Next) return Vexo_GetNextSystem(delivered_.get()) != 0;
    if (call.kind == Kind::ReadHeader) {
      std::uint32_t bytes = KVR_SA_TABLE_HEADER_SIZE;
      TQ_ReadSaTableHeader(w[0], w[1], w[2], w[3], &header_, &bytes);
    } else if (call.kind == Kind::ReadAccess) {
      std::uint32_t entries = KVR_POSITION_COUNT;
      TQ_ReadAccessControlTable(w[0], w[1], w[2], w[3], &table_, &entries);
    }
    return false;
  }

  const std::vector<RecordedCall> &calls_;
  std::unique_ptr<DiscoveredSystem> delivered_;
  std::vector<void *> records_;
  SaTableHeader header_ = {};
  AccessControlTable table_ = {};
};

template <class Work>
double SecondsFor(Work work) {
  const Clock::time_point begin = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

// In turn the floor and the library, each from a heap without records of the other. Where a
// discovery replaces an earlier one, letting that one go is part of it.
void Measure(benchmark::State &state, bool replacing) {
  const SecuredNetwork network(static_cast<std::size_t>(state.range(0)));
  Floor floor(network.Calls());
  kvr::ReleaseModel();
  double floorSeconds = 0;
  double librarySeconds = 0;
  const auto discover = [] { KVR_DiscoverServers(nullptr, 0); };
  for ([[maybe_unused]] auto iteration : state) {
    if (replacing) floor.Run();
    floorSeconds += SecondsFor([&] {
      floor.Release();
      floor.Run();
    });
    floor.Release();
    if (replacing) discover();
    const double seconds = SecondsFor(discover);
    kvr::ReleaseModel();
    librarySeconds += seconds;
    state.SetIterationTime(seconds);
  }
  const auto iterations = static_cast<double>(state.iterations());
  state.counters["floor_ms"] = 1e3 * floorSeconds / iterations;
  state.counters["library_ms"] = 1e3 * librarySeconds / iterations;
  state.counters["ratio"] = librarySeconds / floorSeconds;
}

void Discover(benchmark::State &state) {
  Measure(state, false);
}
void DiscoverAgain(benchmark::State &state) {
  Measure(state, true);
}

BENCHMARK(Discover)->RangeMultiplier(10)->Range(10, 10000)->UseManualTime();
BENCHMARK(DiscoverAgain)->RangeMultiplier(10)->Range(10, 10000)->UseManualTime();

}  // namespace
