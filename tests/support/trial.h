// One change on trial: what it leads to when nothing fails, and what faults may make of it.
#pragma once

#include "support/world.h"

namespace kvrtest {

struct Change {
  std::string name;  // of the function, without KVR_
  std::function<std::uint32_t()> run;
  std::function<std::uint32_t()> again = run;  // how it is repeated once the hosts answer again
};

// Makes a change as the host, whose process is running and has discovered, with faults, and again
// without where it failed. Throws std::logic_error with what is broken:
//  - without a fault, a process that lives long does as a fresh one, and a refusal changes nothing;
//  - a failure changes nothing but what is named in trial.cpp, and its repetition leads where the
//    change would have led; a success is whole but for the hosts that failed;
//  - the hosts marked are those that failed;
//  - the model is what a fresh discovery makes of the tables, and the slots are in order.
// The process and the tables are afterwards as if nothing had failed. Hosts have one adapter each.
// Returns the number of outside calls that the change made.
std::size_t Try(const World &world, const std::string &host, const Change &change,
                const std::function<void(const World &)> &addFaults);

// KVR_AssignNewMSC, where the MSC that a backup MSC replaces, or passes over, is lost for good.
std::uint32_t AssignNewMsc(const World &world, KVR_SYSTEM system);

}  // namespace kvrtest
