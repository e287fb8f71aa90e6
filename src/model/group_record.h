// The record of one access sub-group: its client, its servers, and its child groups, whose clients
// draw their slots from its client's reserve. A group handle is a pointer to one.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kvrapi/kvrapi.h"
#include "kvrapi/table_formats.h"

#include "model/ordered_list.h"
#include "model/system_record.h"

struct KVR_GroupRecord {
  std::uint32_t magic;                 // GROUP_MAGIC while the record is live
  char name[KVR_NAME_CAPACITY];        // 8-bit name, or empty
  KVR_WCHAR nameW[KVR_NAME_CAPACITY];  // UTF-16 name, or empty
  KVR_SystemRecord *client;            // the client, or OFFLINE_CLIENT
  KVR_GroupRecord *parent;             // null for a top-level group
  std::uint32_t serverCount;           // entries of servers
  kvr::OrderedList *servers;           // refers to systems of the registry
  std::uint32_t childCount;            // entries of children
  kvr::OrderedList *children;          // owns the child groups; null until there is one
};

namespace kvr {

using GroupRecord = KVR_GroupRecord;

static_assert(offsetof(GroupRecord, name) == 4);
static_assert(offsetof(GroupRecord, nameW) == 36);
static_assert(offsetof(GroupRecord, client) == (sizeof(void *) == 8 ? 104 : 100));
static_assert(offsetof(GroupRecord, parent) == (sizeof(void *) == 8 ? 112 : 104));
static_assert(offsetof(GroupRecord, serverCount) == (sizeof(void *) == 8 ? 120 : 108));
static_assert(offsetof(GroupRecord, servers) == (sizeof(void *) == 8 ? 128 : 112));
static_assert(offsetof(GroupRecord, childCount) == (sizeof(void *) == 8 ? 136 : 116));
static_assert(offsetof(GroupRecord, children) == (sizeof(void *) == 8 ? 144 : 120));
static_assert(sizeof(GroupRecord) == (sizeof(void *) == 8 ? 152 : 124));

constexpr std::uint32_t GROUP_MAGIC = 0x83C59B4FU;

extern OrderedList *g_topGroups;       // owns the top-level groups; null until the load
extern std::uint32_t g_topGroupCount;  // entries of g_topGroups

// Orders groups by their 8-bit names. 0 for the very same record; of two records with equal names
// the first argument stands first.
std::int32_t CompareGroups(const void *a, const void *b);

// A live group without names and lists, in no list yet; the caller puts it into one, which owns it.
GroupRecord *NewGroup(SystemRecord *client, GroupRecord *parent);

// The group "Offline Client" that stands for a client that was not found, with empty lists; in no
// list yet. The parent may be null.
GroupRecord *NewOfflineGroup(GroupRecord *parent);

// Puts a group among its parent's children, or at the top level, and counts it there. A list that
// does not exist is created.
void InsertGroup(GroupRecord *group);

// Takes a group out of the list that holds it, and of the count there; the caller owns it from now
// on. It is found by its 8-bit name, which must be the one it was put in with.
void TakeOutGroup(const GroupRecord *group);

// Ends an Offline Client group that is in no list any more: no handle check passes for it from now
// on, but the record stays readable until FreeRetiredGroups, for callers that still hold it.
void RetireGroup(GroupRecord *group);

// Frees every retired group.
void FreeRetiredGroups();

// Frees one group that is in no list any more, with its lists but not its child groups.
void FreeGroup(GroupRecord *group);

// Frees a list of groups, which may be null, with every group in it and below. No system is freed.
void FreeGroups(OrderedList *groups);

// FreeGroups for the whole tree: the number of top-level groups becomes 0.
void FreeGroupTree(OrderedList *groups);

// Whether a handle given by a caller refers to a live record.
bool IsLive(const GroupRecord *group);

// Whether the group stands for a client that was not found. The record need not be live.
bool IsOffline(const GroupRecord &group);

// The host whose table supplies the slots of groups under a parent: the parent's client, or
// LOCAL_SYSTEM for null.
SystemRecord *PoolHostOf(const GroupRecord *parent);

}  // namespace kvr
