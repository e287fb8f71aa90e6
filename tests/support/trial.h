// One change on trial: what it leads to when nothing fails, and what faults may make of it.
#pragma once

#include "support/world.h"

namespace kvrtest {

// A function, without KVR_, and what it is given: a group by its client, a host or a new name.
struct Change {
  std::string function, group = {}, host = {};
  std::uint32_t count = 0;
};

// The hosts whose tables set a flag at some slot.
std::vector<std::string> Holders(const World &world, std::uint32_t flag);

// What has changed in each table: roleFlags, serveFlags, the 8-bit name, and the keys, which should
// be those of M.
std::string News(const World &world, const fabric::ImageSet &before);

// Calls the function. Where a backup MSC replaces an MSC or passes one over, that is lost for good.
std::uint32_t Make(const World &world, const Change &change);

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

}  // namespace kvrtest
