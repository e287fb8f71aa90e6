#include "model/group_record.h"

#include <string_view>
#include <vector>

#include "model/group_search.h"
#include "platform/memory.h"
#include "platform/text.h"

namespace kvr {
namespace {

OrderedList *g_retiredGroups = nullptr;  // owns its groups; null while there is none

}  // namespace

OrderedList *g_topGroups = nullptr;
std::uint32_t g_topGroupCount = 0;

std::int32_t CompareGroups(const void *a, const void *b) {
  if (a == b) return 0;
  const int order = CompareOrdinal(static_cast<const GroupRecord *>(a)->name,
                                   static_cast<const GroupRecord *>(b)->name, KVR_NAME_CAPACITY);
  return order != 0 ? order : -1;
}

GroupRecord *NewGroup(SystemRecord *client, GroupRecord *parent) {
  auto *group = static_cast<GroupRecord *>(AllocateZeroed(sizeof(GroupRecord)));
  group->magic = GROUP_MAGIC;
  group->client = client;
  group->parent = parent;
  return group;
}

GroupRecord *NewOfflineGroup(GroupRecord *parent) {
  constexpr std::string_view offlineName = "Offline Client";
  GroupRecord *group = NewGroup(OFFLINE_CLIENT, parent);
  group->children = ListCreate(CompareGroups);
  group->servers = ListCreate(CompareSystems);
  CopyPadded(group->name, KVR_NAME_CAPACITY, offlineName.data(), offlineName.size());
  Widen(group->nameW, offlineName.data(), offlineName.size());
  return group;
}

void InsertGroup(GroupRecord *group) {
  GroupRecord *parent = group->parent;
  OrderedList *&list = parent != nullptr ? parent->children : g_topGroups;
  if (list == nullptr) list = ListCreate(CompareGroups);
  ListInsertSorted(list, group);
  ++(parent != nullptr ? parent->childCount : g_topGroupCount);
}

void TakeOutGroup(const GroupRecord *group) {
  GroupRecord *parent = group->parent;
  ListUnlink(ListFind(parent != nullptr ? parent->children : g_topGroups, group), 0);
  --(parent != nullptr ? parent->childCount : g_topGroupCount);
}

void RetireGroup(GroupRecord *group) {
  group->magic = 0;
  if (g_retiredGroups == nullptr) g_retiredGroups = ListCreate(CompareGroups);
  ListInsertSorted(g_retiredGroups, group);
}

void FreeRetiredGroups() {
  FreeGroups(g_retiredGroups);
  g_retiredGroups = nullptr;
}

void FreeGroup(GroupRecord *group) {
  ListDestroy(group->servers, 0);
  ListDestroy(group->children, 0);
  SecureZero(group, sizeof *group);
  Release(group);
}

void FreeGroups(OrderedList *groups) {
  std::vector<GroupRecord *> all;
  AnyGroupBelow(groups, [&](GroupRecord &group) {
    all.push_back(&group);
    return false;
  });
  for (GroupRecord *group : all)
    FreeGroup(group);
  ListDestroy(groups, 0);
}

void FreeGroupTree(OrderedList *groups) {
  FreeGroups(groups);
  g_topGroupCount = 0;
}

bool IsLive(const GroupRecord *group) {
  return group != nullptr && group->magic == GROUP_MAGIC;
}

bool IsOffline(const GroupRecord &group) {
  return group.client == OFFLINE_CLIENT;
}

SystemRecord *PoolHostOf(const GroupRecord *parent) {
  return parent != nullptr ? parent->client : LOCAL_SYSTEM;
}

}  // namespace kvr
