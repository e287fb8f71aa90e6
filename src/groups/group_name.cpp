#include "groups/group_name.h"

#include "model/local_state.h"
#include "platform/text.h"
#include "tables/host_names.h"

namespace kvr {
namespace {

std::uint32_t CheckRenaming(const GroupRecord *group, const GivenName &name) {
  if (g_isBackupMsc != 0) return KVR_ERR_IS_BACKUP_MSC;
  if (!IsLive(group)) return KVR_ERR_INVALID_HANDLE;
  if (IsOffline(*group)) return KVR_ERR_OFFLINE_GROUP;
  const std::size_t length = LengthOf(name);
  return length > 0 && length < KVR_NAME_CAPACITY ? KVR_OK : KVR_ERR_INVALID_NAME;
}

}  // namespace

std::size_t LengthOf(const GivenName &name) {
  if (name.ascii != nullptr) return BoundedLength(name.ascii, KVR_NAME_CAPACITY);
  if (name.wide != nullptr) return BoundedLength(name.wide, KVR_NAME_CAPACITY);
  return KVR_NAME_CAPACITY;
}

void StoreName(SystemRecord *client, const GivenName &name) {
  if (name.ascii != nullptr) {
    WriteHostNameA(client, name.ascii);
  } else {
    WriteHostNameW(client, name.wide);
  }
}

void SetName(GroupRecord &group, const GivenName &name) {
  if (name.ascii != nullptr) {
    CopyPadded(group.name, KVR_NAME_CAPACITY, name.ascii, LengthOf(name));
  } else {
    CopyPadded(group.nameW, KVR_NAME_CAPACITY, name.wide, LengthOf(name));
  }
}

std::uint32_t RenameAsg(KVR_GROUP group, const char *ascii, const KVR_WCHAR *wide) {
  const GivenName name{ascii, wide};
  if (const std::uint32_t refusal = CheckRenaming(group, name)) return refusal;
  StoreName(group->client, name);
  // Lists are in the order of the 8-bit names; a new UTF-16 name moves nothing.
  if (ascii != nullptr) TakeOutGroup(group);
  SetName(*group, name);
  if (ascii != nullptr) InsertGroup(group);
  return KVR_OK;
}

}  // namespace kvr
