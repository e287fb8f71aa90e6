// A simulated network of hosts h1, h2, h3 in a folder of the test's own, and kvrctl run as any of
// them.
#pragma once

#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "kvrapi/table_formats.h"

#include "fabric/description.h"
#include "process.h"

using Json = nlohmann::json;
using Words = std::vector<std::string>;

class FabricFolder : public testing::Test {
 protected:
  ~FabricFolder() override { std::filesystem::remove_all(folder); }

  void Describe(std::uint32_t hosts) {
    network = fabric::MakeDescription(hosts, 1);
    for (std::size_t i = 0; i < network.hosts.size(); ++i) {
      network.hosts[i].name = "h" + std::to_string(i + 1);
      network.hosts[i].wideName =
          u"Wïrt-" + std::u16string(1, static_cast<char16_t>(u'a' + i % 26));
    }
    fabric::SaveDescription(folder, network);
  }

  void FailAlways(const std::string &host, const std::string &function) {
    network.faults.push_back({host, std::nullopt, function, 1, std::nullopt});
    fabric::SaveDescription(folder, network);
  }

  [[nodiscard]] Words Line(const std::string &host, const Words &words) const {
    Words line = {"--fabric", folder.string(), "--host", host};
    line.insert(line.end(), words.begin(), words.end());
    return line;
  }

  [[nodiscard]] Result Run(const std::string &host, const Words &words) const {
    return Process(Line(host, words)).Finish();
  }

  // Runs the command in the JSON form and expects this exit status.
  [[nodiscard]] Json Ask(const std::string &host, Words words, int status = 0) const {
    words.insert(words.end(), {"--output", "json"});
    const Result result = Run(host, words);
    EXPECT_EQ(result.status, status) << result.out << result.err;
    return Json::parse(result.out, nullptr, false);
  }

  [[nodiscard]] Json ResultOf(const std::string &host, const Words &words) const {
    return Ask(host, words).value("result", Json());
  }

  // Expects every stored image to have the size of one, and returns how many there are.
  [[nodiscard]] std::size_t WholeImages() const {
    std::size_t count = 0;
    for (const auto &file : std::filesystem::directory_iterator(folder / "tables")) {
      if (file.path().extension() != ".satable") continue;
      EXPECT_EQ(file.file_size(), KVR_SA_TABLE_SIZE) << file.path();
      ++count;
    }
    return count;
  }

  const std::filesystem::path folder =
      std::filesystem::path(testing::TempDir()) /
      (std::string("kvrctl.") + testing::UnitTest::GetInstance()->current_test_info()->name() +
       "." + std::to_string(getpid()));
  fabric::Description network;
};
