#include "result_text.h"

#include <algorithm>
#include <array>

#include "kvrapi/kvrapi.h"

namespace kvrctl {
namespace {

#define KVRCTL_CODE(name) name, #name

constexpr std::array kTexts = {
    ResultText{KVRCTL_CODE(KVR_OK), "done", "Nothing needs to be done."},
    ResultText{KVRCTL_CODE(KVR_ERR_NOT_MSC),
               "a configuration is active and this host is not its MSC",
               "Run the command on the MSC: `kvrctl status` on a host tells whether it is."},
    ResultText{KVRCTL_CODE(KVR_ERR_NO_NAME), "the group has no name",
               "Name the group by its client instead, as @HOST; `kvrctl tree` shows the clients."},
    ResultText{
        KVRCTL_CODE(KVR_ERR_NO_LOCAL_ADAPTER), "this host has no adapter",
        "Check this host's adapters; on a simulated network give --fabric DIR and --host NAME."},
    ResultText{
        KVRCTL_CODE(KVR_ERR_ALREADY_MSC), "this host is the MSC of a configuration already",
        "Go on with `kvrctl acg add`, or take the configuration down with `kvrctl destroy`."},
    ResultText{KVRCTL_CODE(KVR_ERR_NOT_SECURED), "no configuration is active on this host",
               "Create one here with `kvrctl create`, or run the command on the MSC."},
    ResultText{KVRCTL_CODE(KVR_ERR_MORE_SYSTEMS), "there are more hosts than were made room for",
               "Run the command again: the number of hosts changed while it ran."},
    ResultText{KVRCTL_CODE(KVR_ERR_NAME_TRUNCATED), "a name is longer than the room for it",
               "Run the command again: the name changed while it was read."},
    ResultText{KVRCTL_CODE(KVR_ERR_INVALID_HANDLE),
               "the host or group does not fit: below a group, a host must serve that group first",
               "`kvrctl group available` lists who could serve a group; add the host to the parent "
               "group with `kvrctl group add-server` first."},
    ResultText{KVRCTL_CODE(KVR_ERR_SERVERS_FAILED), "the change could not be written to some hosts",
               "Bring the hosts listed back into reach."},
    ResultText{KVRCTL_CODE(KVR_ERR_ALREADY_IN_ACG), "the host is in the ACG already",
               "Nothing needs to be done; `kvrctl hosts` lists the members."},
    ResultText{KVRCTL_CODE(KVR_ERR_NOT_IN_ACG), "the host is not in the ACG",
               "Nothing needs to be done; `kvrctl hosts` lists the members."},
    ResultText{KVRCTL_CODE(KVR_ERR_MORE_GROUPS), "there are more groups than were made room for",
               "Run the command again: the number of groups changed while it ran."},
    ResultText{KVRCTL_CODE(KVR_ERR_OFFLINE_GROUP),
               "the group stands for a client that was not found, or lies below such a group",
               "Bring the missing client back into reach and run the command again."},
    ResultText{
        KVRCTL_CODE(KVR_ERR_NO_FREE_INDEX),
        "no free slot is left where the group would stand, or the table that tells could not be "
        "read",
        "Look with `kvrctl slots`; give the parent's client more with `kvrctl group set-reserve`, "
        "or create the group elsewhere."},
    ResultText{
        KVRCTL_CODE(KVR_ERR_RESERVED_COUNT_REDUCED),
        "done, with fewer reserved slots than asked for",
        "`kvrctl slots` shows how many are free above the group; ask again with `kvrctl group "
        "set-reserve` when there are more."},
    ResultText{KVRCTL_CODE(KVR_ERR_INVALID_NAME), "a group name has 1 to 31 UTF-16 units",
               "Choose another name; a character beyond U+FFFF, as an emoji, takes two units."},
    ResultText{KVRCTL_CODE(KVR_ERR_ALREADY_CLIENT),
               "the host holds a slot already, as a group's client, the MSC or a backup MSC",
               "Choose another client; `kvrctl hosts` shows who holds none."},
    ResultText{KVRCTL_CODE(KVR_ERR_ALREADY_ASG_SERVER), "the host serves the group already",
               "Nothing needs to be done; `kvrctl group show` lists the servers."},
    ResultText{KVRCTL_CODE(KVR_ERR_NOT_ASG_SERVER), "the host does not serve the group",
               "Nothing needs to be done; `kvrctl group show` lists the servers."},
    ResultText{KVRCTL_CODE(KVR_ERR_REMOTE_ACCESS_FAILED),
               "a table of the host could not be reached through any of its adapters",
               "Check that the host and its adapters are up, then try again."},
    ResultText{KVRCTL_CODE(KVR_ERR_SYSTEM_NOT_IN_ACG), "the host is not in the ACG",
               "Add it on the MSC with `kvrctl acg add` first."},
    ResultText{KVRCTL_CODE(KVR_ERR_HAS_CHILD_GROUPS), "the group has child groups",
               "Delete the groups below it first with `kvrctl group delete`; `kvrctl tree` shows "
               "them."},
    ResultText{
        KVRCTL_CODE(KVR_ERR_SYSTEM_IS_CLIENT),
        "the host holds a slot, as a group's client or a backup MSC",
        "End that role first, with `kvrctl group delete`, `kvrctl group set-client` or `kvrctl "
        "backup remove`; `kvrctl hosts` shows it."},
    ResultText{KVRCTL_CODE(KVR_ERR_RESERVED_INDICES_IN_USE),
               "more reserved slots are in use than the number asked for",
               "Ask for at least the used number that `kvrctl slots GROUP` shows, or delete groups "
               "below first."},
    ResultText{
        KVRCTL_CODE(KVR_ERR_IS_BACKUP_MSC), "this host, or the host named, is a backup MSC",
        "Change groups from the MSC or a client, and choose a server that `kvrctl group available` "
        "lists there."},
    ResultText{
        KVRCTL_CODE(KVR_ERR_NOT_BACKUP_MSC), "the host is not a backup MSC",
        "Choose one that `kvrctl backup list` lists, or make it one with `kvrctl backup add`."},
    ResultText{KVRCTL_CODE(KVR_ERR_ALREADY_BACKUP_MSC), "the host is a backup MSC already",
               "Nothing needs to be done; `kvrctl backup list` lists the backups."},
    ResultText{KVRCTL_CODE(KVR_ERR_NO_NEW_MSC), "the MSC must name its successor",
               "Name a backup MSC with `kvrctl handover HOST`; `kvrctl backup list` lists them."},
    ResultText{
        KVRCTL_CODE(KVR_ERR_SYSTEM_IS_ASG_SERVER), "the host serves a group",
        "Choose a host that serves none, or end its service with `kvrctl group remove-server`; "
        "`kvrctl hosts` shows who serves what."},
    ResultText{
        KVRCTL_CODE(KVR_ERR_CREATE_LOCAL_FAILED),
        "this host's first adapter refused the new configuration",
        "Check this host's adapters; nothing is active, so `kvrctl create` may be repeated."},
    ResultText{KVRCTL_CODE(KVR_ERR_LOCAL_WRITE_FAILED),
               "this host's first adapter refused this host's table",
               "Check this host's adapters and run the command again."},
    ResultText{KVRCTL_CODE(KVR_ERR_LOCAL_REMOVE_FAILED),
               "this host's first adapter kept this host's table; every other host is done",
               "Check this host's adapters and run `kvrctl destroy` again."},
    ResultText{KVRCTL_CODE(KVR_ERR_NOT_INITIALIZED), "the library has not been initialized",
               "Run the command again; if it persists, this is a fault of kvrctl: report it."},
};

#undef KVRCTL_CODE

constexpr ResultText kUnknown = {0, "unknown",
                                 "the library gave a result that it does not document",
                                 "Check that library and kvrctl are of the same version."};

constexpr bool EveryDocumentedCodeIsThere() {
  for (std::size_t i = 1; i <= 32; ++i) {
    if (kTexts[i].code != KVR_ERR_NOT_MSC + i - 1) return false;
  }
  return kTexts.size() == 34;
}
static_assert(EveryDocumentedCodeIsThere(), "codes stand in order, none left out");

}  // namespace

const ResultText &TextOf(std::uint32_t code) {
  const auto found = std::find_if(kTexts.begin(), kTexts.end(),
                                  [code](const ResultText &text) { return text.code == code; });
  return found == kTexts.end() ? kUnknown : *found;
}

}  // namespace kvrctl
