// The record of one host of the storage network: what the discovery library delivered of it, and
// what the tables say of its part in the configuration. A system handle is a pointer to one.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kvrapi/kvrapi.h"
#include "kvrapi/vexonet.h"

#include "model/index_bitmap.h"

struct KVR_SystemRecord {
  std::uint32_t magic;           // SYSTEM_MAGIC while the record is live
  DiscoveredSystem discovered;   // the discovery library's record, whole
  std::uint32_t inAcg;           // 0 or 1
  std::uint32_t lastOpFailed;    // 0 or 1: the last change that walked all hosts failed here
  std::int32_t saIndex;          // the host's slot, 0 to 245, or -1
  std::uint32_t asgServerCount;  // groups whose servers hold this system
  KVR_GroupRecord *clientGroup;  // the group whose client it is, as the rebuild found it, or null
  kvr::IndexBitmap indexBitmap;  // slots of the clients that it serves
};

namespace kvr {

using SystemRecord = KVR_SystemRecord;

static_assert(offsetof(SystemRecord, magic) == 0);
static_assert(offsetof(SystemRecord, discovered) == 4);
static_assert(offsetof(SystemRecord, inAcg) == 30108);
static_assert(offsetof(SystemRecord, lastOpFailed) == 30112);
static_assert(offsetof(SystemRecord, saIndex) == 30116);
static_assert(offsetof(SystemRecord, asgServerCount) == 30120);
static_assert(offsetof(SystemRecord, clientGroup) == (sizeof(void *) == 8 ? 30128 : 30124));
static_assert(offsetof(SystemRecord, indexBitmap) == (sizeof(void *) == 8 ? 30136 : 30128));
static_assert(sizeof(SystemRecord) == (sizeof(void *) == 8 ? 30168 : 30160));

constexpr std::uint32_t SYSTEM_MAGIC = 0xA1D0F27EU;

// Host handles that are no records: this host, and the client of an Offline Client group.
inline SystemRecord *const LOCAL_SYSTEM = reinterpret_cast<SystemRecord *>(std::intptr_t{-1});
inline SystemRecord *const OFFLINE_CLIENT = reinterpret_cast<SystemRecord *>(std::intptr_t{-2});

// A live record of a delivered host: outside the ACG, without a slot. Owned by the caller, given
// back through the list that holds it.
SystemRecord *NewSystemRecord(const DiscoveredSystem &discovered);

// Whether a handle given by a caller refers to a live record.
bool IsLive(const SystemRecord *system);

// Number of valid entries of a record's adapters, whatever the record claims.
std::uint32_t AdapterCountOf(const SystemRecord &system);

// Whether some adapter of a and some adapter of b carry the same reach identifier, which makes the
// two hosts able to reach each other.
bool ShareReachId(const SystemRecord &a, const SystemRecord &b);

// Orders systems by UTF-16 name where both have one, else by 8-bit name. 0 for the very same
// record; of two records with equal names the first argument stands first. Not transitive where
// hosts with and without a UTF-16 name meet.
std::int32_t CompareSystems(const void *a, const void *b);

}  // namespace kvr
