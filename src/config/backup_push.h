// Keeping the backup MSCs' copies of the MSC's access table up to date.
#pragma once

#include <cstdint>

#include "model/system_record.h"

namespace kvr {

// Copies the local access table to a backup MSC, marking the MSC's slot as the backup's own.
// Returns 0, 5019 when the backup could not be read or written, or 5004, with nothing written,
// while this host holds no slot. The backup's record does not change.
std::uint32_t PushAccessTableToBackup(SystemRecord &backup);

// Does so for every backup MSC in order; failures are ignored, the next push tries again.
void PushAccessTableToAllBackups();

}  // namespace kvr
