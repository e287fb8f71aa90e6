// The byte order in which configuration identities and names are stored.
#pragma once

#include <cstdint>

namespace kvr {

// The word that a network-order field stores for a host-order value.
std::uint32_t ToNetworkOrder(std::uint32_t hostWord);

// The host-order value of a word as a network-order field stores it.
std::uint32_t FromNetworkOrder(std::uint32_t networkWord);

}  // namespace kvr
