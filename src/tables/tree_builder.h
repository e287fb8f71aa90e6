// The pieces of which a tree of groups is built from tables: one group for a client, its servers,
// and its children as its client's table names them.
#pragma once

#include <bitset>
#include <cstdint>
#include <unordered_set>
#include <vector>

#include "kvrapi/table_formats.h"

#include "model/group_record.h"
#include "model/system_record.h"

namespace kvr {

// Builds groups over the registry as it stands at construction.
//
// Tables may contradict each other. On consistent ones each client is met once; whatever the tables
// say, a client never stands below its own slot, so the depth is bounded by the number of slots,
// and only a bounded number of groups is made in all for clients met before in the same walk, so
// that time and memory are polynomial in the number of systems.
class TreeBuilder {
 public:
  TreeBuilder();

  // Members of the ACG that hold a slot, in registry order.
  const std::vector<SystemRecord *> &Clients() const { return clients_; }

  // A group for a client, with the names of its header (empty where that cannot be read), in no
  // list yet. The client's clientGroup refers to it from now on.
  GroupRecord *MakeClientGroup(SystemRecord &client, GroupRecord *parent);

  // Creates the group's servers: the members of the ACG that serve its client.
  void BuildServerList(GroupRecord &group);

  // Begins a walk in which each client should be met once.
  void BeginWalk();

  // Creates the group's children from its client's table, and theirs in turn. A table that cannot
  // be read leaves the group without a list of children.
  void BuildChildGroups(GroupRecord &group);

 private:
  void MakeChildren(GroupRecord &group);
  bool Admit(const SystemRecord &client);

  std::vector<SystemRecord *> clients_;
  // By slot of a client, the members of the ACG that serve it, in registry order: asking every
  // record for every group would touch memory that is far apart.
  std::vector<SystemRecord *> servers_[KVR_SLOT_COUNT];
  std::bitset<KVR_SLOT_COUNT> path_;              // slots of the groups being built
  std::unordered_set<const SystemRecord *> met_;  // clients met in this walk
  std::uint32_t repeats_ = 0;                     // groups made for clients met before
};

}  // namespace kvr
