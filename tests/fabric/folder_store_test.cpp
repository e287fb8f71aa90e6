#include <chrono>
#include <cstring>
#include <thread>

#include "filled.h"
#include "scratch_folder.h"
#include "support/process.h"

using namespace fabric;

namespace {

constexpr int kRounds = 40;

// Whether there is an image, and one that Filled makes, of any value.
bool HoldsUniform(FolderStore &store) {
  SaTable image;
  if (!store.Read("a", [&](const SaTable &stored) { image = stored; })) return false;
  const auto *bytes = reinterpret_cast<const char *>(&image);
  return std::memcmp(bytes, bytes + 1, sizeof image - 1) == 0;
}

// Writers are a process and two threads: a lock must hold between both.
TEST(FolderStore, WritersOfDifferentViewsLoseNothing) {
  const ScratchFolder folder;
  FolderStore store(folder.Path());
  ASSERT_TRUE(store.Write("a", Filled(0)));
  const auto count = [&](const FolderStore::Change &change) {
    for (int i = 0; i < kRounds; ++i) store.Update("a", change);
  };
  Process child({FOLDER_WRITER, folder.Path().string(), std::to_string(kRounds)});
  std::thread keys(count, [](SaTable &image) { ++image.entries[1].key.keyLength; });
  count([](SaTable &image) { ++image.header.formatId; });
  keys.join();
  ASSERT_EQ(child.Finish().status, 0);
  EXPECT_TRUE(store.Read("a", [](const SaTable &image) {
    EXPECT_EQ(image.header.formatId, std::uint32_t{kRounds});
    EXPECT_EQ(image.entries[1].key.keyLength, std::uint32_t{kRounds});
    EXPECT_EQ(image.entries[255].access.roleFlags, std::uint32_t{kRounds});
  }));
}

TEST(FolderStore, KilledWriterLeavesOldOrNewImage) {
  const ScratchFolder folder;
  FolderStore store(folder.Path());
  ASSERT_TRUE(store.Write("a", Filled(0)));
  for (int round = 0; round < kRounds; ++round) {
    Process child({FOLDER_WRITER, folder.Path().string()});
    ASSERT_TRUE(child.ReadErrorsUntil("writing"));
    std::this_thread::sleep_for(std::chrono::microseconds(round * 137));
    EXPECT_TRUE(HoldsUniform(store));
    child.Kill();
    ASSERT_EQ(child.Finish().status, Process::kKilled);
    EXPECT_TRUE(HoldsUniform(store));
  }
  EXPECT_TRUE(store.Update("a", [](SaTable &) {})) << "lock left behind";
}

TEST(FolderStore, UnreadableTablesAreReplacedButNotChanged) {
  const ScratchFolder folder;
  FolderStore store(folder.Path());
  const auto ignore = [](const SaTable &) { FAIL() << "shown a table that is none"; };
  EXPECT_TRUE(store.Write("a", Filled(3)) && store.Remove("a") && !store.Remove("a"));
  for (const std::size_t size : {std::size_t{0}, sizeof(SaTable) - 1, sizeof(SaTable) + 1}) {
    folder.Put("tables/a.satable", std::string(size, 'x'));
    folder.Put("tables/a.satable.tmp", std::string(2 * sizeof(SaTable), 'y'));
    EXPECT_FALSE(store.Read("a", ignore) || store.Update("a", ignore)) << size;
    EXPECT_EQ(folder.Get("tables/a.satable"), std::string(size, 'x'));
    EXPECT_TRUE(store.Write("a", Filled(4)) && HoldsUniform(store)) << size;
  }
}

}  // namespace
