// Creating the configuration on this host, and taking it down everywhere.
#pragma once

#include <cstdint>

namespace kvr {

// As KVR_CreateKVR promises, behind the gate.
std::uint32_t CreateKVR(std::int32_t *slot);

// As KVR_DeleteKVR promises, behind the gate.
std::uint32_t DeleteKVR();

}  // namespace kvr
