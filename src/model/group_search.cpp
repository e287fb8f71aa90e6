#include "model/group_search.h"

namespace kvr {

std::uint32_t IsInChildGroups(const GroupRecord *group, const SystemRecord *system,
                              GroupRole role) {
  if (group != nullptr && !IsLive(group)) return 0;
  if (role == GroupRole::Server && !IsLive(system)) return 0;
  const OrderedList *below = group != nullptr ? group->children : g_topGroups;
  const bool found = AnyGroupBelow(below, [&](const GroupRecord &candidate) {
    if (role == GroupRole::Client) return candidate.client == system;
    return ListFind(candidate.servers, system) != nullptr;
  });
  return found ? 1 : 0;
}

void RemoveServerFromAllGroups(OrderedList *groups, const SystemRecord *system) {
  AnyGroupBelow(groups, [&](GroupRecord &group) {
    if (ListNode *node = ListFind(group.servers, system)) {
      ListUnlink(node, 0);
      --group.serverCount;
    }
    return false;
  });
}

}  // namespace kvr
