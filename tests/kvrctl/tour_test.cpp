// docs/tour.md is run: every command in it by kvrctl, and what it prints must be what the page
// says. With KVR_TOUR_UPDATE set, the page is written anew instead.
#include <fstream>
#include <regex>
#include <thread>

#include "fabric_folder.h"

namespace {

namespace fs = std::filesystem;

class Tour : public FabricFolder {
 protected:
  void SetUp() override {
    fs::create_directories(folder.Path() / "examples");
    fs::copy(SOURCE_DIR "/examples/day", folder.Path() / "examples/day");
    former = fs::current_path();
    fs::current_path(folder.Path());
  }

  void TearDown() override { fs::current_path(former); }

  // What a terminal shows of a command, "kvrctl ..." or "export NAME=VALUE ...".
  std::string Shown(const std::string &command) {
    std::istringstream stream(command);
    std::vector<std::string> words(std::istream_iterator<std::string>(stream), {});
    if (words.at(0) == "export") {
      for (std::size_t i = 1; i < words.size(); ++i) {
        const std::size_t equals = words[i].find('=');
        SetVariable(words[i].substr(0, equals).c_str(), words[i].substr(equals + 1));
      }
      return "";
    }
    words[0] = KVRCTL_PATH;
    // Keys made within one second are the same.
    if (command == "kvrctl renew-keys") std::this_thread::sleep_for(std::chrono::seconds(1));
    Result result = Process(words).Finish();
    while (command == "kvrctl create" && !HasLongSlot(result.out)) {
      std::this_thread::sleep_for(std::chrono::seconds(1));
      fs::remove_all("day/tables");
      result = Process(words).Finish();
    }
    const std::string status =
        result.status == 0 ? "" : "(exit status " + std::to_string(result.status) + ")\n";
    return result.out + result.err + status;
  }

  // The MSC's slot is drawn from the second. One below 100 would move the slots of the groups.
  static bool HasLongSlot(const std::string &text) {
    return std::regex_search(text, std::regex("slot [0-9]{3}"));
  }

  const std::string page = SOURCE_DIR "/docs/tour.md";
  fs::path former;
};

// What is drawn anew by every run: the MSC's slot, identities and fingerprints.
std::string Settled(const std::string &text) {
  return std::regex_replace(text, std::regex("\\b(1[0-9]{2}|2[0-3][0-9]|24[0-5])\\b|[0-9a-f]{16,}"),
                            "#");
}

TEST_F(Tour, IsToldAsItReallyPrints) {
  std::ifstream told(page);
  std::string expected, printed;
  bool inCode = false, inOutput = false;
  for (std::string line; std::getline(told, line);) {
    expected += line + '\n';
    if (line.starts_with("```")) inCode = !inCode;
    const bool isCommand = inCode && line.starts_with("$ ");
    inOutput = inCode && (isCommand || (inOutput && !line.starts_with("```")));
    if (isCommand || !inOutput) printed += line + '\n';
    if (isCommand) printed += Shown(line.substr(2));
  }
  ASSERT_NE(printed.find("$ kvrctl renew-keys"), std::string::npos) << "the day is not whole";
  if (std::getenv("KVR_TOUR_UPDATE") != nullptr) {
    std::ofstream(page, std::ios::binary) << printed;
    return;
  }
  EXPECT_EQ(Settled(expected), Settled(printed)) << "to write it anew: the target tour_update";
}

}  // namespace
