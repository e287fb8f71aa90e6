// Before KVR_Initialize has succeeded, every other function answers that, and leaves its arguments
// alone.
#include <array>
#include <cstdint>
#include <fstream>
#include <regex>
#include <string>

#include <gtest/gtest.h>

#include "loaded_library.h"
#include "support/process.h"

namespace {

// Those that answer no result code, but what there is before anything is known.
const std::regex kAnswers0(
    "KVR_(IsSecureClient|IsMSC|IsBackupMSC|GetAcgServerCount|GetUnsecureServerCount|IsClient|"
    "IsServer|CanDiscoverAllSystems|IsSwitchAccessEnabled|GetBackupMSCCount|GetAsgCount|"
    "GetAsgClient|GetAsgServerCount|GetAvailAsgServerCount|GetFreeIndexCount|GetUsedIndexCount|"
    "IsClientInChildAsg|IsServerInChildAsg|GetChildAsgCount|IsAsgOffline)");

TEST(Gate, EveryFunctionAnswersUninitializedAndTouchesNothing) {
  SetVariable("KVR_FABRIC", "");
  const LoadedLibrary library(LIBRARY_KVRAPI);
  // What every pointer leads to: no record, name or count, and no function to call.
  std::array<std::uint8_t, 64> poison;
  poison.fill(0xA5);
  const auto untouched = poison;
  const auto p = reinterpret_cast<std::uintptr_t>(poison.data());
  // The second round comes after a load that found no adapter, which leaves the gate shut.
  for (int round = 1; round <= 2; ++round) {
    std::ifstream list(SOURCE_DIR "/src/api/kvrapi.def");
    int functions = 0;
    for (std::string name; list >> name;) {
      if (!name.starts_with("KVR_") || name == "KVR_Initialize") continue;
      EXPECT_EQ(static_cast<std::uint32_t>(library.Call(name, p, p, p, p, p)),
                std::regex_match(name, kAnswers0) ? 0 : 5999)
          << name;
      EXPECT_EQ(poison, untouched) << name;
      ++functions;
    }
    EXPECT_EQ(functions, 53);
    library.Call("KVR_Initialize");
  }
}

}  // namespace
