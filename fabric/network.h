// The simulated network: what the twelve TQ_ and the seven Vexo_ functions do, seen from one host.
//
// A Network is made of a description, a store of table images and the name of the local host, and
// is safe to use from several threads. Its first half is the outside functions, one member each,
// called by the C functions through current.h. Its second half is for tests: turn the local host,
// take hosts down, plan faults, plant and compare images, log calls.
//
//   Description plan = MakeDescription(3, 1);
//   auto network = std::make_shared<Network>(plan, plan.hosts[0].name);
//   SetCurrentNetwork(network);
//   ... KVR_Initialize(), operations ...
//   const ImageSet before = network->Images();
//   network->FailCall(4);                             // the fourth TQ_ call from here, once
//   ... operation ...
//   EXPECT_EQ(ChangedHosts(before, network->Images()), std::vector<std::string>{});
//
// Rules of the network
//  1. A call succeeds only at an adapter that is up, of a host that is up, with the right
//  credential:
//     8 zero bytes for the first adapter of the local host (its others answer nothing), the
//     adapter's own credential (8 zero bytes where it has none) for a remote one.
//  2. Without a table every call but TQ_WriteSaTable fails, also view writes, removal,
//  synchronization.
//  3. A failed read fills the buffer with kUndefinedByte, so that nobody gets to rely on its
//  content.
//  4. A local host that is down, unknown or without adapters has no local adapter.
//  5. Discovery delivers all hosts but the local one in the order of the description: down hosts
//  too,
//     and excluded ones with their excluded word set.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kvrapi/tqlink.h"
#include "kvrapi/vexonet.h"

#include "fabric/description.h"
#include "fabric/event_timer.h"
#include "fabric/image_store.h"

namespace fabric {

inline constexpr std::uint8_t kUndefinedByte = 0xA5;

// How a caller addresses an adapter.
struct AdapterAddress {
  Id8 credential{};
  Id8 id{};
};

// The parts of a table that are exchanged.
enum class View { kWhole, kHeader, kAccess, kKeys };

// One outside call, as the log keeps it.
struct CallRecord {
  std::string_view function;             // "TQ_ReadSaTable", "Vexo_Startup", ...
  std::string host;                      // addressed or delivered; empty: none, or unknown identity
  std::optional<std::uint32_t> adapter;  // ordinal of the adapter addressed
  std::uint32_t result = 0;
  std::vector<std::uint8_t> payload;  // the image that a write passed
};

// The images of all hosts that hold one, by host name, byte for byte.
using ImageSet = std::map<std::string, std::vector<std::uint8_t>>;

// Names of the hosts whose image appeared, disappeared or differs, in ascending order.
std::vector<std::string> ChangedHosts(const ImageSet &before, const ImageSet &after);

class Network {
 public:
  // The description is taken as checked. A null store means a MemoryStore of its own; networks that
  // share a store are hosts of one fabric.
  Network(Description description, std::string_view localHost,
          std::shared_ptr<ImageStore> images = nullptr);

  // The outside functions. Results are those of tqlink.h and vexonet.h. Buffers hold a whole image
  // of their view and need not be aligned; a null buffer is a failure.
  std::uint32_t InitLib();
  std::uint32_t LocalAdapterCount();
  std::uint32_t GetLocalAdapter(std::uint32_t ordinal, void *info);
  // capacity counts bytes, for View::kAccess entries; too little is a failure.
  std::uint32_t Read(View view, const AdapterAddress &address, void *buffer,
                     std::uint32_t capacity);
  std::uint32_t Write(View view, const AdapterAddress &address, const void *image);
  std::uint32_t RemoveTable(const AdapterAddress &address);
  std::uint32_t Synchronize(const AdapterAddress &address);

  std::uint32_t RegisterCallback(VEXO_CALLBACK callback);
  std::uint32_t Startup();
  std::uint32_t GetFirstSystem(void *record);
  std::uint32_t GetNextSystem(void *record);
  std::uint32_t PauseDiscovery();
  std::uint32_t Terminate();
  std::uint32_t StartDiscoveryCycle();

  // Announces no system any more. Waits for the end of a callback under way, unless called from it.
  void StopAnnouncing() { timer_.Stop(); }

  // Is called with the function and the host of every TQ_ call that has changed a table, before the
  // call returns; none at first. On false the call fails, although the table is changed.
  using Witness = std::function<bool(std::string_view function, const std::string &host)>;
  void SetWitness(Witness witness);

  // Hosts. A name or ordinal that the network does not have: std::out_of_range, except that any
  // name may become the local host. The reader of Hosts must not let it overlap with a change.
  [[nodiscard]] const std::vector<Host> &Hosts() const { return description_.hosts; }
  void SetLocalHost(std::string_view host);
  void SetHostUp(const std::string &host, bool up);
  void SetAdapterUp(const std::string &host, std::uint32_t ordinal, bool up);
  // What a remote host passes to reach this adapter.
  [[nodiscard]] AdapterAddress AddressOf(const std::string &host, std::uint32_t ordinal = 0) const;

  // Faults, beside those of the description. Each counts the calls that it matches from the moment
  // it is added; an empty host name matches every host and no host. Only TQ_ calls count and fail:
  // they fail before they do anything, TQ_GetNumberOfLocalAdapters and TQ_GetLocalHBAInfo with 0.
  void AddFault(Fault fault);
  void FailCall(std::uint32_t number);      // that TQ_ call from here (from 1), once
  void FailFromCall(std::uint32_t number);  // that TQ_ call from here and every later one
  void ClearFaults();                       // those of the description too

  // Images, past all rules and faults; nothing of this counts as a call.
  [[nodiscard]] std::optional<SaTable> Image(const std::string &host) const;
  void PlantImage(const std::string &host, const SaTable &image);
  void RemoveImage(const std::string &host);  // no matter if there is none
  [[nodiscard]] ImageSet Images() const;
  void RestoreImages(const ImageSet &images);  // hosts not in the set hold none afterwards

  // Calls, of TQ_ and Vexo_ functions; logging is off at first.
  void SetLogging(bool on);
  std::vector<CallRecord> TakeLog();  // the calls since logging began or the log was taken last
  void SetTrace(bool on);             // one line for each call on standard error

 private:
  static constexpr std::uint32_t kOk = 0;
  static constexpr std::uint32_t kFailed = 1;
  static constexpr std::uint32_t kNone = 0;  // the failure of functions that count or enumerate
  static constexpr std::uint32_t kDelivered = 1;

  struct Target {  // an adapter, by its place in the description
    std::uint32_t host;
    std::uint32_t ordinal;
  };
  struct ActiveFault {
    Fault fault;
    std::uint32_t seen = 0;  // calls matched so far
  };
  struct Call {  // an outside call under way
    std::string_view function;
    std::string_view host;
    std::optional<std::uint32_t> adapter;
    std::span<const std::uint8_t> payload;
  };
  // Whether systems are delivered: not before the start, and only once they are known.
  enum class Discovery { kStopped, kSearching, kKnown };

  // What a call does, to the result it has. The host of the call may be filled in.
  using Act = std::function<std::uint32_t(Call &call)>;
  // As Act, for a call that reached the named host: whether it succeeds.
  using HostAct = std::function<bool(const std::string &host)>;

  // Counts the call, lets it fail or act, and logs it.
  std::uint32_t Answer(Call call, std::uint32_t failure, const Act &act);
  std::uint32_t AnswerAdapter(std::string_view function, const AdapterAddress &address,
                              std::span<const std::uint8_t> payload, const HostAct &act);
  // As AnswerAdapter, for what changes a table.
  std::uint32_t AnswerWrite(std::string_view function, const AdapterAddress &address,
                            std::span<const std::uint8_t> payload, const HostAct &act);
  void Record(const Call &call, std::uint32_t result, std::chrono::steady_clock::time_point begin);
  bool IsFaulty(const Call &call);
  [[nodiscard]] bool IsReachable(const Target &target, const Id8 &credential) const;
  [[nodiscard]] std::uint32_t Find(const std::string &host) const;
  [[nodiscard]] const Host *LocalHost() const;
  [[nodiscard]] std::string_view LocalName() const;
  [[nodiscard]] std::uint32_t LocalAdapters() const;

  void BeginCycle();
  void Announce(std::uint64_t cycle);
  std::uint32_t Deliver(Call &call, void *record);

  mutable std::mutex mutex_;
  Description description_;
  std::shared_ptr<ImageStore> images_;
  std::unordered_map<std::string, std::uint32_t> hosts_;  // index in the description, by name
  std::unordered_map<std::uint64_t, Target> targets_;     // by adapter identity
  std::optional<std::uint32_t> localHost_;                // none: unknown

  Witness witness_;
  std::vector<ActiveFault> faults_;
  bool logging_ = false;
  bool tracing_ = false;
  std::vector<CallRecord> log_;

  Discovery discovery_ = Discovery::kStopped;
  VEXO_CALLBACK callback_ = nullptr;
  std::uint64_t cycle_ = 0;     // number of the discovery cycle, so that a late event knows its own
  std::size_t nextSystem_ = 0;  // index of the host to look at next
  EventTimer timer_;            // last, so that it ends first
};

}  // namespace fabric
