// A simulated network of hosts h1, h2, h3 in a folder of the test's own, and kvrctl run as any of
// them.
#pragma once

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "kvrapi/table_formats.h"

#include "fabric/description.h"
#include "scratch_folder.h"
#include "support/process.h"

using Json = nlohmann::json;

class FabricFolder : public testing::Test {
 protected:
  void Describe(std::uint32_t hosts) {
    network = fabric::MakeDescription(hosts, 1);
    for (std::size_t i = 0; i < hosts; ++i) {
      network.hosts[i].name = "h" + std::to_string(i + 1);
      network.hosts[i].wideName = std::u16string(u"Wïrt-") + static_cast<char16_t>(u'a' + i);
    }
    Save();
  }

  void Save() const { fabric::SaveDescription(folder.Path(), network); }

  // kvrctl as a host runs it; the words of the command have no blanks.
  [[nodiscard]] std::vector<std::string> Words(const std::string &host,
                                               const std::string &command) const {
    std::istringstream stream(command);
    std::vector<std::string> words = {KVRCTL_PATH};
    words.insert(words.end(), std::istream_iterator<std::string>(stream), {});
    words.insert(words.end(), {"--host", host, "--fabric", folder.Path().string()});
    return words;
  }

  [[nodiscard]] Result Run(const std::string &host, const std::string &command) const {
    return Process(Words(host, command)).Finish();
  }

  // Runs the commands as h1; false when one fails.
  [[nodiscard]] bool RunAll(const std::vector<std::string> &commands) const {
    return std::ranges::all_of(commands, [&](auto &line) { return Run("h1", line).status == 0; });
  }

  // Runs the command in the JSON form and expects this exit status.
  [[nodiscard]] Json Ask(const std::string &host, const std::string &command,
                         int status = 0) const {
    const Result result = Run(host, command + " --output json");
    EXPECT_EQ(result.status, status) << result.out << result.err;
    return Json::parse(result.out, nullptr, false);
  }

  [[nodiscard]] Json ResultOf(const std::string &host, const std::string &command) const {
    return Ask(host, command).value("result", Json());
  }

  // Changes the host's first key. No key has a zero byte, so that renewed ones differ from it also
  // within the second in which it was made.
  void SpoilKey(const std::string &host) const {
    std::fstream(folder.Path() / "tables" / (host + ".satable"),
                 std::ios::in | std::ios::out | std::ios::binary)
        .seekp(offsetof(SaTable, entries) + offsetof(SaEntry, key.keyMaterial))
        .put('\0');
  }

  // Expects every stored image to have the size of one, and returns how many there are.
  [[nodiscard]] std::size_t WholeImages() const {
    std::size_t count = 0;
    for (const auto &file : std::filesystem::directory_iterator(folder.Path() / "tables")) {
      const bool image = file.path().extension() == ".satable";
      EXPECT_TRUE(!image || file.file_size() == KVR_SA_TABLE_SIZE) << file.path();
      count += image;
    }
    return count;
  }

  const ScratchFolder folder;
  fabric::Description network;
};
