#include "slot_reader.h"

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "kvrapi/kvrapi.hpp"
#include "kvrapi/table_formats.h"
#include "kvrapi/tqlink.h"
#include "kvrapi/vexonet.h"

namespace kvrctl {
namespace {

// The two words each by which an adapter is addressed.
struct Address {
  std::uint32_t credential[2] = {};
  std::uint32_t id[2] = {};
};

using Names = std::pair<std::string, std::string>;  // shown name, UTF-16 name
using Addresses = std::map<Names, std::vector<Address>>;

template <class Character, std::size_t Capacity>
std::size_t LengthOf(const Character (&field)[Capacity]) {
  return static_cast<std::size_t>(std::find(field, field + Capacity, Character{}) - field);
}

Names NamesOf(const DiscoveredSystem &system) {
  const KVR_WCHAR *wide = system.systemNameW;
  const std::string wideName =
      kvrapi::Utf8Of(kvrapi::WideString(wide, wide + LengthOf(system.systemNameW)));
  const std::string name = kvrapi::Utf8OfBytes({system.systemName, LengthOf(system.systemName)});
  return {name.empty() ? wideName : name, wideName};
}

std::vector<Address> AddressesOf(const DiscoveredSystem &system) {
  std::vector<Address> addresses(std::min(system.adapterCount, VEXO_MAX_ADAPTERS));
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    const AdapterInfo &adapter = system.adapters[i];
    std::memcpy(addresses[i].id, adapter.adapterId, sizeof addresses[i].id);
    if (adapter.credentialValid == 0) continue;
    std::memcpy(addresses[i].credential, adapter.credential, sizeof addresses[i].credential);
  }
  return addresses;
}

// The discovery in progress: the callback gets no context, so there is one for the process. It
// fills in the addresses of the hosts that are asked for, once, on whichever thread the event
// comes.
struct Discovery {
  std::mutex mutex;
  std::condition_variable finished;
  bool taken = false;
  bool complete = false;
  Addresses addresses;  // keyed beforehand by the names to look for
};

Discovery g_discovery;

void CollectAddresses(Addresses &addresses) {
  const auto system = std::make_unique<DiscoveredSystem>();
  Vexo_PauseDiscovery();
  std::uint32_t delivered = Vexo_GetFirstSystem(system.get());
  for (; delivered != 0; delivered = Vexo_GetNextSystem(system.get())) {
    const auto wanted = addresses.find(NamesOf(*system));
    if (system->excluded != 0 || wanted == addresses.end()) continue;
    const auto more = AddressesOf(*system);
    wanted->second.insert(wanted->second.end(), more.begin(), more.end());
  }
  Vexo_Terminate();
}

void OnSystemsReady(std::uint32_t, std::uint32_t) {
  {
    const std::lock_guard lock(g_discovery.mutex);
    if (std::exchange(g_discovery.taken, true)) return;
  }
  CollectAddresses(g_discovery.addresses);
  const std::lock_guard lock(g_discovery.mutex);
  g_discovery.complete = true;
  g_discovery.finished.notify_all();
}

// The addresses of all adapters of the hosts with these names.
Addresses DiscoverAddresses(Addresses wanted) {
  {
    const std::lock_guard lock(g_discovery.mutex);
    g_discovery.addresses = std::move(wanted);
    g_discovery.taken = g_discovery.complete = false;
  }
  Vexo_RegisterCallBack(OnSystemsReady, 4, 0);
  Vexo_Startup(1);
  const auto scratch = std::make_unique<DiscoveredSystem>();
  if (Vexo_GetFirstSystem(scratch.get()) != 0) {
    OnSystemsReady(0, 0);
    Vexo_StartDiscoveryCycle();
  }
  std::unique_lock lock(g_discovery.mutex);
  g_discovery.finished.wait(lock, [] { return g_discovery.complete; });
  return std::move(g_discovery.addresses);
}

// The highest slot marked as the table owner's own; roleFlags(i) gives the word of slot i.
template <class RoleFlags>
std::optional<std::uint32_t> OwnSlot(const RoleFlags &roleFlags) {
  for (std::uint32_t slot = KVR_SLOT_COUNT; slot-- > 0;) {
    if ((roleFlags(slot) & ACE_SELF) != 0) return slot;
  }
  return std::nullopt;
}

std::optional<std::uint32_t> ReadSlot(const std::vector<Address> &adapters) {
  AccessControlTable table;
  for (const Address &at : adapters) {
    std::uint32_t entries = KVR_POSITION_COUNT;
    if (TQ_ReadAccessControlTable(at.credential[0], at.credential[1], at.id[0], at.id[1], &table,
                                  &entries) == 0) {
      return OwnSlot([&](std::uint32_t i) { return table.entries[i].roleFlags; });
    }
  }
  return std::nullopt;
}

// The table behind an address, or null.
std::unique_ptr<SaTable> ReadTable(const Address &at) {
  auto table = std::make_unique<SaTable>();
  std::uint32_t bytes = KVR_SA_TABLE_SIZE;
  const std::uint32_t refused =
      TQ_ReadSaTable(at.credential[0], at.credential[1], at.id[0], at.id[1], table.get(), &bytes);
  return refused != 0 ? nullptr : std::move(table);
}

// This host's stored table, or null.
std::unique_ptr<SaTable> ReadLocalTable() {
  std::uint32_t request[2] = {0, 0};
  LocalAdapterInfo adapter{};
  TQ_GetLocalHBAInfo(request, &adapter);
  Address here;
  std::memcpy(here.id, adapter.localAdapterId, sizeof here.id);
  return ReadTable(here);
}

bool HaveSameKeys(const SaTable &a, const SaTable &b) {
  return std::equal(std::begin(a.entries), std::end(a.entries), std::begin(b.entries),
                    [](const SaEntry &one, const SaEntry &other) {
                      return std::memcmp(&one.key, &other.key, sizeof one.key) == 0;
                    });
}

// The adapters of those hosts for which isWanted(host), and which no other has the names of.
template <class Predicate>
std::map<const Host *, std::vector<Address>> FindAdapters(const std::vector<Host> &hosts,
                                                          const Predicate &isWanted) {
  std::map<Names, std::uint32_t> bearers;
  for (const Host &host : hosts)
    ++bearers[{host.name, host.wideName}];

  std::map<Names, const Host *> byNames;
  Addresses wanted;
  for (const Host &host : hosts) {
    const Names names{host.name, host.wideName};
    if (!isWanted(host) || bearers[names] > 1) continue;
    byNames[names] = &host;
    wanted[names] = {};
  }
  std::map<const Host *, std::vector<Address>> found;
  if (wanted.empty()) return found;
  for (auto &[names, adapters] : DiscoverAddresses(std::move(wanted)))
    found[byNames[names]] = std::move(adapters);
  return found;
}

}  // namespace

Slots ReadSlots(const std::vector<Host> &hosts) {
  Slots slots;
  const auto holdsSlot = [](const Host &host) { return host.holdsSlot; };
  for (const auto &[host, adapters] : FindAdapters(hosts, holdsSlot)) {
    if (const auto slot = ReadSlot(adapters)) slots[host] = *slot;
  }
  return slots;
}

Json SlotOf(const Slots &slots, const Host *host) {
  const auto found = slots.find(host);
  return found == slots.end() ? Json() : Json(found->second);
}

kvrapi::SlotCount CountSlotsBelow(const Library &library, const Group &group) {
  const std::string doing = "Counting the slots under " + group.path;
  if (group.offline) throw Failure(doing, KVR_ERR_OFFLINE_GROUP);
  const kvrapi::SlotCount count = group.group.Slots();
  if (count.free + count.used > 0) return count;
  if (SlotOf(ReadSlots(library.Hosts()), group.client).is_null()) {
    throw Failure(doing, KVR_ERR_REMOTE_ACCESS_FAILED, group.client->name);
  }
  // The table can be read, though perhaps it could not at the time of the count.
  return group.group.Slots();
}

Json ReadLocalSlot() {
  const auto table = ReadLocalTable();
  if (table == nullptr) return {};
  const auto slot = OwnSlot([&](std::uint32_t i) { return table->entries[i].access.roleFlags; });
  return slot ? Json(*slot) : Json();
}

std::optional<bool> ReadLocalSwitchAccess() {
  const auto table = ReadLocalTable();
  if (table == nullptr) return std::nullopt;
  return (table->entries[KVR_SWITCH_POSITION].access.serveFlags & ACE_SWITCH_ACCESS) != 0;
}

std::optional<bool> SharesKeys(const std::vector<Host> &hosts,
                               const std::vector<HostFailure> &failed) {
  const auto here = ReadLocalTable();
  if (here == nullptr) return false;
  const auto took = [&failed](const Host &host) {
    return host.inAcg && std::none_of(failed.begin(), failed.end(), [&](const HostFailure &one) {
             return one.host == host.name;
           });
  };
  for (const auto &[host, adapters] : FindAdapters(hosts, took)) {
    for (const Address &at : adapters) {
      if (const auto there = ReadTable(at)) return HaveSameKeys(*here, *there);
    }
  }
  return std::nullopt;
}

}  // namespace kvrctl
