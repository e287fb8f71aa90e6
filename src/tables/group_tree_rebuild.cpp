#include "tables/group_tree_rebuild.h"

#include "model/group_record.h"
#include "model/local_state.h"
#include "tables/orphans.h"
#include "tables/slot_rules.h"
#include "tables/tree_builder.h"

namespace kvr {

void RebuildGroupTree() {
  if (g_topGroups != nullptr) return;
  g_topGroupCount = 0;
  g_topGroups = ListCreate(CompareGroups);
  TreeBuilder builder;
  for (SystemRecord *client : builder.Clients()) {
    if (!IsChild(g_localSaTable.entries[client->saIndex].access)) continue;
    InsertGroup(builder.MakeClientGroup(*client, nullptr));
  }
  builder.BeginWalk();
  for (GroupRecord &group : ListView<GroupRecord>(g_topGroups)) {
    builder.BuildServerList(group);
    builder.BuildChildGroups(group);
  }
  AttachOrphans(builder);
}

}  // namespace kvr
