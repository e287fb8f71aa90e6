// `kvrctl acg`: which hosts take part in the configuration.
#include "command.h"
#include "host_changes.h"

namespace kvrctl {

void AddAcgCommands(CLI::App &app, Commands &commands) {
  CLI::App *acg = AddFamily(app, "acg", "Change which hosts take part; run it on the MSC");
  AddMscChange(*acg, commands,
               {"add", "Bring hosts into the configuration", R"({"done":[…]})", Effect::Changes,
                false, "", "acg add web-0002 web-0003"},
               {"Adding to the ACG", "Added to the ACG", {"kvrctl", "acg", "add"}},
               &kvrapi::Session::AddToAcg);
  AddMscChange(*acg, commands,
               {"remove", "Take hosts out of the configuration", R"({"done":[…]})",
                Effect::Destroys, false, "", "acg remove web-0003"},
               {"Removing from the ACG", "Removed from the ACG", {"kvrctl", "acg", "remove"}},
               &kvrapi::Session::RemoveFromAcg,
               "The tables of these hosts would be removed, and no client could reach them any "
               "more: {}.");
}

}  // namespace kvrctl
