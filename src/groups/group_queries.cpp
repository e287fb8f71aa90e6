#include "groups/group_queries.h"

#include "model/copy_out.h"
#include "model/group_record.h"
#include "model/group_search.h"
#include "model/name_copy.h"
#include "model/system_queries.h"

namespace kvr {
namespace {

// Delivers the UTF-16 name, or the 8-bit one converted where there is no other.
std::uint32_t CopyWideName(const GroupRecord &group, KVR_WCHAR *wide, std::uint32_t size) {
  if (group.nameW[0] != 0) return CopyName(group.nameW, KVR_NAME_CAPACITY, wide, size);
  KVR_WCHAR converted[KVR_NAME_CAPACITY] = {};
  Widen(converted, group.name, BoundedLength(group.name, KVR_NAME_CAPACITY));
  return CopyName(converted, KVR_NAME_CAPACITY, wide, size);
}

}  // namespace

std::uint32_t GetAsgCount() {
  return g_topGroupCount;
}

std::uint32_t GetAsgs(KVR_GROUP *groups, std::uint32_t *count) {
  return CopyOutAll(g_topGroups, groups, count, KVR_ERR_MORE_GROUPS);
}

KVR_SYSTEM GetAsgClient(KVR_GROUP group) {
  return IsLive(group) && !IsOffline(*group) ? group->client : nullptr;
}

std::uint32_t GetAsgServerCount(KVR_GROUP group) {
  if (group == nullptr) return GetAcgServerCount();
  return IsLive(group) ? group->serverCount : 0;
}

std::uint32_t GetAsgServers(KVR_GROUP group, KVR_SYSTEM *systems, std::uint32_t *count) {
  if (group == nullptr) return GetAcgServers(systems, count);
  if (!IsLive(group)) return KVR_ERR_INVALID_HANDLE;
  return CopyOutAll(group->servers, systems, count, KVR_ERR_MORE_SYSTEMS);
}

std::uint32_t GetChildAsgCount(KVR_GROUP group) {
  if (group == nullptr) return GetAsgCount();
  return IsLive(group) ? group->childCount : 0;
}

std::uint32_t GetChildAsgs(KVR_GROUP group, KVR_GROUP *groups, std::uint32_t *count) {
  if (group == nullptr) return GetAsgs(groups, count);
  if (!CanCopyOut(groups, count)) return KVR_ERR_INVALID_HANDLE;
  if (!IsLive(group)) {
    *count = 0;
    return KVR_ERR_INVALID_HANDLE;
  }
  return CopyOutAll(group->children, groups, count, KVR_ERR_MORE_GROUPS);
}

std::uint32_t IsClientInChildAsg(KVR_GROUP group, KVR_SYSTEM system) {
  return IsInChildGroups(group, system, GroupRole::Client);
}

std::uint32_t IsServerInChildAsg(KVR_GROUP group, KVR_SYSTEM system) {
  return IsInChildGroups(group, system, GroupRole::Server);
}

std::uint32_t IsAsgOffline(KVR_GROUP group) {
  return group != nullptr && IsOffline(*group) ? 1 : 0;
}

std::uint32_t GetAsgName(KVR_GROUP group, char *ascii, KVR_WCHAR *wide, std::uint32_t size) {
  if (ascii != nullptr) *ascii = 0;
  if (wide != nullptr) *wide = 0;
  if (!IsLive(group)) return KVR_ERR_INVALID_HANDLE;
  if (ascii == nullptr && wide == nullptr) return KVR_ERR_NO_NAME;
  const bool named = group->name[0] != 0 || (wide != nullptr && group->nameW[0] != 0);
  if (!named) return KVR_ERR_NO_NAME;
  const std::uint32_t result = ascii != nullptr
                                   ? CopyName(group->name, KVR_NAME_CAPACITY, ascii, size)
                                   : CopyWideName(*group, wide, size);
  if (result != KVR_OK) return result;
  return IsOffline(*group) ? KVR_ERR_OFFLINE_GROUP : KVR_OK;
}

}  // namespace kvr
