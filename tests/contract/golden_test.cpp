// The stored bytes of known situations, committed as texts: the library writes exactly these, and
// reads what an earlier version wrote. Images that no version wrote have what becomes of them
// beside them. The target golden_update writes the expected texts anew.
#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <span>
#include <sstream>
#include <string>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "kvrapi/kvrapi.h"

#include "fabric/current.h"
#include "library_walk.h"

namespace {

std::string ReadGolden(const std::string &name) {
  std::ifstream file(GOLDEN_DIR "/" + name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

void ExpectGolden(const std::string &name, const std::string &actual) {
  if (std::getenv("KVR_GOLDEN_UPDATE") != nullptr) {
    std::ofstream(GOLDEN_DIR "/" + name, std::ios::binary) << actual;
  }
  EXPECT_EQ(actual, ReadGolden(name)) << name;
}

// The header and the access words in rows of 16 bytes, but those that are zero, each after its
// offset; the keys, which are large, as a checksum (FNV-1a).
std::string TextOf(const SaTable &image) {
  const std::span bytes(reinterpret_cast<const std::uint8_t *>(&image), sizeof image);
  std::string text;
  const auto add = [&](std::size_t offset, const std::string &remark) {
    const auto row = bytes.subspan(offset, 16);
    if (std::ranges::count(row, 0) == 16) return;
    text += fmt::format("{:04x}: {:02x}{}\n", offset, fmt::join(row, " "), remark);
  };
  for (std::size_t offset = 0; offset < sizeof image.header; offset += 16)
    add(offset, "");
  std::uint64_t sum = 0xcbf29ce484222325u;
  for (std::size_t n = 0; n < KVR_POSITION_COUNT; ++n) {
    const std::size_t offset = sizeof image.header + n * sizeof(SaEntry);
    add(offset + offsetof(SaEntry, access), fmt::format("  # position {}", n));
    for (std::size_t i = 0; i < sizeof(SaEntry); ++i)
      if (i < 8 || i >= 24) sum = (sum ^ bytes[offset + i]) * 0x100000001b3u;
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

// A name as the library delivers it, whatever bytes it has.
template <class Handle, class Ask>
std::string NameOf(Handle handle, Ask ask) {
  std::array<char, KVR_NAME_CAPACITY + 1> name{};
  ask(handle, name.data(), KVR_NAME_CAPACITY);
  return name.data();
}

template <class List>
std::string SystemsText(List list) {
  std::array<KVR_SYSTEM, 16> systems{};
  std::uint32_t count = systems.size();
  if (list(systems.data(), &count) != KVR_OK) return " not listed";
  std::string text;
  for (std::uint32_t i = 0; i < count; ++i)
    text += " " + NameOf(systems[i], KVR_GetSystemNameA) + (KVR_IsClient(systems[i]) ? "*" : "");
  return text;
}

std::string GroupsText(KVR_GROUP parent, const std::string &indent) {
  std::array<KVR_GROUP, 16> groups{};
  std::uint32_t count = groups.size();
  EXPECT_EQ(KVR_GetChildAsgs(parent, groups.data(), &count), KVR_OK);
  std::string text;
  for (KVR_GROUP group : std::span(groups).first(count)) {
    const auto servers = [&](auto *array, auto *room) {
      return KVR_GetAsgServers(group, array, room);
    };
    text += fmt::format(
                "{}'{}' of '{}', slots {} free, {} used, served by{}\n", indent,
                NameOf(group, KVR_GetAsgNameA), NameOf(KVR_GetAsgClient(group), KVR_GetSystemNameA),
                KVR_GetFreeIndexCount(group), KVR_GetUsedIndexCount(group), SystemsText(servers)) +
            GroupsText(group, indent + "  ");
  }
  return text;
}

// What a discovery made of the tables, as a caller sees it; systems that hold a slot have a star.
std::string ModelText() {
  return fmt::format("secured {}, client {}, MSC {}, backup {}, switch access {}\n",
                     KVR_SecurityState() == KVR_OK, KVR_IsSecureClient(), KVR_IsMSC(),
                     KVR_IsBackupMSC(), KVR_IsSwitchAccessEnabled()) +
         "in the ACG:" + SystemsText(KVR_GetAcgServers) +
         "\noutside:" + SystemsText(KVR_GetUnsecureServers) +
         "\nbackups:" + SystemsText(KVR_GetBackupMSCs) + "\n" + GroupsText(nullptr, "");
}

// Hosts M, A, B, C and D that all reach each other.
class Golden : public testing::Test {
 protected:
  Golden() {
    fabric::Description plan;
    for (const char name : std::string("MABCD")) {
      const fabric::Id8 id{0x20, static_cast<std::uint8_t>(name)};
      plan.hosts.push_back({{name}, {}, true, false, {{id, {}, {fabric::Id8{0x10}}, true}}});
    }
    network_ = std::make_shared<fabric::Network>(plan, "M");
    fabric::SetCurrentNetwork(network_);
  }
  ~Golden() override {
    fuzz::ForgetEverything();
    fabric::SetCurrentNetwork(nullptr);
  }

  void StartAs(const std::string &host) {
    fuzz::ForgetEverything();
    network_->SetLocalHost(host);
    KVR_Initialize();
    KVR_DiscoverServers(nullptr, 0);
  }

  void PlantGoldenTree() {
    for (const std::string host : {"M", "A", "B", "C", "D"})
      network_->PlantImage(host, ImageOf(ReadGolden("tree-" + host + ".image")));
  }

  std::shared_ptr<fabric::Network> network_;
};

// A's group stands above B's, and D is a backup of M.
TEST_F(Golden, WrittenTables) {
  StartAs("M");
  std::int32_t slot = -1;
  ASSERT_EQ(KVR_CreateKVR(&slot), KVR_OK);
  ExpectGolden("fresh-M.image", TextOf(*network_->Image("M")));
  std::array<KVR_SYSTEM, 4> systems{};
  std::uint32_t count = systems.size();
  ASSERT_EQ(KVR_GetUnsecureServers(systems.data(), &count), KVR_OK);
  const auto [a, b, c, d] = systems;
  for (KVR_SYSTEM system : systems)
    ASSERT_EQ(KVR_AddServerToACG(system), KVR_OK);
  ExpectGolden("fresh-A.image", TextOf(*network_->Image("A")));

  KVR_GROUP upper = nullptr;
  KVR_GROUP lower = nullptr;
  std::uint32_t reserve = 3;
  ASSERT_EQ(KVR_CreateAsgA(nullptr, "abcdefg", a, &reserve, &upper), KVR_OK);
  ASSERT_EQ(KVR_AddServerToAsg(upper, b), KVR_OK);
  ASSERT_EQ(KVR_AddServerToAsg(upper, c), KVR_OK);
  reserve = 1;
  ASSERT_EQ(KVR_CreateAsgW(upper, u"0123456789012345678901234567890", b, &reserve, &lower), KVR_OK);
  ASSERT_EQ(KVR_AddServerToAsg(lower, c), KVR_OK);

  SaTable backup = *network_->Image("D");
  backup.entries[slot].access.roleFlags = ACE_SELF | ACE_BACKUP_MSC;
  network_->PlantImage("D", backup);
  KVR_DiscoverServers(nullptr, 0);  // copies M's access words to its backup
  for (const std::string host : {"M", "A", "B", "C", "D"})
    ExpectGolden("tree-" + host + ".image", TextOf(*network_->Image(host)));
}

TEST_F(Golden, StoredTreeReadsAlikeInEveryRole) {
  PlantGoldenTree();
  for (const std::string host : {"M", "A", "C", "D"}) {
    StartAs(host);
    ExpectGolden("tree-" + host + ".model", ModelText());
  }
}

TEST_F(Golden, BadTables) {
  const std::map<std::string, const char *> places = {
      {"bad-random", "A"}, {"bad-names", "A"}, {"bad-roles", "A"}, {"bad-local", "M"}};
  for (const auto &[name, host] : places) {
    PlantGoldenTree();
    network_->PlantImage(host, ImageOf(ReadGolden(name + ".image")));
    StartAs("M");
    ExpectGolden(name + ".model", ModelText());
  }
}

}  // namespace
