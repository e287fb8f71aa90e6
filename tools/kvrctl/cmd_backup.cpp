// `kvrctl backup`: the hosts that can take the MSC's role over.
#include "command.h"
#include "host_changes.h"
#include "library.h"

namespace kvrctl {
namespace {

// What keeps a backup MSC off the list.
std::vector<std::string> NotesOnBackups(const Library &library) {
  if (library.Session().IsBackupMsc()) return {"This host is a backup MSC itself."};
  return library.GroupNotes();
}

Outcome ListBackups() {
  const Library library;
  std::vector<const Host *> backups;
  for (const Host &host : library.Hosts()) {
    if (host.backupMsc) backups.push_back(&host);
  }
  return {RowsOf(backups), AsHostTable("No backup MSC is seen."), NotesOnBackups(library)};
}

}  // namespace

void AddBackupCommands(CLI::App &app, Commands &commands) {
  CLI::App *backup = AddFamily(app, "backup", "Name the hosts that can take the MSC's role over");
  AddMscChange(*backup, commands,
               {"add", "Make hosts backup MSCs; they join the ACG; run it on the MSC",
                R"({"done":[…]})", Effect::Changes, false, "", "backup add db-0005"},
               {"Making a backup MSC", "Backup MSCs from now on", {"kvrctl", "backup", "add"}},
               &kvrapi::Session::AddBackupMsc);
  AddMscChange(
      *backup, commands,
      {"remove", "Make backup MSCs plain members again; run it on the MSC", R"({"done":[…]})",
       Effect::Changes, false, "", "backup remove db-0005"},
      {"Ending the role of backup MSC", "No backup MSC any more", {"kvrctl", "backup", "remove"}},
      &kvrapi::Session::RemoveBackupMsc);
  AddCommand(*backup, {"list", "List the backup MSCs", R"([{"name","wide_name"}])"}, commands,
             ListBackups);
}

}  // namespace kvrctl
