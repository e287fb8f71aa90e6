#include "slot_reader.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "survey.h"
#include "table_image.h"

namespace kvrctl {
namespace {

const System *SystemOf(const Host &host) {
  return SystemNamed(host.name, host.wideName);
}

// The reserve as the table of a client other than the MSC holds it.
kvrapi::SlotCount ReserveIn(const AccessControlTable &table) {
  kvrapi::SlotCount count = {0, 0};
  for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
    const std::uint32_t role = table.entries[slot].roleFlags;
    if ((role & ACE_RESERVED) == 0) continue;
    ++((role & (ACE_CHILD | ACE_DELEGATED)) == 0 ? count.free : count.used);
  }
  return count;
}

std::optional<Holding> ReadHolding(const Host &host) {
  const System *system = SystemOf(host);
  const auto table = system == nullptr ? nullptr : ReadAccess(*system);
  if (table == nullptr) return std::nullopt;
  const auto slot = OwnSlot([&](std::uint32_t i) { return table->entries[i].roleFlags; });
  if (!slot) return std::nullopt;
  return Holding{*slot, ReserveIn(*table)};
}

}  // namespace

Slots ReadSlots(const std::vector<Host> &hosts) {
  Slots slots;
  for (const Host &host : hosts) {
    if (!host.holdsSlot) continue;
    if (const auto holding = ReadHolding(host)) slots[&host] = *holding;
  }
  return slots;
}

Json SlotOf(const Slots &slots, const Host *host) {
  const auto found = slots.find(host);
  return found == slots.end() ? Json() : Json(found->second.slot);
}

std::optional<std::string> ReadGroupName(const Host &host) {
  const System *system = SystemOf(host);
  const auto header = system == nullptr ? nullptr : ReadHeader(*system);
  if (header == nullptr) return std::nullopt;
  const StoredNames names = NamesIn(*header);
  return names.wide.empty() ? names.ascii : names.wide;
}

bool StoresName(const Host &host, const std::string &name) {
  if (SystemNamed(host.name, host.wideName) == nullptr) return true;
  return ReadGroupName(host) == name;
}

bool CanBeRead(const Host &host) {
  const System *system = SystemNamed(host.name, host.wideName);
  return system == nullptr || ReadHeader(*system) != nullptr;
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

bool CanReadLocalTable() {
  return ReadLocalTable() != nullptr;
}

Json ReadLocalSlot() {
  const auto table = ReadLocalTable();
  if (table == nullptr) return {};
  const auto slot = OwnSlot(*table);
  return slot ? Json(*slot) : Json();
}

std::optional<bool> ReadLocalSwitchAccess() {
  const auto table = ReadLocalTable();
  if (table == nullptr) return std::nullopt;
  return HasSwitchAccess(*table);
}

std::optional<bool> SharesKeys(const std::vector<Host> &hosts,
                               const std::vector<HostFailure> &failed) {
  const auto here = ReadLocalTable();
  if (here == nullptr) return false;
  for (const Host &host : hosts) {
    const bool took =
        host.inAcg && std::none_of(failed.begin(), failed.end(),
                                   [&](const auto &one) { return one.host == host.name; });
    const System *system = took ? SystemOf(host) : nullptr;
    if (const auto there = system == nullptr ? nullptr : ReadTable(*system)) {
      return HaveSameKeys(*here, *there);
    }
  }
  return std::nullopt;
}

}  // namespace kvrctl
