// A group's name on its way from the caller into the client's table and the model.
#pragma once

#include <cstddef>

#include "kvrapi/kvr_wchar.h"

#include "model/group_record.h"

namespace kvr {

// A name as the caller gives it: in one of its two forms, the other one null.
struct GivenName {
  const char *ascii;
  const KVR_WCHAR *wide;
};

// Characters of a name; KVR_NAME_CAPACITY when it does not fit a group's name field, and when there
// is no name.
std::size_t LengthOf(const GivenName &name);

// Writes a name that fits into a host's header, in both forms. That it could not be written is not
// reported: the group stands without it.
void StoreName(SystemRecord *client, const GivenName &name);

// Puts a name that fits into a group's record, in the form given; the other form stays.
void SetName(GroupRecord &group, const GivenName &name);

// As KVR_RenameAsgA and KVR_RenameAsgW promise, behind the gate.
std::uint32_t RenameAsg(KVR_GROUP group, const char *ascii, const KVR_WCHAR *wide);

}  // namespace kvr
