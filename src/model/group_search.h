// Walking the tree of groups without recursion: tables from strangers may build it deep.
#pragma once

#include <cstdint>
#include <vector>

#include "model/group_record.h"
#include "model/ordered_list.h"

namespace kvr {

// Visits every group of a list, which may be null, and below: each before its children, and those
// before its next sibling, until visit(GroupRecord &) returns true; returns whether one did. The
// walk has left the group's own node before it visits, but lists must not change under it.
template <class Visit>
bool AnyGroupBelow(const OrderedList *groups, Visit visit) {
  std::vector<const ListNode *> pending;
  if (const ListNode *first = ListFirst(groups)) pending.push_back(first);
  while (!pending.empty()) {
    const ListNode *node = pending.back();
    pending.pop_back();
    if (const ListNode *sibling = ListNext(node)) pending.push_back(sibling);
    auto *group = static_cast<GroupRecord *>(node->data);
    if (visit(*group)) return true;
    if (const ListNode *child = ListFirst(group->children)) pending.push_back(child);
  }
  return false;
}

// What IsInChildGroups looks for.
enum class GroupRole { Client, Server };

// 1 when the system is the client, or a server, of a group below the given one (null: of any
// group), else 0. The group itself is not tested; a group that is not live gives 0, and so does a
// server that is not live. A client is only compared.
std::uint32_t IsInChildGroups(const GroupRecord *group, const SystemRecord *system, GroupRole role);

// Takes a system out of the servers of every group of a list, which may be null, and below.
void RemoveServerFromAllGroups(OrderedList *groups, const SystemRecord *system);

}  // namespace kvr
