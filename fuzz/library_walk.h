// Using the whole library once, whatever the hosts' tables say.
//
// What is stored in the tables, and what discovery delivers, are bytes from strangers. Whatever
// they are, the library must not crash, hang, leak, write past a caller's buffer, or count in one
// way and list in another. Programs that link this room also link the outside libraries of their
// choice. Their clock stands still (-Wl,--wrap=time), so that what the library
// draws at random is the same in every run.
#pragma once

#include <cstdint>

namespace fuzz {

extern std::uint32_t g_now;  // the time on that clock; at first 1,000,000,000

// Gives back all memory and puts the library's process-wide state to what a fresh process has.
void ForgetEverything();

// As a fresh process: loads, discovers and asks every question about every handle; then tries every
// operation twice, on hosts and groups that choice picks, asks again, discovers and asks once more.
// Ends the process with a message when an answer breaks a promise of the interface. Forgets
// everything at the end.
void UseEverything(std::uint32_t choice);

}  // namespace fuzz
