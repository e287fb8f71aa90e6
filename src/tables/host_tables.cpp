#include "tables/host_tables.h"

#include "kvrapi/kvrapi.h"
#include "kvrapi/tqlink.h"

#include "model/local_state.h"
#include "tables/adapter_loop.h"

namespace kvr {

std::uint32_t ReadSaHeader(SystemRecord *host, SaTableHeader &header) {
  if (IsLocalSystem(host)) {
    header = g_localSaTable.header;
    return KVR_OK;
  }
  return TryAdapters(*host, [&](const AdapterAddress &a) {
    std::uint32_t bytes = KVR_SA_TABLE_HEADER_SIZE;
    return TQ_ReadSaTableHeader(a.cred0, a.cred1, a.id0, a.id1, &header, &bytes);
  });
}

std::uint32_t WriteSaHeader(SystemRecord *host, const SaTableHeader &header) {
  if (IsLocalSystem(host)) {
    g_localSaTable.header = header;
    return StoreLocalSaTable();
  }
  return TryAdapters(*host, [&](const AdapterAddress &a) {
    return TQ_WriteSaTableHeader(a.cred0, a.cred1, a.id0, a.id1, &header);
  });
}

std::uint32_t ReadAccessTable(SystemRecord *host, AccessControlTable &table) {
  if (IsLocalSystem(host)) return GetLocalAccessTable(table);
  return TryAdapters(*host, [&](const AdapterAddress &a) {
    std::uint32_t entries = KVR_POSITION_COUNT;
    return TQ_ReadAccessControlTable(a.cred0, a.cred1, a.id0, a.id1, &table, &entries);
  });
}

std::uint32_t WriteAccessTable(SystemRecord *host, const AccessControlTable &table) {
  if (IsLocalSystem(host)) return PutLocalAccessTable(table);
  return TryAdapters(*host, [&](const AdapterAddress &a) {
    return TQ_WriteAccessControlTable(a.cred0, a.cred1, a.id0, a.id1, &table);
  });
}

std::uint32_t GetLocalAccessTable(AccessControlTable &table) {
  for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n) {
    table.entries[n] = g_localSaTable.entries[n].access;
  }
  return KVR_OK;
}

std::uint32_t PutLocalAccessTable(const AccessControlTable &table) {
  for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n) {
    g_localSaTable.entries[n].access = table.entries[n];
  }
  return StoreLocalSaTable();
}

std::uint32_t StoreLocalSaTable() {
  if (g_localAdapterCount == 0) return KVR_ERR_NO_LOCAL_ADAPTER;
  const AdapterAddress a = LocalAddress();
  const bool stored = TQ_WriteSaTable(a.cred0, a.cred1, a.id0, a.id1, &g_localSaTable) == 0;
  return stored ? KVR_OK : KVR_ERR_LOCAL_WRITE_FAILED;
}

std::uint32_t LoadLocalSaTable() {
  if (g_localAdapterCount == 0) return KVR_ERR_NO_LOCAL_ADAPTER;
  const AdapterAddress a = LocalAddress();
  std::uint32_t bytes = KVR_SA_TABLE_SIZE;
  const bool read = TQ_ReadSaTable(a.cred0, a.cred1, a.id0, a.id1, &g_localSaTable, &bytes) == 0;
  return read ? KVR_OK : KVR_ERR_NOT_SECURED;
}

std::uint32_t RemoveLocalSaTable() {
  if (g_localAdapterCount == 0) return KVR_ERR_NO_LOCAL_ADAPTER;
  const AdapterAddress a = LocalAddress();
  const bool removed = TQ_RemoveSaTable(a.cred0, a.cred1, a.id0, a.id1) == 0;
  return removed ? KVR_OK : KVR_ERR_LOCAL_REMOVE_FAILED;
}

std::uint32_t WriteHostSaTable(const SystemRecord &host, const SaTable &image) {
  return TryAdapters(host, [&](const AdapterAddress &a) {
    return TQ_WriteSaTable(a.cred0, a.cred1, a.id0, a.id1, &image);
  });
}

std::uint32_t RemoveHostSaTable(const SystemRecord &host) {
  return TryAdapters(host, [](const AdapterAddress &a) {
    return TQ_RemoveSaTable(a.cred0, a.cred1, a.id0, a.id1);
  });
}

std::uint32_t WriteHostKeyTable(const SystemRecord &host, const KeyTable &keys) {
  return TryAdapters(host, [&](const AdapterAddress &a) {
    return TQ_WriteKeyTable(a.cred0, a.cred1, a.id0, a.id1, &keys);
  });
}

}  // namespace kvr
