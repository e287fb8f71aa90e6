// `kvrctl acg`: which hosts take part in the configuration.
#include <memory>

#include "kvrapi/kvrapi.h"

#include "command.h"
#include "host_changes.h"
#include "library.h"

namespace kvrctl {
namespace {

void AddMembershipCommand(CLI::App &acg, Chosen &chosen, const std::string &name,
                          const std::string &description, const Wording &wording,
                          std::uint32_t (*change)(KVR_SYSTEM)) {
  const auto hosts = std::make_shared<std::vector<std::string>>();
  const auto run = [hosts, wording, change] {
    const Library library;
    library.RequireAllHosts(wording.doing);
    return ChangeHosts(library, *hosts, wording, change);
  };
  AddCommand(acg, name, description, chosen, run)
      ->add_option("HOST", *hosts, "The hosts, by their 8-bit or UTF-16 names")
      ->required();
}

}  // namespace

void AddAcgCommands(CLI::App &app, Chosen &chosen) {
  CLI::App *acg = AddFamily(app, "acg", "Change which hosts take part; run it on the MSC");
  AddMembershipCommand(*acg, chosen, "add", "Bring hosts into the configuration",
                       {"Adding to the ACG", "Added to the ACG"}, KVR_AddServerToACG);
  AddMembershipCommand(*acg, chosen, "remove", "Take hosts out of the configuration",
                       {"Removing from the ACG", "Removed from the ACG"}, KVR_RemoveServerFromACG);
}

}  // namespace kvrctl
