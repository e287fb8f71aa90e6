// `kvrctl doctor`: every kind of fault is found in the tables that hold it, nothing in sound ones,
// and the way out that it names leads out.
#include <functional>

#include "fabric_folder.h"

namespace {

using Slots = std::vector<std::uint32_t>;

class Doctor : public FabricFolder {
 public:
  using FabricFolder::network;
  using FabricFolder::Run;

  // h1 is the MSC, h6 its backup; h2 has group a at the top, h3 a/b below it, h4 a/b/c below that;
  // h7 has group d; h5 only serves, h8 stands outside.
  void SetUp() override {
    Describe(8);
    ASSERT_TRUE(RunAll({"create", "acg add h2 h3 h4 h5 h7", "switch-access on",
                        "group create a --client h2 --reserve 4 --server h3 h4 h5",
                        "group create a/b --client h3 --reserve 1 --server h4",
                        "group create a/b/c --client h4",
                        "group create d --client h7 --reserve 1 --server h5", "backup add h6"}));
  }

  [[nodiscard]] SaTable Table(const std::string &host) const {
    SaTable table = {};
    const std::string image = folder.Get("tables/" + host + ".satable");
    EXPECT_EQ(image.copy(reinterpret_cast<char *>(&table), sizeof table), sizeof table) << host;
    return table;
  }

  void Store(const std::string &host, const SaTable &table) const {
    folder.Put("tables/" + host + ".satable",
               {reinterpret_cast<const char *>(&table), sizeof table});
  }

  void Remove(const std::string &host) const {
    std::filesystem::remove(folder.Path() / "tables" / (host + ".satable"));
  }

  // The slots at which a host's table has this role, and no other of the mask.
  [[nodiscard]] Slots SlotsWith(const std::string &host, std::uint32_t role,
                                std::uint32_t mask = ~0u) const {
    Slots slots;
    for (const SaEntry &entry : Table(host).entries)
      if ((entry.access.roleFlags & mask) == role) slots.push_back(entry.slotIndex);
    return slots;
  }
  [[nodiscard]] std::uint32_t Own(const std::string &host) const {
    return SlotsWith(host, ACE_SELF, ACE_SELF).at(0);
  }

  // Puts the words of a slot into a host's table; returns the slot.
  Slots Put(const std::string &host, std::uint32_t slot, std::uint32_t role,
            std::uint32_t serve = 0) const {
    SaTable table = Table(host);
    table.entries[slot].access.roleFlags = role;
    table.entries[slot].access.serveFlags = serve;
    Store(host, table);
    return {slot};
  }

  Slots Change(const std::string &host, const std::function<void(SaTable &)> &change) const {
    SaTable table = Table(host);
    change(table);
    Store(host, table);
    return {};
  }

  // Runs, as h1, the whole commands that a finding names.
  void Follow(const std::string &next) const {
    for (std::size_t at = 0; (at = next.find("`kvrctl ", at)) != std::string::npos; ++at) {
      const std::string command = next.substr(at + 8, next.find('`', at + 1) - at - 8);
      if (command.find("HOST") != std::string::npos) continue;
      if (Run("h1", command + " --yes").status != 0) std::ignore = Run("h1", command);
    }
  }
};

constexpr std::uint32_t kUnused = 240;  // a slot that nothing has taken, unless it is the MSC's

struct Fault {
  const char *code;
  const char *hosts;
  std::function<Slots(Doctor &)> plant;  // returns the slots concerned
  bool mended = false;                   // the way out leaves everything sound
  const char *reader = "h5";
};

TEST_F(Doctor, FindsNothingInSoundTables) {
  for (const char *host : {"h1", "h2", "h4", "h5", "h6", "h8"}) {
    const Json result = ResultOf(host, "doctor");
    EXPECT_EQ(result["tables"], 7) << host;
    EXPECT_TRUE(result["findings"].empty()) << host << result;
  }
  ASSERT_TRUE(RunAll({"group set-reserve a 6", "group set-reserve a 3", "group set-client d h5",
                      "renew-keys", "switch-access off", "group remove-server a h5",
                      "group delete a/b/c --yes", "handover h6 --yes"}));
  EXPECT_TRUE(ResultOf("h4", "doctor")["findings"].empty()) << "before the new MSC discovers";
  for (const char *line : {"backup add h7", "group delete a/b --yes", "acg remove h4 --yes", "acg add h8"})
    ASSERT_EQ(Run("h6", line).status, 0) << line;
  EXPECT_EQ(Run("h6", "doctor -x").out, "Nothing is wrong; 7 tables read.\n");
}

// Lets h8 hold a plain member's table of another configuration.
Slots PutStranger(Doctor &at) {
  at.Store("h8", at.Table("h5"));
  return at.Change("h8", [](SaTable &table) {
    table.header.configId[0] ^= 1;
    table.entries[7].key.keyMaterial[0] ^= 1;
  });
}

// The first slot of h2's reserve that no child has.
std::uint32_t FreeOfReserve(const Doctor &at) { return at.SlotsWith("h2", ACE_RESERVED).at(0); }

const Fault kFaults[] = {
    {"SLOT_HELD_TWICE", "h2 h5", [](auto &at) { return at.Put("h5", at.Own("h2"), ACE_SELF, 1); }},
    {"SEVERAL_SLOTS", "h5",
     [](auto &at) {
       at.Put("h5", kUnused, ACE_SELF);
       at.Put("h5", kUnused + 1, ACE_SELF);
       return Slots{kUnused, kUnused + 1};
     }},
    {"TWO_MSCS", "h1 h5", [](auto &at) { return at.Put("h5", at.Own("h1"), ACE_SELF | ACE_MSC); }},
    {"NO_MSC", "h6", [](auto &at) { return at.Remove("h1"), Slots{}; }},
    {"BACKUP_STALE", "h1 h6", [](auto &at) { return at.Put("h6", kUnused, ACE_CHILD); }, true},
    {"SLOT_NOT_DELEGATED", "h1 h2", [](auto &at) { return at.Put("h2", kUnused, ACE_RESERVED); },
     true},
    {"SLOT_NOT_DELEGATED", "h5", [](auto &at) { return at.Put("h5", kUnused, ACE_RESERVED); },
     true},
    {"SLOT_RESERVED_TWICE", "h2 h7",
     [](auto &at) { return at.Put("h7", FreeOfReserve(at), ACE_RESERVED); }, true},
    {"CHILD_UNKNOWN", "h5", [](auto &at) { return at.Put("h5", kUnused, ACE_SELF); }},
    {"CHILD_UNKNOWN", "h8",
     [](auto &at) {
       EXPECT_EQ(at.Run("h1", "acg add h8").status, 0);
       return at.Put("h8", FreeOfReserve(at), ACE_SELF);
     },
     true},
    {"SLOT_LOST", "h1",
     [](auto &at) {
       const Slots lost = {at.Own("h7"), at.SlotsWith("h7", ACE_RESERVED).at(0)};
       return at.Remove("h7"), lost;
     }},
    {"SLOT_LOST", "h2",
     [](auto &at) { return at.Put("h2", FreeOfReserve(at), ACE_RESERVED | ACE_DELEGATED); }},
    {"SERVES_NOBODY", "h5", [](auto &at) { return at.Put("h5", kUnused, 0, ACE_SERVES); }, true},
    {"SERVES_NOBODY", "h5", [](auto &at) { return at.Put("h5", FreeOfReserve(at), 0, ACE_SERVES); },
     true},
    {"OFFLINE_CLIENT", "h4",
     [](auto &at) {
       at.network.hosts[2].up = false;
       return Slots{at.Own("h3")};
     },
     true, "h1"},
    {"HOST_UNREACHABLE", "h3", [](auto &at) { return at.network.hosts[2].up = false, Slots{}; },
     true},
    {"HOST_UNREACHABLE", "h8",
     [](auto &at) {
       for (auto &adapter : at.network.hosts[7].adapters) adapter.up = false;
       return Slots{};
     }},
    {"ADAPTER_SILENT", "h2",
     [](auto &at) { return at.network.hosts[1].adapters[0].up = false, Slots{}; }},
    {"KEYS_DIFFER", "h5",
     [](auto &at) { return at.Change("h5", [](auto &t) { ++t.entries[9].key.keyMaterial[3]; }); },
     true},
    {"IDENTITY_DIFFERS", "h5",
     [](auto &at) { return at.Change("h5", [](auto &t) { ++t.header.configId[0]; }); }, true},
    {"IDENTITY_DIFFERS", "h1",
     [](auto &at) { return at.Change("h1", [](auto &t) { ++t.header.configId[0]; }); }},
    {"OTHER_CONFIGURATION", "h8", PutStranger, true},
    {"SWITCH_ACCESS_DIFFERS", "h5",
     [](auto &at) { return at.Put("h5", KVR_SWITCH_POSITION, 0), Slots{}; }, true},
    {"MSC_NOT_SERVED", "h5", [](auto &at) { return at.Put("h5", at.Own("h1"), 0); }, true, "h2"},
    {"TABLE_DAMAGED", "h5",
     [](auto &at) { return at.Change("h5", [](auto &t) { t.header.formatRevision = 2; }); }, true},
    {"TABLE_DAMAGED", "h5",
     [](auto &at) {
       at.Change("h5", [](auto &t) {
         t.entries[3].slotIndex = 4;
         t.entries[kUnused].key.keyLength = 0;
         t.entries[250].access.serveFlags = 1;
       });
       return Slots{3, kUnused};
     },
     true},
    {"TABLE_DAMAGED", "h5", [](auto &at) { return at.Put("h5", kUnused, 0x40); }, true},
    {"TABLE_DAMAGED", "h5", [](auto &at) { return at.Put("h5", kUnused, ACE_BACKUP_MSC); }, true},
    {"NAME_DAMAGED", "h2",
     [](auto &at) {
       return at.Change("h2", [](auto &t) { std::ranges::fill(t.header.asciiName, 0x61616161u); });
     }},
    {"NAME_DAMAGED", "h2",
     [](auto &at) { return at.Change("h2", [](auto &t) { t.header.wideName[0] += 1u << 24; }); }},
};

TEST_F(Doctor, FindsEveryPlantedFault) {
  const std::filesystem::path tables = folder.Path() / "tables", sound = folder.Path() / "sound";
  std::filesystem::copy(tables, sound);
  const fabric::Description up = network;
  for (const Fault &fault : kFaults) {
    SCOPED_TRACE(std::string(fault.code) + " at " + fault.hosts);
    const Slots slots = fault.plant(*this);
    Save();
    const Json result = Ask(fault.reader, "doctor -x", 1)["result"];
    std::string next;
    for (const Json &finding : result["findings"]) {
      auto hosts = finding["hosts"].get<std::vector<std::string>>();
      std::ranges::sort(hosts);
      std::string joined;
      for (const std::string &host : hosts) joined += (joined.empty() ? "" : " ") + host;
      if (finding["code"] == fault.code && joined == fault.hosts && finding["slots"] == Json(slots))
        next = finding["next"];
    }
    EXPECT_NE(next, "") << result.dump(1);
    if (fault.mended) Follow(next);
    // A host that is down is taken up by the finding beside that of its group.
    if (std::string(fault.code) == "OFFLINE_CLIENT") Follow("`kvrctl fabric set --up h3`");
    EXPECT_EQ(Run("h1", "doctor").status, fault.mended ? 0 : 1) << next;
    network = up;
    std::filesystem::remove_all(tables);
    std::filesystem::copy(sound, tables);
  }
}

TEST_F(Doctor, TellsWhatItCannotJudge) {
  network.faults = {{"h8", {}, "TQ_ReadSaTable", 1, {}}};
  Save();
  const Json result = ResultOf("h5", "doctor");
  ASSERT_EQ(result["findings"].size(), 1u);
  EXPECT_EQ(result["findings"][0]["code"], "HOSTS_UNREAD");
  EXPECT_FALSE(result["findings"][0]["wrong"]);
  EXPECT_TRUE(ResultOf("h5", "doctor -x")["findings"].empty());
  network.hosts[7].excluded = true;
  Save();
  EXPECT_TRUE(ResultOf("h5", "doctor")["findings"].empty()) << "an excluded host is passed over";
}

}  // namespace
