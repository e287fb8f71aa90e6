#include "hints.h"

#include <algorithm>
#include <array>

#include "kvrapi/kvrapi.h"

namespace kvrctl {
namespace {

struct Hint {
  std::uint32_t code;
  const char *text;
};

constexpr std::array kHints = {
    Hint{KVR_OK, "Nothing needs to be done."},
    Hint{KVR_ERR_NOT_MSC,
         "Run the command on the MSC: `kvrctl status` on a host tells whether it is."},
    Hint{KVR_ERR_NO_NAME,
         "Name the group by its client instead, as @HOST; `kvrctl tree` shows the clients."},
    Hint{KVR_ERR_NO_LOCAL_ADAPTER,
         "Check this host's adapters; on a simulated network give --fabric DIR and --host NAME."},
    Hint{KVR_ERR_ALREADY_MSC,
         "Go on with `kvrctl acg add`, or take the configuration down with `kvrctl destroy`."},
    Hint{KVR_ERR_NOT_SECURED,
         "Create one here with `kvrctl create`, or run the command on the MSC."},
    Hint{KVR_ERR_MORE_SYSTEMS, "Run the command again: the number of hosts changed while it ran."},
    Hint{KVR_ERR_NAME_TRUNCATED, "Run the command again: the name changed while it was read."},
    Hint{KVR_ERR_INVALID_HANDLE,
         "`kvrctl group available` lists who could serve a group; add the host to the parent "
         "group with `kvrctl group add-server` first."},
    Hint{KVR_ERR_SERVERS_FAILED, "Bring the hosts listed back into reach."},
    Hint{KVR_ERR_ALREADY_IN_ACG, "Nothing needs to be done; `kvrctl hosts` lists the members."},
    Hint{KVR_ERR_NOT_IN_ACG, "Nothing needs to be done; `kvrctl hosts` lists the members."},
    Hint{KVR_ERR_MORE_GROUPS, "Run the command again: the number of groups changed while it ran."},
    Hint{KVR_ERR_OFFLINE_GROUP,
         "Bring the missing client back into reach and run the command again."},
    Hint{KVR_ERR_NO_FREE_INDEX,
         "Look with `kvrctl slots`; give the parent's client more with `kvrctl group set-reserve`, "
         "or create the group elsewhere."},
    Hint{KVR_ERR_RESERVED_COUNT_REDUCED,
         "`kvrctl slots` shows how many are free above the group; ask again with `kvrctl group "
         "set-reserve` when there are more."},
    Hint{KVR_ERR_INVALID_NAME,
         "Choose another name; a character beyond U+FFFF, as an emoji, takes two units."},
    Hint{KVR_ERR_ALREADY_CLIENT, "Choose another client; `kvrctl hosts` shows who holds none."},
    Hint{KVR_ERR_ALREADY_ASG_SERVER,
         "Nothing needs to be done; `kvrctl group show` lists the servers."},
    Hint{KVR_ERR_NOT_ASG_SERVER,
         "Nothing needs to be done; `kvrctl group show` lists the servers."},
    Hint{KVR_ERR_REMOTE_ACCESS_FAILED,
         "Check that the host and its adapters are up, then try again."},
    Hint{KVR_ERR_SYSTEM_NOT_IN_ACG, "Add it on the MSC with `kvrctl acg add` first."},
    Hint{KVR_ERR_HAS_CHILD_GROUPS,
         "Delete the groups below it first with `kvrctl group delete`; `kvrctl tree` shows "
         "them."},
    Hint{KVR_ERR_SYSTEM_IS_CLIENT,
         "End that role first, with `kvrctl group delete`, `kvrctl group set-client` or `kvrctl "
         "backup remove`; `kvrctl hosts` shows it."},
    Hint{KVR_ERR_RESERVED_INDICES_IN_USE,
         "Ask for at least the used number that `kvrctl slots GROUP` shows, or delete groups "
         "below first."},
    Hint{
        KVR_ERR_IS_BACKUP_MSC,
        "Change groups from the MSC or a client, and choose a server that `kvrctl group available` "
        "lists there."},
    Hint{KVR_ERR_NOT_BACKUP_MSC,
         "Choose one that `kvrctl backup list` lists, or make it one with `kvrctl backup add`."},
    Hint{KVR_ERR_ALREADY_BACKUP_MSC,
         "Nothing needs to be done; `kvrctl backup list` lists the backups."},
    Hint{KVR_ERR_NO_NEW_MSC,
         "Name a backup MSC with `kvrctl handover HOST`; `kvrctl backup list` lists them."},
    Hint{KVR_ERR_SYSTEM_IS_ASG_SERVER,
         "Choose a host that serves none, or end its service with `kvrctl group remove-server`; "
         "`kvrctl hosts` shows who serves what."},
    Hint{KVR_ERR_CREATE_LOCAL_FAILED,
         "Check this host's adapters; nothing is active, so `kvrctl create` may be repeated."},
    Hint{KVR_ERR_LOCAL_WRITE_FAILED, "Check this host's adapters and run the command again."},
    Hint{KVR_ERR_LOCAL_REMOVE_FAILED, "Check this host's adapters and run `kvrctl destroy` again."},
    Hint{KVR_ERR_NOT_INITIALIZED,
         "Run the command again; if it persists, this is a fault of kvrctl: report it."},
};

constexpr char kUnknown[] = "Check that library and kvrctl are of the same version.";

constexpr bool EveryDocumentedCodeIsThere() {
  for (std::size_t i = 1; i <= 32; ++i) {
    if (kHints[i].code != KVR_ERR_NOT_MSC + i - 1) return false;
  }
  return kHints.size() == 34;
}
static_assert(EveryDocumentedCodeIsThere(), "codes stand in order, none left out");

}  // namespace

const char *HintOf(std::uint32_t code) {
  const auto found = std::find_if(kHints.begin(), kHints.end(),
                                  [code](const Hint &hint) { return hint.code == code; });
  return found == kHints.end() ? kUnknown : found->text;
}

}  // namespace kvrctl
