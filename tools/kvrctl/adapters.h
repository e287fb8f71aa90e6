// Where the other hosts' adapters are: the addresses that the library itself keeps to itself,
// learned by a discovery of this room's own.
//
// That discovery runs once, at the first question, and never beside the library's: ask only while
// no discovery of the library is under way. It reads; it never writes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kvrctl {

// The two words each by which an adapter is addressed.
struct Address {
  std::uint32_t credential[2] = {};
  std::uint32_t id[2] = {};
};

// A host as the network reports it; the local host is never among them.
struct System {
  std::string name;               // the 8-bit name, or the UTF-16 one where that is empty; UTF-8
  std::string wideName;           // the UTF-16 name, or empty; UTF-8
  bool excluded = false;          // the library passes it over
  std::vector<Address> adapters;  // in the order in which they are to be tried
};

// Every host of the network, in the order in which they were reported. Stays as it is until they
// are forgotten.
const std::vector<System> &Systems();

// Makes the next question discover anew; to be called when the library has done so.
void ForgetSystems();

// The one host with these names that is not excluded; null where there is none, or more than one.
const System *SystemNamed(const std::string &name, const std::string &wideName);

// The address by which this host reaches its own table.
Address LocalAddress();

}  // namespace kvrctl
