// Clients that the walk from the top did not reach, and where they are hung into the tree.
#pragma once

#include "tables/tree_builder.h"

namespace kvr {

// Makes a group for every client that has none although this host's table knows its slot, and
// places each under the Offline Client group as deep in the tree as the tables say where it
// belongs.
void AttachOrphans(TreeBuilder &builder);

}  // namespace kvr
