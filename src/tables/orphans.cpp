#include "tables/orphans.h"

#include <cstdint>

#include "model/group_search.h"
#include "model/system_registry.h"
#include "tables/host_tables.h"
#include "tables/slot_rules.h"

namespace kvr {
namespace {

GroupRecord &GroupOf(const ListNode *node) {
  return *static_cast<GroupRecord *>(node->data);
}

// Whether a table, read afresh, sets the slot of the group's client aside for its host's sub-tree.
bool Reserves(const AccessControlTable &table, const GroupRecord &group) {
  return IsReserved(table.entries[group.client->saIndex]);
}

bool ReadsAndReserves(SystemRecord *host, const GroupRecord &group) {
  AccessControlTable table = {};
  return ReadAccessTable(host, table) == KVR_OK && Reserves(table, group);
}

void Forget(GroupRecord &group) {
  if (group.client->clientGroup == &group) group.client->clientGroup = nullptr;
  for (SystemRecord &server : ListView<SystemRecord>(group.servers))
    --server.asgServerCount;
}

// Discards an orphan's group and all below it. A client that no other group was made for meanwhile
// has no group any more.
void Discard(GroupRecord &group) {
  Forget(group);
  AnyGroupBelow(group.children, [](GroupRecord &below) {
    Forget(below);
    return false;
  });
  FreeGroups(group.children);
  group.children = nullptr;
  FreeGroup(&group);
}

// Discards the orphans whose clients' slots the client of a new orphan reserves: they are in its
// sub-tree, or lost. Returns their number.
std::uint32_t DiscardReserved(OrderedList *orphans, SystemRecord &client) {
  AccessControlTable table = {};
  if (ReadAccessTable(&client, table) != KVR_OK) return 0;
  std::uint32_t discarded = 0;
  for (ListNode *node = ListFirst(orphans); node != nullptr;) {
    if (!Reserves(table, GroupOf(node))) {
      node = ListNext(node);
      continue;
    }
    Discard(GroupOf(node));
    ListUnlink(node, 0);
    ++discarded;
    node = ListFirst(orphans);
  }
  return discarded;
}

bool IsOrphan(const SystemRecord &system, const AccessControlTable &local) {
  if (system.saIndex < 0 || system.clientGroup != nullptr) return false;
  return IsHandedOn(local.entries[system.saIndex]);
}

std::uint32_t CollectOrphans(TreeBuilder &builder, OrderedList *orphans) {
  AccessControlTable local = {};
  GetLocalAccessTable(local);
  std::uint32_t count = 0;
  for (SystemRecord &system : Systems()) {
    if (!IsOrphan(system, local)) continue;
    GroupRecord *orphan = builder.MakeClientGroup(system, nullptr);
    builder.BeginWalk();
    builder.BuildChildGroups(*orphan);
    if (orphan->childCount > 0) count -= DiscardReserved(orphans, system);
    ListInsertSorted(orphans, orphan);
    ++count;
  }
  return count;
}

// Hangs an orphan under an Offline Client group.
void PlaceUnder(TreeBuilder &builder, GroupRecord *offline, GroupRecord &orphan) {
  orphan.parent = offline;
  InsertGroup(&orphan);
  builder.BuildServerList(orphan);
}

GroupRecord *InsertOfflineGroup(GroupRecord *parent) {
  GroupRecord *offline = NewOfflineGroup(parent);
  InsertGroup(offline);
  return offline;
}

void AttachUnderOffline(TreeBuilder &builder, GroupRecord &upper, GroupRecord &lower) {
  GroupRecord *offline = nullptr;
  for (GroupRecord &child : ListView<GroupRecord>(upper.children)) {
    if (!IsOffline(child)) continue;
    offline = &child;
    break;
  }
  if (offline == nullptr) offline = InsertOfflineGroup(&upper);
  PlaceUnder(builder, offline, lower);
}

// Looks for one pair of orphans, the first of which is given, of which one reserves the other's
// slot, and hangs that one below the other. Returns the node of the one that was placed, or null.
ListNode *MergeWithAnother(TreeBuilder &builder, OrderedList *orphans, ListNode *node) {
  GroupRecord &first = GroupOf(node);
  AccessControlTable table = {};
  if (ReadAccessTable(first.client, table) != KVR_OK) return nullptr;
  for (ListNode *other = ListFirst(orphans); other != nullptr; other = ListNext(other)) {
    if (other == node) continue;
    GroupRecord &second = GroupOf(other);
    if (Reserves(table, second)) {
      AttachUnderOffline(builder, first, second);
      return other;
    }
    if (ReadsAndReserves(second.client, first)) {
      AttachUnderOffline(builder, second, first);
      return node;
    }
  }
  return nullptr;
}

void MergeOrphans(TreeBuilder &builder, OrderedList *orphans) {
  for (ListNode *node = ListFirst(orphans); node != nullptr;) {
    ListNode *placed = MergeWithAnother(builder, orphans, node);
    node = placed != nullptr ? ListFirst(orphans) : ListNext(node);
    if (placed == nullptr) continue;
    if (node == placed) node = ListNext(placed);
    ListUnlink(placed, 0);
  }
}

// The deepest group whose client reserves the orphan's slot, the first Offline Client group met on
// the way down, or null for the top level.
GroupRecord *FindPlace(const GroupRecord &orphan) {
  GroupRecord *place = nullptr;
  for (const ListNode *node = ListFirst(g_topGroups); node != nullptr;) {
    GroupRecord &group = GroupOf(node);
    if (IsOffline(group)) return &group;
    if (ReadsAndReserves(group.client, orphan)) {
      place = &group;
      node = ListFirst(group.children);
    } else {
      node = ListNext(node);
    }
  }
  return place;
}

}  // namespace

void AttachOrphans(TreeBuilder &builder) {
  OrderedList *orphans = ListCreate(CompareGroups);
  if (CollectOrphans(builder, orphans) > 0) {
    MergeOrphans(builder, orphans);
    for (GroupRecord &orphan : ListView<GroupRecord>(orphans)) {
      GroupRecord *place = FindPlace(orphan);
      if (place == nullptr || !IsOffline(*place)) place = InsertOfflineGroup(place);
      PlaceUnder(builder, place, orphan);
    }
  }
  ListDestroy(orphans, 0);
}

}  // namespace kvr
