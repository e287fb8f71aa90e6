// The name of a client's group, kept in the header of the client's table in both encodings.
#pragma once

#include <cstdint>

#include "kvrapi/kvr_wchar.h"
#include "kvrapi/table_formats.h"

#include "model/system_record.h"

namespace kvr {

// Writes a name of at most 31 characters into a host's header, converted into the other encoding as
// well; everything else in the header stays as read. Returns the result of the header's read when
// that fails, and then nothing was written, else the result of its write.
std::uint32_t WriteHostNameA(SystemRecord *host, const char *name);
std::uint32_t WriteHostNameW(SystemRecord *host, const KVR_WCHAR *name);

// Empties the 8-bit name; the UTF-16 name stays. Results as for WriteHostNameA.
std::uint32_t ClearHostName(SystemRecord *host);

// Reads both forms of the name, as stored: a stranger's name may lack its terminator. Returns the
// result of the header's read; when it fails the outputs, each of which may be null, are untouched.
std::uint32_t ReadHostName(SystemRecord *host, char (*ascii)[KVR_NAME_CAPACITY],
                           KVR_WCHAR (*wide)[KVR_NAME_CAPACITY]);

}  // namespace kvr
