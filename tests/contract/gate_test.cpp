// Before KVR_Initialize has succeeded, every other function answers from this table and leaves its
// arguments alone.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace {

struct Gated {
  std::uint32_t answer;
  const char *names;
};

const Gated kGated[] = {
    {5999,
     "SecurityState DiscoverServers SyncDiscovery GetAcgServers GetUnsecureServers GetSystemNameA "
     "GetSystemNameW GetLastOpFailedServers CreateKVR DeleteKVR GenerateNewKeys AddServerToACG "
     "RemoveServerFromACG EnableSwitchAccess GetBackupMSCs AddBackupMSC RemoveBackupMSC "
     "AssignNewMSC GetAsgs GetAsgNameA GetAsgNameW RenameAsgA RenameAsgW GetAsgServers "
     "GetAvailAsgServers CreateAsgA CreateAsgW DeleteAsg AddServerToAsg RemoveServerFromAsg "
     "ModifyReservedIndexCount AssignNewClient GetChildAsgs"},
    {0,
     "IsSecureClient IsMSC IsBackupMSC GetAcgServerCount GetUnsecureServerCount IsClient IsServer "
     "CanDiscoverAllSystems IsSwitchAccessEnabled GetBackupMSCCount GetAsgCount GetAsgClient "
     "GetAsgServerCount GetAvailAsgServerCount GetFreeIndexCount GetUsedIndexCount "
     "IsClientInChildAsg IsServerInChildAsg GetChildAsgCount IsAsgOffline"}};

// No function takes more than five arguments, and each fits a word.
using AnyFunction = std::uintptr_t (*)(std::uintptr_t, std::uintptr_t, std::uintptr_t,
                                       std::uintptr_t, std::uintptr_t);

TEST(Gate, EveryFunctionAnswersUninitializedAndTouchesNothing) {
  std::set<std::string> remaining;
  std::ifstream list(SOURCE_DIR "/src/api/kvrapi.def");
  for (std::string word; list >> word;)
    if (word.starts_with("KVR_") && word != "KVR_Initialize") remaining.insert(word);

  unsetenv("KVR_FABRIC");
  void *library = dlopen(LIBRARY_KVRAPI, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  // What every pointer leads to: no record, name or count, and no function to call.
  std::array<std::uint8_t, 64> poison;
  poison.fill(0xA5);
  const auto untouched = poison;
  const auto p = reinterpret_cast<std::uintptr_t>(poison.data());
  // The second round comes after a load that found no adapter, which leaves the gate shut.
  for (int round = 1; round <= 2; ++round) {
    for (const auto &[answer, names] : kGated) {
      std::istringstream words(names);
      for (std::string name; words >> name;) {
        remaining.erase("KVR_" + name);
        const auto function =
            reinterpret_cast<AnyFunction>(dlsym(library, ("KVR_" + name).c_str()));
        ASSERT_NE(function, nullptr) << name;
        EXPECT_EQ(static_cast<std::uint32_t>(function(p, p, p, p, p)), answer) << name;
        EXPECT_EQ(poison, untouched) << name;
      }
    }
    reinterpret_cast<AnyFunction>(dlsym(library, "KVR_Initialize"))(0, 0, 0, 0, 0);
  }
  EXPECT_EQ(remaining, std::set<std::string>{}) << "exported but not in the table";
  dlclose(library);
}

}  // namespace
