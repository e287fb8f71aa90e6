// The words that findings share: names and slots in a sentence, and ways out that the library does
// not refuse.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "findings_view.h"

namespace kvrctl {

// "h1", "h1 and h2", "h1, h2 and h3".
std::string Listed(const std::vector<std::string> &items);

// "slot 4", "slots 4 and 5", "slots 4 to 7 and 9"; the slots ascend.
std::string SlotText(const std::vector<std::uint32_t> &slots);

// A command with names behind it, in backquotes, as a shell takes it.
std::string Command(const std::vector<std::string> &words,
                    const std::vector<std::string> &names = {});

// "On h1, the MSC," or, where there isn't the one, "On the MSC".
std::string OnMsc(const View &view);

// The same within a sentence: "on h1", "on the MSC".
std::string OnMscWithin(const View &view);

// The only way on while no MSC's table can be read: who is a client, and of whom, is not known
// then.
std::string AwaitMsc(const View &view);

// Which hosts may be the missing one, as sentences; empty where every table was read.
std::string WhereMissing(const View &view);

// The same as the only way on: until those are read, nothing is called irreparable.
std::string AwaitMissing(const View &view);

// How a member gets a new table, by the role that it has now: with commands where some do it.
std::string Readmission(const View &view, const Member &member);

// What is left to do about marks in the MSC's own table, which is never to be removed.
std::string MscStays(const Member &msc);

// How a table is removed where no command does that.
std::string RemovalByHand(const std::vector<std::string> &hosts);

// How the reserves of clients are given back and set aside anew, as far as they aren't in use.
std::string ReserveAnew(const View &view, const std::vector<const Member *> &clients);

}  // namespace kvrctl
