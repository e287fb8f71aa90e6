// Outside libraries of a stranger: what they deliver is written in a string of bytes.
//
// Every string means something. Three bytes come first: the number of discovered hosts (modulo 65),
// the period of the TQ_ calls that fail (0: none fails), and who the local host is: 254 has no
// adapter, 255 claims 200 adapters; else modulo 3 the MSC, a client that owns nothing, or a backup
// MSC. Host h holds slot h and is a member of the configuration, and the local host is the last
// one; all tables agree at first. Then come instructions of 8 bytes:
//
//   0      what is done, modulo 9
//   1      to which host; 255: to each of them
//   2, 3   where, low byte first
//   4 - 7  a value, low byte first
//
//   0  the role flags of a position become the value
//   1  the serve flags of a position become the value
//   2  role flags are added at the slot of the host that many hosts on; 65535: of all
//   3  a word of the table's header becomes the value
//   4  the whole table becomes random bytes with the value as the seed
//   5  the host holds no table
//   6  a word of the discovery record becomes the value
//   7  some reachIdCount of it, from 100 on adapterCount, becomes the value
//   8  the whole discovery record becomes random bytes with the value as the seed
//
// A rest that is too short for an instruction is ignored. The network answers at once, on the
// caller's thread.
#pragma once

#include <cstdint>
#include <span>

namespace fuzz {

// Sets up the network that the outside functions of this process act on from now on.
void SetStranger(std::span<const std::uint8_t> bytes);

}  // namespace fuzz
