// Filling a list of systems at once, in the order that inserting them one by one would give.
//
// One insertion scans the list from its start, so inserting thousands of hosts one by one would
// touch every pair of records. The comparison is not transitive where hosts with and without a
// UTF-16 name meet, so sorting would give another order; what counts is the first item that stops
// the scan.
#pragma once

#include <vector>

#include "model/ordered_list.h"
#include "model/system_record.h"

namespace kvr {

// Fills an empty list ordered by CompareSystems with the arrivals, which may repeat. The order is
// exactly that of ListInsertSorted for each of them in turn.
void ListFillSystems(OrderedList &list, const std::vector<SystemRecord *> &arrivals);

}  // namespace kvr
