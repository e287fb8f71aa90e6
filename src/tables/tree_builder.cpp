#include "tables/tree_builder.h"

#include <bit>
#include <iterator>

#include "model/local_state.h"
#include "model/system_order.h"
#include "model/system_registry.h"
#include "tables/host_names.h"
#include "tables/host_tables.h"
#include "tables/slot_rules.h"

namespace kvr {
namespace {

// Far above what tables left behind by interrupted changes can call for.
constexpr std::uint32_t MAX_REPEATS = 4096;

}  // namespace

TreeBuilder::TreeBuilder() {
  IndexBitmap held = {};
  for (SystemRecord &system : Systems()) {
    if (system.inAcg == 0 || !IsSlot(system.saIndex)) continue;
    clients_.push_back(&system);
    SetIndexBit(held, static_cast<std::uint32_t>(system.saIndex));
  }
  for (SystemRecord &system : Systems()) {
    if (system.inAcg == 0) continue;
    for (std::uint32_t word = 0; word < std::size(held); ++word) {
      std::uint32_t served = system.indexBitmap[word] & held[word];
      for (; served != 0; served &= served - 1) {
        servers_[32 * word + static_cast<std::uint32_t>(std::countr_zero(served))].push_back(
            &system);
      }
    }
  }
}

GroupRecord *TreeBuilder::MakeClientGroup(SystemRecord &client, GroupRecord *parent) {
  GroupRecord *group = NewGroup(&client, parent);
  client.clientGroup = group;
  ReadHostName(&client, &group->name, &group->nameW);
  return group;
}

void TreeBuilder::BuildServerList(GroupRecord &group) {
  const std::vector<SystemRecord *> &servers = servers_[group.client->saIndex];
  for (SystemRecord *server : servers)
    ++server->asgServerCount;
  group.serverCount = static_cast<std::uint32_t>(servers.size());
  group.servers = ListCreate(CompareSystems);
  ListFillSystems(*group.servers, servers);
}

void TreeBuilder::BeginWalk() {
  met_.clear();
}

bool TreeBuilder::Admit(const SystemRecord &client) {
  if (path_[static_cast<std::size_t>(client.saIndex)]) return false;
  if (met_.insert(&client).second) return true;
  return ++repeats_ <= MAX_REPEATS;
}

void TreeBuilder::MakeChildren(GroupRecord &group) {
  AccessControlTable table = {};
  if (ReadAccessTable(group.client, table) != KVR_OK) return;
  group.children = ListCreate(CompareGroups);
  for (SystemRecord *client : clients_) {
    if (!IsChild(table.entries[client->saIndex]) || !Admit(*client)) continue;
    InsertGroup(MakeClientGroup(*client, &group));
  }
}

void TreeBuilder::BuildChildGroups(GroupRecord &group) {
  const auto slot = static_cast<std::size_t>(group.client->saIndex);
  path_.set(slot);
  MakeChildren(group);
  for (GroupRecord &child : ListView<GroupRecord>(group.children)) {
    BuildServerList(child);
    BuildChildGroups(child);
  }
  path_.reset(slot);
}

}  // namespace kvr
