// The stored bytes of known situations, committed as texts: the library writes exactly these, and
// reads what an earlier version wrote. Images that no version wrote have what becomes of them
// beside them. The target golden_update writes the expected texts anew.
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <span>
#include <sstream>

#include "support/world.h"

using namespace kvrtest;

namespace {

const std::vector<std::string> HOSTS = {"M", "A", "B", "C", "D"};

std::string ReadGolden(const std::string &name) {
  std::ifstream file(GOLDEN_DIR "/" + name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

void ExpectGolden(const std::string &name, const std::string &actual) {
  if (std::getenv("KVR_GOLDEN_UPDATE") != nullptr)
    std::ofstream(GOLDEN_DIR "/" + name, std::ios::binary) << actual;
  EXPECT_EQ(actual, ReadGolden(name)) << name;
}

// The header and the access words in rows of 16 bytes, but those that are zero, each after its
// offset; the keys, which are large, as a checksum.
std::string TextOf(const SaTable &image) {
  const std::span bytes(reinterpret_cast<const std::uint8_t *>(&image), sizeof image);
  std::string text;
  const auto add = [&](std::size_t offset, const std::string &remark) {
    const auto row = bytes.subspan(offset, 16);
    if (std::ranges::count(row, 0) == 16) return;
    text += fmt::format("{:04x}: {:02x}{}\n", offset, fmt::join(row, " "), remark);
  };
  for (std::size_t offset = 0; offset < sizeof image.header; offset += 16) add(offset, "");
  std::uint64_t sum = kNoBytes;
  for (std::size_t n = 0; n < KVR_POSITION_COUNT; ++n) {
    const std::size_t offset = sizeof image.header + n * sizeof(SaEntry);
    add(offset + offsetof(SaEntry, access), fmt::format("  # position {}", n));
    for (std::size_t i = 0; i < sizeof(SaEntry); ++i)
      if (i < 8 || i >= 24) sum = Checksum(sum, bytes[offset + i]);
  }
  return text + fmt::format("# indices and keys: {:016x}\n", sum);
}

// The rows of a text over zero bytes; what follows # is ignored.
SaTable ImageOf(const std::string &text) {
  SaTable image{};
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream row(line.substr(0, line.find('#')));
    std::size_t offset = 0;
    row >> std::hex >> offset;
    row.ignore();
    for (unsigned byte; row >> byte && offset < sizeof image; ++offset)
      reinterpret_cast<std::uint8_t *>(&image)[offset] = static_cast<std::uint8_t>(byte);
  }
  return image;
}

// A's group stands above B's, and D is a backup of M.
TEST(Golden, WrittenTables) {
  const World world(HOSTS);
  world.As("M");
  std::int32_t slot = -1;
  ASSERT_EQ(KVR_CreateKVR(&slot), KVR_OK);
  ExpectGolden("fresh-M.image", TextOf(*world->Image("M")));
  for (const char *member : {"A", "B", "C", "D"})
    ASSERT_EQ(KVR_AddServerToACG(System(member)), KVR_OK);
  ExpectGolden("fresh-A.image", TextOf(*world->Image("A")));

  KVR_GROUP upper = nullptr, lower = nullptr;
  std::uint32_t three = 3, one = 1;
  const KVR_WCHAR *digits = WIDE("0123456789012345678901234567890");
  ASSERT_EQ(KVR_CreateAsgA(nullptr, "abcdefg", System("A"), &three, &upper), KVR_OK);
  for (const char *server : {"B", "C"})
    ASSERT_EQ(KVR_AddServerToAsg(upper, System(server)), KVR_OK);
  ASSERT_EQ(KVR_CreateAsgW(upper, digits, System("B"), &one, &lower), KVR_OK);
  ASSERT_EQ(KVR_AddServerToAsg(lower, System("C")), KVR_OK);

  SaTable backup = *world->Image("D");
  backup.entries[slot].access.roleFlags = ACE_SELF | ACE_BACKUP_MSC;
  world->PlantImage("D", backup);
  KVR_DiscoverServers(nullptr, 0);  // copies M's access words to its backup
  for (const std::string &host : HOSTS)
    ExpectGolden("tree-" + host + ".image", TextOf(*world->Image(host)));
}

// What the hosts make of the tree, and M of the tree with another table in one host's place.
TEST(Golden, ReadTables) {
  const std::string readings[][3] = {// table, its place, reader
                                     {"tree-M", "M", "M"},     {"tree-A", "A", "A"},
                                     {"tree-C", "C", "C"},     {"tree-D", "D", "D"},
                                     {"bad-random", "A", "M"}, {"bad-names", "A", "M"},
                                     {"bad-roles", "A", "M"},  {"bad-local", "M", "M"}};
  const World world(HOSTS);
  for (const auto &[name, place, reader] : readings) {
    for (const std::string &host : HOSTS)
      world->PlantImage(host, ImageOf(ReadGolden("tree-" + host + ".image")));
    world->PlantImage(place, ImageOf(ReadGolden(name + ".image")));
    world.As(reader);
    ExpectGolden(name + ".model", Model());
  }
}

}  // namespace
