#include "stranger.h"

#include <algorithm>
#include <array>
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
Word g_localAdapters = 1;
Word g_faultPeriod = 0;
Word g_calls = 0;
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

void FillRandomly(void *memory, std::size_t size, Word seed) {
  std::minstd_rand random(seed);
  std::generate_n(static_cast<std::uint8_t *>(memory), size,
                  [&] { return static_cast<std::uint8_t>(random() >> 8); });
}

void Patch(void *memory, std::size_t size, std::size_t word, Word value) {
  std::memcpy(static_cast<std::uint8_t *>(memory) + word % (size / 4) * 4, &value, sizeof value);
}

void Relate(Word number, Word distance, Word flags) {
  for (Word other = 0; other < g_hosts.size(); ++other) {
    if (distance != 0xFFFF && (number + distance) % g_hosts.size() != other) continue;
    g_hosts[number].table.entries[other].access.roleFlags |= flags;
  }
}

void Apply(fuzz::Instruction instruction, Word number, Word where, Word value) {
  auto &[record, table, hasTable] = g_hosts[number];
  AccessEntry &entry = table.entries[where % KVR_POSITION_COUNT].access;
  switch (instruction) {
    case fuzz::Instruction::kRoleFlags:
      entry.roleFlags = value;
      return;
    case fuzz::Instruction::kServeFlags:
      entry.serveFlags = value;
      return;
    case fuzz::Instruction::kRelation:
      return Relate(number, where, value);
    case fuzz::Instruction::kPatchHeader:
      return Patch(&table.header, sizeof table.header, where, value);
    case fuzz::Instruction::kRandomTable:
      return FillRandomly(&table, sizeof table, value + number);
    case fuzz::Instruction::kNoTable:
      hasTable = false;
      return;
    case fuzz::Instruction::kPatchRecord:
      return Patch(&record, sizeof record, where, value);
    case fuzz::Instruction::kPatchCount:
      (where < VEXO_MAX_ADAPTERS ? record.adapters[where].reachIdCount : record.adapterCount) =
          value;
      return;
    case fuzz::Instruction::kRandomRecord:
      FillRandomly(&record, sizeof record, value + number);
      record.excluded = 0;
  }
}

// The host that an adapter's identity leads to, or null when the call fails. Any identity leads to
// some host: strangers may share one.
Stranger *Reach(Word id) {
  if (g_faultPeriod != 0 && ++g_calls % g_faultPeriod == 0) return nullptr;
  return &g_hosts[id % g_hosts.size()];
}

template <class Act>
Word AtTable(Word id, Act act) {
  Stranger *host = Reach(id);
  if (host == nullptr || !host->hasTable) return 1;
  act(*host);
  return 0;
}

Word Deliver(void *record) {
  if (g_next + 1 >= g_hosts.size()) return 0;
  std::memcpy(record, &g_hosts[g_next++].record, sizeof(DiscoveredSystem));
  return 1;
}

}  // namespace

void fuzz::SetStranger(std::span<const std::uint8_t> bytes) {
  std::array<std::uint8_t, 3> head{};
  const std::size_t headSize = std::min(head.size(), bytes.size());
  std::copy_n(bytes.begin(), headSize, head.begin());
  g_faultPeriod = head[1];
  g_calls = 0;
  g_localAdapters = head[2] == 255 ? 200 : head[2] == 254 ? 0 : 1;
  MakeHosts(head[0] % 65u, head[2]);
  for (bytes = bytes.subspan(headSize); bytes.size() >= 8; bytes = bytes.subspan(8)) {
    Word value = 0;
    for (std::size_t i = 8; i-- > 4;) value = value << 8 | bytes[i];
    const auto instruction = static_cast<Instruction>(bytes[0] % kInstructionCount);
    for (Word number = 0; number < g_hosts.size(); ++number) {
      if (bytes[1] != 255 && bytes[1] % g_hosts.size() != number) continue;
      Apply(instruction, number, bytes[2] | Word{bytes[3]} << 8, value);
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
  Stranger *host = Reach(id0);
  if (host == nullptr) return 1;
  std::memcpy(&host->table, table, sizeof host->table);
  host->hasTable = true;
  return 0;
}
Word TQ_RemoveSaTable(Word, Word, Word id0, Word) {
  return AtTable(id0, [](Stranger &host) { host.hasTable = false; });
}
Word TQ_ReadSaTableHeader(Word, Word, Word id0, Word, void *header, Word *) {
  return AtTable(id0, [&](Stranger &host) {
    std::memcpy(header, &host.table.header, sizeof host.table.header);
  });
}
Word TQ_WriteSaTableHeader(Word, Word, Word id0, Word, const void *header) {
  return AtTable(id0, [&](Stranger &host) {
    std::memcpy(&host.table.header, header, sizeof host.table.header);
  });
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
