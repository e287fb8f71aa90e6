// Letting the whole model go.
#pragma once

namespace kvr {

// Wipes and frees the tree of groups, the list of backup MSCs and the registry with its counts;
// where there was a registry, switch access reads as off. Every handle given out becomes invalid.
void ReleaseModel();

}  // namespace kvr
