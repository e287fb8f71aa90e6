// Reading and writing one host's tables: a remote host through its adapters, the local host from
// its cached table.
//
// A host is named by its record or by LOCAL_SYSTEM. Remote reads and writes return 0 or 5019 when
// no adapter of the host answered; after a failed read the buffer's content is undefined. Local
// reads always succeed. A local write changes the cached table first and then stores the whole of
// it through the first local adapter: 5002 without one, 5030 when it refuses; the cached table
// keeps the new content either way.
#pragma once

#include <cstdint>

#include "kvrapi/table_formats.h"

#include "model/system_record.h"

namespace kvr {

inline bool IsLocalSystem(const SystemRecord *host) {
  return host == LOCAL_SYSTEM;
}

std::uint32_t ReadSaHeader(SystemRecord *host, SaTableHeader &header);
std::uint32_t WriteSaHeader(SystemRecord *host, const SaTableHeader &header);
std::uint32_t ReadAccessTable(SystemRecord *host, AccessControlTable &table);
std::uint32_t WriteAccessTable(SystemRecord *host, const AccessControlTable &table);

// Reads a host's access table, lets change(AccessControlTable &) change it, and writes it back. The
// result of the read when that fails, and then nothing was written, else that of the write.
template <class Change>
std::uint32_t ChangeAccessTable(SystemRecord *host, const Change &change) {
  AccessControlTable table = {};
  if (const std::uint32_t result = ReadAccessTable(host, table)) return result;
  change(table);
  return WriteAccessTable(host, table);
}

// The access words of the cached table; always 0.
std::uint32_t GetLocalAccessTable(AccessControlTable &table);

// Puts the access words of all 256 positions into the cached table and stores it.
std::uint32_t PutLocalAccessTable(const AccessControlTable &table);

// Stores the cached table: 0, 5002 or 5030.
std::uint32_t StoreLocalSaTable();

// Reads the local host's table into the cache: 0, 5002 without a local adapter, 5004 when there is
// no table to read.
std::uint32_t LoadLocalSaTable();

// Removes the local host's table from its first adapter; the cache stays. 0, 5002 or 5031.
std::uint32_t RemoveLocalSaTable();

// Writes a remote host's whole table, removes it, or replaces its keys: 0 or 5019.
std::uint32_t WriteHostSaTable(const SystemRecord &host, const SaTable &image);
std::uint32_t RemoveHostSaTable(const SystemRecord &host);
std::uint32_t WriteHostKeyTable(const SystemRecord &host, const KeyTable &keys);

}  // namespace kvr
