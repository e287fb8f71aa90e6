// `kvrctl backup`: the hosts that can take the MSC's role over.
#include "kvrapi/kvrapi.h"

#include "command.h"
#include "host_changes.h"
#include "library.h"

namespace kvrctl {
namespace {

// What keeps a backup MSC off the list.
std::vector<std::string> NotesOnBackups(const Library &library) {
  if (KVR_IsBackupMSC() != 0) return {"This host is a backup MSC itself."};
  return library.GroupNotes();
}

Outcome ListBackups() {
  const Library library;
  std::vector<const Host *> backups;
  for (const Host &host : library.Hosts()) {
    if (host.backupMsc) backups.push_back(&host);
  }
  const Json rows = RowsOf(backups);
  return {rows, HostTable(rows, "No backup MSC is seen."), NotesOnBackups(library), std::nullopt};
}

}  // namespace

void AddBackupCommands(CLI::App &app, Chosen &chosen) {
  CLI::App *backup = AddFamily(app, "backup", "Name the hosts that can take the MSC's role over");
  AddMscChange(*backup, chosen, "add",
               "Make hosts backup MSCs; they join the ACG; run it on the MSC",
               {"Making a backup MSC", "Backup MSCs from now on", {"kvrctl", "backup", "add"}},
               KVR_AddBackupMSC);
  AddMscChange(
      *backup, chosen, "remove", "Make backup MSCs plain members again; run it on the MSC",
      {"Ending the role of backup MSC", "No backup MSC any more", {"kvrctl", "backup", "remove"}},
      KVR_RemoveBackupMSC);
  AddCommand(*backup, "list", "List the backup MSCs", chosen, ListBackups);
}

}  // namespace kvrctl
