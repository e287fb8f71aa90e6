// `kvrctl doctor`: every kind of fault is found in the tables that hold it, nothing in sound ones,
// and the way out that it names leads out.
#include <functional>

#include "fabric_folder.h"

namespace {

using Slots = std::vector<std::uint32_t>;

class Doctor : public FabricFolder {
 public:
  using FabricFolder::folder;
  using FabricFolder::network;

  // h1 is the MSC, h6 its backup; h2 has group a at the top, h3 a/b below it, h4 a/b/c below that;
  // h7 has group d; h5 only serves, h8 holds a table besides.
  void SetUp() override {
    Describe(9);
    ASSERT_TRUE(RunAll({"create", "acg add h2 h3 h4 h5 h7 h8", "switch-access on",
                        "group create a --client h2 --reserve 4 --server h3 h4 h5",
                        "group create a/b --client h3 --reserve 1 --server h4",
                        "group create a/b/c --client h4",
                        "group create d --client h7 --reserve 1 --server h5", "backup add h6"}));
  }

  void Change(const std::string &host, const std::function<void(SaTable &)> &change) const {
    SaTable table = {};
    const auto bytes = reinterpret_cast<char *>(&table);
    EXPECT_EQ(folder.Get("tables/" + host + ".satable").copy(bytes, sizeof table), sizeof table);
    change(table);
    folder.Put("tables/" + host + ".satable", {bytes, sizeof table});
  }

  // A host's own slot, "free": one of h2's reserve, or "unused": one that nothing has taken.
  [[nodiscard]] std::uint32_t Slot(const std::string &where) const {
    if (where == "unused") return Slot("h1") == 240 ? 239 : 240;
    std::uint32_t slot = 0;
    const std::uint32_t role = where == "free" ? ACE_RESERVED : ACE_SELF;
    Change(where == "free" ? "h2" : where, [&](const SaTable &table) {
      while ((table.entries[slot].access.roleFlags & ~ACE_MSC) != role) ++slot;
    });
    return slot;
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

using Plant = std::function<Slots(Doctor &)>;  // returns the slots concerned

Plant Put(const char *host, const char *slot, std::uint32_t role, std::uint32_t serve = 0) {
  return [=](Doctor &at) {
    const std::uint32_t n = at.Slot(slot);
    at.Change(host, [=](SaTable &table) { table.entries[n].access = {serve, role, 0, 0}; });
    return Slots{n};
  };
}

Plant Alter(const char *host, void (*change)(SaTable &), Slots slots = {}) {
  return [=](Doctor &at) { return at.Change(host, change), slots; };
}

Plant Tear(const char *host, const char *slot = nullptr) {
  return [=](Doctor &at) {
    const Slots slots = slot == nullptr ? Slots{} : Slots{at.Slot(slot)};
    at.folder.Put(std::string("tables/") + host + ".satable", "torn");
    return slots;
  };
}

struct Fault {
  const char *code, *hosts;
  Plant plant;
  bool mended = false;    // the way out leaves everything sound
  const char *says = "";  // what the way out names
};

const Fault kFaults[] = {
    {"SLOT_HELD_TWICE", "h2 h5", Put("h5", "h2", ACE_SELF, ACE_SERVES)},
    {"SEVERAL_SLOTS", "h2",
     [](Doctor &at) {
       return Slots{at.Slot("h2"), Put("h2", "unused", ACE_SELF)(at)[0]};
     }},
    {"SEVERAL_SLOTS", "h1",
     [](Doctor &at) {
       const std::uint32_t own = at.Slot("h1"), stray = Put("h1", "unused", ACE_SELF)(at)[0];
       return Slots{std::min(own, stray), std::max(own, stray)};
     },
     false, "Keep the table of h1"},
    {"SLOT_LOST", "h2",
     [](Doctor &at) {
       const Slots slots = Put("h2", "free", ACE_RESERVED | ACE_CHILD)(at);
       return Tear("h1")(at), slots;
     },
     false, "`kvrctl takeover` on h6"},
    {"TABLE_UNREADABLE", "h2", Tear("h2"), false, "tables/h2.satable"},
    {"OFFLINE_CLIENT", "h4", Tear("h3", "h3"), false, "it may be h3"},
    {"OFFLINE_CLIENT", "h4",
     [](Doctor &at) { return at.network.hosts[2].excluded = true, Slots{at.Slot("h3")}; }, false,
     "h3 is excluded"},
    {"TWO_MSCS", "h1 h5", Put("h5", "h1", ACE_SELF | ACE_MSC)},
    {"NO_MSC", "h6", Alter("h1", [](auto &t) { std::ranges::fill(t.entries, SaEntry{}); })},
    {"BACKUP_STALE", "h1 h6", Put("h6", "unused", ACE_CHILD), true},
    {"SLOT_NOT_DELEGATED", "h1 h2", Put("h2", "unused", ACE_RESERVED), true},
    {"SLOT_NOT_DELEGATED", "h8", Put("h8", "unused", ACE_RESERVED), true},
    {"SLOT_RESERVED_TWICE", "h2 h7", Put("h7", "free", ACE_RESERVED), true},
    {"CHILD_UNKNOWN", "h5", Put("h5", "unused", ACE_SELF)},
    {"CHILD_UNKNOWN", "h8", Put("h8", "free", ACE_SELF), true},
    {"SLOT_LOST", "h1", Put("h1", "unused", ACE_DELEGATED)},
    {"SLOT_LOST", "h2", Put("h2", "free", ACE_RESERVED | ACE_CHILD)},
    {"SERVES_NOBODY", "h5", Put("h5", "unused", 0, ACE_SERVES), true},
    {"SERVES_NOBODY", "h5", Put("h5", "free", 0, ACE_SERVES), true},
    {"OFFLINE_CLIENT", "h4",
     [](Doctor &at) { return at.network.hosts[2].up = false, Slots{at.Slot("h3")}; }},
    {"HOST_UNREACHABLE", "h3", [](auto &at) { return at.network.hosts[2].up = false, Slots{}; },
     true},
    {"HOST_UNREACHABLE", "h9",
     [](auto &at) { return at.network.hosts[8].adapters.clear(), Slots{}; }},
    {"ADAPTER_SILENT", "h3",
     [](auto &at) { return at.network.hosts[2].adapters[0].up = false, Slots{}; }},
    {"KEYS_DIFFER", "h5", Alter("h5", [](auto &t) { ++t.entries[9].key.keyMaterial[3]; }), true},
    {"IDENTITY_DIFFERS", "h5", Alter("h5", [](auto &t) { ++t.header.configId[0]; }), true},
    {"IDENTITY_DIFFERS", "h1", Alter("h1", [](auto &t) { ++t.header.configId[0]; })},
    {"OTHER_CONFIGURATION", "h8",
     Alter("h8", [](auto &t) { ++t.header.configId[0], ++t.entries[9].key.keyMaterial[3]; }), true},
    {"SWITCH_ACCESS_DIFFERS", "h5",
     Alter("h5", [](auto &t) { t.entries[KVR_SWITCH_POSITION].access.serveFlags = 0; }), true},
    {"MSC_NOT_SERVED", "h5", Put("h5", "h1", 0), true},
    {"TABLE_DAMAGED", "h5", Alter("h5", [](auto &t) { t.header.formatRevision = 2; }), true},
    {"TABLE_DAMAGED", "h5", Alter("h5", [](auto &t) { t.entries[3].slotIndex = 4; }, {3}), true},
    {"TABLE_DAMAGED", "h5", Alter("h5", [](auto &t) { t.entries[9].key.keyLength = 0; }, {9}),
     true},
    {"TABLE_DAMAGED", "h5", Put("h5", "unused", 0x40), true},
    {"TABLE_DAMAGED", "h5", Put("h5", "unused", ACE_BACKUP_MSC), true},
    {"NAME_DAMAGED", "h2",
     Alter("h2", [](auto &t) { std::ranges::fill(t.header.asciiName, 0x61616161u); })},
    {"NAME_DAMAGED", "h2", Alter("h2", [](auto &t) { t.header.wideName[0] += 1u << 24; })},
};

TEST_F(Doctor, FindsEveryPlantedFault) {
  const auto tables = folder.Path() / "tables", sound = folder.Path() / "sound";
  std::filesystem::copy(tables, sound);
  const fabric::Description up = network;
  for (const Fault &fault : kFaults) {
    SCOPED_TRACE(std::string(fault.code) + " at " + fault.hosts);
    const Slots slots = fault.plant(*this);
    Save();
    const Json result = Ask("h2", "doctor -x", 1)["result"];
    std::string next;
    for (const Json &finding : result["findings"]) {
      std::string hosts;
      for (const auto &host : finding["hosts"].get<std::set<std::string>>()) hosts += " " + host;
      const bool same = finding["code"] == fault.code && finding["slots"] == Json(slots);
      if (same && hosts == std::string(" ") + fault.hosts) next = finding["next"];
    }
    EXPECT_NE(next, "") << result.dump(1);
    EXPECT_NE(next.find(fault.says), std::string::npos) << next;
    EXPECT_EQ(result.dump().find("the file tables/h1.satable;"), std::string::npos) << "the MSC's";
    if (fault.mended) Follow(next);
    EXPECT_EQ(Run("h1", "doctor").status, fault.mended ? 0 : 1) << next;
    network = up;
    std::filesystem::remove_all(tables);
    std::filesystem::copy(sound, tables);
  }
}

TEST_F(Doctor, FindsNothingInSoundTables) {
  for (const char *host : {"h1", "h2", "h4", "h5", "h6", "h9"})
    EXPECT_EQ(Run(host, "doctor").out, "Nothing is wrong; 8 tables read.\n") << host;
  ASSERT_TRUE(RunAll({"group set-reserve a 6", "group set-reserve a 3", "group set-client d h5",
                      "renew-keys", "switch-access off", "group remove-server a h5",
                      "group delete a/b/c --yes", "handover h6 --yes"}));
  EXPECT_EQ(Run("h4", "doctor").status, 0) << "before the new MSC discovers";
  for (const char *line : {"backup add h7", "group delete a/b --yes", "acg remove h4 --yes"})
    EXPECT_EQ(Run("h6", line).status, 0) << line;
  EXPECT_EQ(Run("h6", "doctor -x").out, "Nothing is wrong; 7 tables read.\n");

  network.faults = {{"h9", {}, "TQ_ReadSaTable", 1, {}}};
  Save();
  const Json finding = ResultOf("h5", "doctor")["findings"].at(0);
  EXPECT_EQ(finding["code"], "HOSTS_UNREAD");
  EXPECT_EQ(finding["wrong"], false);
  EXPECT_TRUE(ResultOf("h5", "doctor -x")["findings"].empty());
}

}  // namespace
