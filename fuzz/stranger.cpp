#include "stranger.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "kvrapi/tqlink.h"
#include "kvrapi/vexonet.h"

namespace {

using Word = std::uint32_t;

struct Stranger {
  DiscoveredSystem record;
  SaTable table;
  bool hasTable;
};

std::vector<Stranger> g_hosts;  // the local host is the last one
Word g_localAdapters = 1, g_faultPeriod = 0, g_calls = 0;
std::size_t g_next = 0;
VEXO_CALLBACK g_callback = nullptr;

Stranger MakeHost(Word number, Word owner) {
  Stranger host{};
  const std::string name = "host-" + std::to_string(number);
  name.copy(host.record.systemName, VEXO_SYSTEM_NAME_CAPACITY - 1);
  host.record.adapterCount = 1;
  std::memcpy(host.record.adapters[0].adapterId, &number, sizeof number);
  host.record.adapters[0].reachIdCount = 1;
  host.table.entries[owner].access.serveFlags = ACE_SERVES;
  host.table.entries[number].access.roleFlags = ACE_SELF;
  host.hasTable = true;
  return host;
}

// All hosts are on the same level below the MSC, which is the local host or else the first one.
void MakeHosts(Word others, std::uint8_t role) {
  const Word owner = role % 3 == 0 ? others : 0;
  g_hosts.clear();
  for (Word number = 0; number <= others; ++number) g_hosts.push_back(MakeHost(number, owner));
  SaTable &table = g_hosts[owner].table;
  for (Word number = 0; number <= others; ++number)
    table.entries[number].access = {0, number == owner ? ACE_SELF | ACE_MSC : ACE_CHILD, 0, 0};
  if (role % 3 != 2) return;
  SaTable &backup = g_hosts.back().table;
  std::ranges::copy(table.entries, backup.entries);
  backup.entries[owner].access = {ACE_SERVES, ACE_SELF | ACE_BACKUP_MSC, 0, 0};
}

template <class Record>
void FillRandomly(Record &record, Word seed) {
  std::minstd_rand random(seed);
  std::generate_n(reinterpret_cast<std::uint8_t *>(&record), sizeof record,
                  [&] { return static_cast<std::uint8_t>(random() >> 8); });
}

template <class Record>
void Patch(Record &record, Word word, Word value) {
  std::memcpy(reinterpret_cast<char *>(&record) + word % (sizeof record / 4) * 4, &value, 4);
}

void Relate(Word number, Word distance, Word flags) {
  for (Word other = 0; other < g_hosts.size(); ++other) {
    if (distance != 0xFFFF && (number + distance) % g_hosts.size() != other) continue;
    g_hosts[number].table.entries[other].access.roleFlags |= flags;
  }
}

AccessEntry &EntryOf(Stranger &host, Word where) {
  return host.table.entries[where % KVR_POSITION_COUNT].access;
}

// In the order of their numbers.
using Instruction = void (*)(Stranger &host, Word number, Word where, Word value);
const Instruction kInstructions[] = {
    [](auto &host, auto, auto where, auto value) { EntryOf(host, where).roleFlags = value; },
    [](auto &host, auto, auto where, auto value) { EntryOf(host, where).serveFlags = value; },
    [](auto &, auto number, auto where, auto value) { Relate(number, where, value); },
    [](auto &host, auto, auto where, auto value) { Patch(host.table.header, where, value); },
    [](auto &host, auto number, auto, auto value) { FillRandomly(host.table, value + number); },
    [](auto &host, auto...) { host.hasTable = false; },
    [](auto &host, auto, auto where, auto value) { Patch(host.record, where, value); },
    [](auto &host, auto, auto where, auto value) {
      DiscoveredSystem &record = host.record;
      const bool reach = where < VEXO_MAX_ADAPTERS;
      (reach ? record.adapters[where].reachIdCount : record.adapterCount) = value;
    },
    [](auto &host, auto number, auto, auto value) {
      FillRandomly(host.record, value + number);
      host.record.excluded = 0;
    }};

// Acts on the host that an adapter's identity leads to, and on its table, which is there or else
// made anew. Any identity leads to some host: strangers may share one.
template <class Act>
Word AtTable(Word id, Act act, bool anew = false) {
  if (g_faultPeriod != 0 && ++g_calls % g_faultPeriod == 0) return 1;
  Stranger &host = g_hosts[id % g_hosts.size()];
  if (!host.hasTable && !anew) return 1;
  host.hasTable = true;
  act(host);
  return 0;
}

Word Deliver(void *record) {
  if (g_next + 1 >= g_hosts.size()) return 0;
  std::memcpy(record, &g_hosts[g_next++].record, sizeof(DiscoveredSystem));
  return 1;
}

}  // namespace

void fuzz::SetStranger(std::span<const std::uint8_t> bytes) {
  std::uint8_t head[3] = {};
  const std::size_t headSize = std::min(std::size(head), bytes.size());
  std::copy_n(bytes.begin(), headSize, head);
  g_faultPeriod = head[1];
  g_calls = 0;
  g_localAdapters = head[2] == 255 ? 200 : head[2] == 254 ? 0 : 1;
  MakeHosts(head[0] % 65u, head[2]);
  for (bytes = bytes.subspan(headSize); bytes.size() >= 8; bytes = bytes.subspan(8)) {
    Word value = 0;
    for (std::size_t i = 8; i-- > 4;) value = value << 8 | bytes[i];
    const Instruction apply = kInstructions[bytes[0] % std::size(kInstructions)];
    for (Word number = 0; number < g_hosts.size(); ++number) {
      if (bytes[1] != 255 && bytes[1] % g_hosts.size() != number) continue;
      apply(g_hosts[number], number, bytes[2] | Word{bytes[3]} << 8, value);
    }
  }
}

Word TQ_InitLib(void) { return 0; }
Word TQ_GetNumberOfLocalAdapters(void) { return g_localAdapters; }
// Says each time that there is another adapter.
Word TQ_GetLocalHBAInfo(Word *, void *info236) {
  const auto local = static_cast<Word>(g_hosts.size() - 1);
  std::memcpy(info236, &local, sizeof local);
  return 1;
}
Word TQ_ReadSaTable(Word, Word, Word id0, Word, void *table, Word *) {
  return AtTable(id0, [&](Stranger &host) { std::memcpy(table, &host.table, sizeof host.table); });
}
Word TQ_WriteSaTable(Word, Word, Word id0, Word, const void *table) {
  return AtTable(
      id0, [&](auto &h) { std::memcpy(&h.table, table, sizeof h.table); }, true);
}
Word TQ_RemoveSaTable(Word, Word, Word id0, Word) {
  return AtTable(id0, [](Stranger &host) { host.hasTable = false; });
}
Word TQ_ReadSaTableHeader(Word, Word, Word id0, Word, void *header, Word *) {
  return AtTable(id0,
                 [&](auto &h) { std::memcpy(header, &h.table.header, sizeof(SaTableHeader)); });
}
Word TQ_WriteSaTableHeader(Word, Word, Word id0, Word, const void *header) {
  return AtTable(id0,
                 [&](auto &h) { std::memcpy(&h.table.header, header, sizeof(SaTableHeader)); });
}
Word TQ_ReadAccessControlTable(Word, Word, Word id0, Word, void *table, Word *) {
  return AtTable(id0, [&](Stranger &host) {
    for (std::size_t n = 0; n < KVR_POSITION_COUNT; ++n)
      static_cast<AccessControlTable *>(table)->entries[n] = host.table.entries[n].access;
  });
}
Word TQ_WriteAccessControlTable(Word, Word, Word id0, Word, const void *table) {
  return AtTable(id0, [&](Stranger &host) {
    for (std::size_t n = 0; n < KVR_POSITION_COUNT; ++n)
      host.table.entries[n].access = static_cast<const AccessControlTable *>(table)->entries[n];
  });
}
Word TQ_WriteKeyTable(Word, Word, Word id0, Word, const void *) {
  return AtTable(id0, [](Stranger &) {});
}
Word TQ_syncSecurityConfig(Word, Word, Word id0, Word) {
  return AtTable(id0, [](Stranger &) {});
}

Word Vexo_RegisterCallBack(VEXO_CALLBACK callback, Word, Word) {
  g_callback = callback;
  return 0;
}
// A network without other hosts announces so at once: the caller waits for it.
Word Vexo_Startup(Word) {
  if (g_hosts.size() == 1) g_callback(0, 0);
  return 0;
}
Word Vexo_GetFirstSystem(void *discoveredSystem30104) {
  g_next = 0;
  return Deliver(discoveredSystem30104);
}
Word Vexo_GetNextSystem(void *discoveredSystem30104) { return Deliver(discoveredSystem30104); }
Word Vexo_PauseDiscovery(void) { return 0; }
Word Vexo_Terminate(void) { return 0; }
Word Vexo_StartDiscoveryCycle(void) { return 0; }
