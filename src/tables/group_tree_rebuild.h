// Turning the hosts' tables into the tree of groups.
//
// The tree is stored nowhere as a tree: each client's table names its direct children, each
// server's table whom it serves. A client whose chain upwards cannot be followed, because a host in
// between was not found or its table cannot be read, is placed under a group named "Offline
// Client".
#pragma once

namespace kvr {

// Builds g_topGroups when it is absent, else does nothing. Expects a registry whose systems have no
// clientGroup and serve no group yet. Reports nothing and never stops early: an unreadable table
// only removes what it would have shown.
void RebuildGroupTree();

}  // namespace kvr
