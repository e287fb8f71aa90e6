// `kvrctl acg`: which hosts take part in the configuration.
#include "kvrapi/kvrapi.h"

#include "command.h"
#include "host_changes.h"

namespace kvrctl {

void AddAcgCommands(CLI::App &app, Chosen &chosen) {
  CLI::App *acg = AddFamily(app, "acg", "Change which hosts take part; run it on the MSC");
  AddMscChange(*acg, chosen, "add", "Bring hosts into the configuration",
               {"Adding to the ACG", "Added to the ACG", {"kvrctl", "acg", "add"}},
               KVR_AddServerToACG);
  AddMscChange(*acg, chosen, "remove", "Take hosts out of the configuration",
               {"Removing from the ACG", "Removed from the ACG", {"kvrctl", "acg", "remove"}},
               KVR_RemoveServerFromACG);
}

}  // namespace kvrctl
