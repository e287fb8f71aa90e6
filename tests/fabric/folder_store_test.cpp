#include <csignal>
#include <cstring>
#include <functional>
#include <thread>
#include <unistd.h>

#include <sys/wait.h>

#include "fabric/image_store.h"
#include "scratch_folder.h"

namespace fabric {
namespace {

constexpr int kRounds = 40;

// Runs the work in a process of its own.
pid_t Start(const std::function<void()> &work) {
  const pid_t child = fork();
  if (child != 0) return child;
  work();
  _exit(0);
}

SaTable Filled(int value) {
  SaTable image;
  std::memset(&image, value, sizeof image);
  return image;
}

// Whether the image is one that Filled makes, of any value.
bool IsUniform(const SaTable &image) {
  const auto *bytes = reinterpret_cast<const unsigned char *>(&image);
  return std::memcmp(bytes, bytes + 1, sizeof image - 1) == 0;
}

TEST(FolderStore, WritersOfDifferentViewsLoseNothing) {
  const ScratchFolder folder;
  FolderStore store(folder.Path());
  ASSERT_TRUE(store.Write("a", Filled(0)));
  const auto count = [&](std::function<std::uint32_t &(SaTable &)> word) {
    FolderStore own(folder.Path());
    for (int i = 0; i < kRounds; ++i)
      own.Update("a", [&](SaTable &image) { ++word(image); });
  };
  const pid_t child = Start(
      [&] { count([](SaTable &image) -> std::uint32_t & { return image.header.formatId; }); });
  std::thread keys(
      count, [](SaTable &image) -> std::uint32_t & { return image.entries[1].key.keyLength; });
  std::thread access(
      count, [](SaTable &image) -> std::uint32_t & { return image.entries[255].access.roleFlags; });
  keys.join();
  access.join();
  ASSERT_EQ(waitpid(child, nullptr, 0), child);
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
    const pid_t child = Start([&] {
      for (int value = 0;; value = (value + 1) % 256) {
        store.Write("a", Filled(value));
        store.Update("a", [&](SaTable &image) { image = Filled(value ^ 0x80); });
      }
    });
    usleep(static_cast<useconds_t>(500 + round * 137));
    EXPECT_TRUE(store.Read("a", [](const SaTable &image) { EXPECT_TRUE(IsUniform(image)); }));
    kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_TRUE(store.Read("a", [](const SaTable &image) { EXPECT_TRUE(IsUniform(image)); }));
  }
  EXPECT_TRUE(store.Update("a", [](SaTable &image) { image = Filled(1); })) << "lock left behind";
}

TEST(FolderStore, AbsentAndUnreadableTables) {
  const ScratchFolder folder;
  FolderStore store(folder.Path());
  const auto ignore = [](const SaTable &) { FAIL() << "shown a table that is none"; };
  const auto readable = [&] { return store.Read("a", [](const SaTable &) {}); };
  EXPECT_FALSE(store.Remove("a"));
  ASSERT_TRUE(store.Write("a", Filled(3)));
  EXPECT_TRUE(readable());
  EXPECT_TRUE(store.Remove("a"));
  EXPECT_FALSE(store.Remove("a"));
  EXPECT_FALSE(store.Update("a", ignore));
  for (const std::size_t size : {std::size_t{0}, sizeof(SaTable) - 1, sizeof(SaTable) + 1}) {
    folder.Put("tables/a.satable", std::string(size, 'x'));
    folder.Put("tables/a.satable.tmp", std::string(2 * sizeof(SaTable), 'y'));
    EXPECT_FALSE(store.Read("a", ignore)) << size;
    EXPECT_FALSE(store.Update("a", ignore)) << size;
    EXPECT_EQ(folder.Get("tables/a.satable"), std::string(size, 'x'));
    EXPECT_TRUE(store.Write("a", Filled(4))) << size;
    EXPECT_TRUE(store.Read("a", [](const SaTable &image) { EXPECT_TRUE(IsUniform(image)); }));
  }
}

}  // namespace
}  // namespace fabric
