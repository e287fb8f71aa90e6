// The library's result codes in words: for each its name and what it means.
#ifndef KVRAPI_CODES_HPP
#define KVRAPI_CODES_HPP

#include <array>
#include <cstddef>
#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvrapi {

struct CodeText {
  std::uint32_t code;
  const char *name;     // as in kvrapi.h
  const char *meaning;  // a clause that completes "...: "; no full stop
};

namespace detail {

#define KVRAPI_CODE(name) name, #name

inline constexpr std::array kCodeTexts = {
    CodeText{KVRAPI_CODE(KVR_OK), "done"},
    CodeText{KVRAPI_CODE(KVR_ERR_NOT_MSC),
             "a configuration is active and this host is not its MSC"},
    CodeText{KVRAPI_CODE(KVR_ERR_NO_NAME), "the group has no name"},
    CodeText{KVRAPI_CODE(KVR_ERR_NO_LOCAL_ADAPTER), "this host has no adapter"},
    CodeText{KVRAPI_CODE(KVR_ERR_ALREADY_MSC), "this host is the MSC of a configuration already"},
    CodeText{KVRAPI_CODE(KVR_ERR_NOT_SECURED), "no configuration is active on this host"},
    CodeText{KVRAPI_CODE(KVR_ERR_MORE_SYSTEMS), "there are more hosts than were made room for"},
    CodeText{KVRAPI_CODE(KVR_ERR_NAME_TRUNCATED), "a name is longer than the room for it"},
    CodeText{KVRAPI_CODE(KVR_ERR_INVALID_HANDLE),
             "the host or group does not fit: below a group, a host must serve that group first"},
    CodeText{KVRAPI_CODE(KVR_ERR_SERVERS_FAILED), "the change could not be written to some hosts"},
    CodeText{KVRAPI_CODE(KVR_ERR_ALREADY_IN_ACG), "the host is in the ACG already"},
    CodeText{KVRAPI_CODE(KVR_ERR_NOT_IN_ACG), "the host is not in the ACG"},
    CodeText{KVRAPI_CODE(KVR_ERR_MORE_GROUPS), "there are more groups than were made room for"},
    CodeText{KVRAPI_CODE(KVR_ERR_OFFLINE_GROUP),
             "the group stands for a client that was not found, or lies below such a group"},
    CodeText{KVRAPI_CODE(KVR_ERR_NO_FREE_INDEX),
             "no free slot is left where the group would stand, or the table that tells could not "
             "be read"},
    CodeText{KVRAPI_CODE(KVR_ERR_RESERVED_COUNT_REDUCED),
             "done, with fewer reserved slots than asked for"},
    CodeText{KVRAPI_CODE(KVR_ERR_INVALID_NAME), "a group name has 1 to 31 UTF-16 units"},
    CodeText{KVRAPI_CODE(KVR_ERR_ALREADY_CLIENT),
             "the host holds a slot already, as a group's client, the MSC or a backup MSC"},
    CodeText{KVRAPI_CODE(KVR_ERR_ALREADY_ASG_SERVER), "the host serves the group already"},
    CodeText{KVRAPI_CODE(KVR_ERR_NOT_ASG_SERVER), "the host does not serve the group"},
    CodeText{KVRAPI_CODE(KVR_ERR_REMOTE_ACCESS_FAILED),
             "a table of the host could not be reached through any of its adapters"},
    CodeText{KVRAPI_CODE(KVR_ERR_SYSTEM_NOT_IN_ACG), "the host is not in the ACG"},
    CodeText{KVRAPI_CODE(KVR_ERR_HAS_CHILD_GROUPS), "the group has child groups"},
    CodeText{KVRAPI_CODE(KVR_ERR_SYSTEM_IS_CLIENT),
             "the host holds a slot, as a group's client or a backup MSC"},
    CodeText{KVRAPI_CODE(KVR_ERR_RESERVED_INDICES_IN_USE),
             "more reserved slots are in use than the number asked for"},
    CodeText{KVRAPI_CODE(KVR_ERR_IS_BACKUP_MSC), "this host, or the host named, is a backup MSC"},
    CodeText{KVRAPI_CODE(KVR_ERR_NOT_BACKUP_MSC), "the host is not a backup MSC"},
    CodeText{KVRAPI_CODE(KVR_ERR_ALREADY_BACKUP_MSC), "the host is a backup MSC already"},
    CodeText{KVRAPI_CODE(KVR_ERR_NO_NEW_MSC), "the MSC must name its successor"},
    CodeText{KVRAPI_CODE(KVR_ERR_SYSTEM_IS_ASG_SERVER), "the host serves a group"},
    CodeText{KVRAPI_CODE(KVR_ERR_CREATE_LOCAL_FAILED),
             "this host's first adapter refused the new configuration"},
    CodeText{KVRAPI_CODE(KVR_ERR_LOCAL_WRITE_FAILED),
             "this host's first adapter refused this host's table"},
    CodeText{KVRAPI_CODE(KVR_ERR_LOCAL_REMOVE_FAILED),
             "this host's first adapter kept this host's table; every other host is done"},
    CodeText{KVRAPI_CODE(KVR_ERR_NOT_INITIALIZED), "the library has not been initialized"},
};

#undef KVRAPI_CODE

inline constexpr CodeText kUnknownCode = {0, "unknown",
                                          "the library gave a result that it does not document"};

constexpr bool EveryCodeHasItsPlace() {
  for (std::size_t i = 1; i <= 32; ++i) {
    if (kCodeTexts[i].code != KVR_ERR_NOT_MSC + i - 1) return false;
  }
  return kCodeTexts.size() == 34;
}
static_assert(EveryCodeHasItsPlace(), "codes stand in order, none left out");

}  // namespace detail

// The words for a result code; for a code that the library does not have, words that say so.
constexpr const CodeText &TextOf(std::uint32_t code) noexcept {
  for (const CodeText &text : detail::kCodeTexts) {
    if (text.code == code) return text;
  }
  return detail::kUnknownCode;
}

}  // namespace kvrapi

#endif
