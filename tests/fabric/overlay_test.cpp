#include <random>

#include "fabric/current.h"
#include "filled.h"
#include "scratch_folder.h"
#include "support/process.h"

using namespace fabric;

constexpr std::uint32_t kWriteWhole = 2;

std::uint32_t Act(Network &network, std::uint32_t draw) {
  auto address = network.AddressOf(network.Hosts()[draw % 3].name, draw / 3 % 2);
  if (draw % 3 == 0) address.credential = {};
  if (draw % 7 == 0) network.FailCall(1);
  if (draw % 5 == 0) return network.RemoveTable(address);
  if (draw % 5 == 1) return network.Synchronize(address);
  const SaTable image = Filled(static_cast<int>(draw % 251));
  return network.Write(static_cast<View>(draw / 6 % 4), address, &image);
}

TEST(DryRun, AnswersAndTellsAsARealOneWouldAndLeavesTheFolderAlone) {
  const ScratchFolder scratch;
  const std::filesystem::path folder = scratch.Path() / "fabric", told = scratch.Path() / "told";
  const Description description = MakeDescription(3, 1);
  const std::string local = description.hosts[0].name;
  SaveDescription(folder, description);
  SetVariable("KVR_FABRIC", folder.string());
  SetVariable("KVR_HOST", local);
  SetVariable("KVR_OVERLAY", told.string());
  EXPECT_EQ(Act(*CurrentNetwork(Library::kVexonet), kWriteWhole), 0u);
  EXPECT_FALSE(std::filesystem::exists(told) || std::filesystem::exists(folder / "tables"));

  const auto look = [&] {  // the content of every file, and when it or the folder changed last
    std::map<std::string, std::pair<std::string, std::filesystem::file_time_type>> files;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
      const std::string file = entry.path().string();
      files[file] = {entry.is_directory() ? "" : scratch.Get(file), entry.last_write_time()};
    }
    return files;
  };
  Network real(description, local);
  real.PlantImage(local, Filled(1));
  real.SetLogging(true);
  ASSERT_TRUE(FolderStore(folder).Write(local, Filled(1)));
  scratch.Put("fabric/tables/" + description.hosts[1].name + ".satable", "no table");
  const auto files = look();
  SetCurrentNetwork(nullptr);
  std::mt19937 random;
  for (int step = 0; step < 1000; ++step) {
    const auto draw = static_cast<std::uint32_t>(random());
    Network &dry = *CurrentNetwork(Library::kTqlink);
    ASSERT_EQ(Act(dry, draw), Act(real, draw)) << step;
    ASSERT_EQ(ChangedHosts(dry.Images(), real.Images()).size(), 0u) << step;
  }
  std::string expected = "overlay\n";
  for (const CallRecord &call : real.TakeLog())
    if (call.result == 0 && call.function != "TQ_syncSecurityConfig")
      expected += std::string(call.function) + " " + call.host + "\n";
  EXPECT_EQ(scratch.Get("told"), expected);
  EXPECT_TRUE(std::filesystem::remove(told) && std::filesystem::create_directory(told));
  testing::internal::CaptureStderr();
  EXPECT_EQ(Act(*CurrentNetwork(Library::kTqlink), kWriteWhole), 1u);
  SetCurrentNetwork(nullptr);
  EXPECT_EQ(TQ_GetNumberOfLocalAdapters(), 0u);
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find("set KVR_OVERLAY"), said.rfind("set KVR_OVERLAY")) << "said twice: " << said;
  EXPECT_EQ(look(), files);
}
