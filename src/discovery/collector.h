// Collecting the discovered systems into the registry.
#pragma once

namespace kvr {

// Builds the registry, the list of backup MSCs and the tree of groups from what the discovery
// library delivers and the hosts' tables say; on the MSC, brings the backups up to date. Expects
// that no model exists.
void CollectSystems();

}  // namespace kvr
