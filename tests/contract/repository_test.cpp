// The rules that the files of the repository keep among themselves.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <string>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

using Visit = std::function<void(const std::string &line, const std::string &where)>;

// Every file that was written by hand, by its path from the root.
void ForEachFile(const std::regex &wanted, const std::function<void(const std::string &)> &visit) {
  for (const char *room : {"include", "src", "fabric", "tools", "tests", "fuzz", "bench",
                           "examples", "docs", "script", "cmake", "packaging", ".ci"}) {
    const fs::path folder = fs::path(SOURCE_DIR) / room;
    if (!fs::exists(folder)) continue;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
      const std::string file = fs::relative(entry.path(), SOURCE_DIR).generic_string();
      if (entry.is_regular_file() && std::regex_search(file, wanted)) visit(file);
    }
  }
}

void ForEachLine(const std::string &file, const Visit &visit) {
  std::ifstream stream(fs::path(SOURCE_DIR) / file);
  int number = 0;
  for (std::string line; std::getline(stream, line);)
    visit(line, file + ":" + std::to_string(++number));
}

TEST(Repository, LinesFitAndNothingIsPutOff) {
  const std::regex putOff(
      "\\b(TO"
      "DO|FIX"
      "ME)\\b");
  const std::regex code(R"(\.(h|hpp|c|cpp)$)");
  ForEachFile(std::regex("^(?!fuzz/corpus/)"), [&](const std::string &file) {
    // Bytes that continue a character of UTF-8 take no column.
    const auto begins = [](char byte) { return (byte & 0xC0) != 0x80; };
    const std::ptrdiff_t limit = std::regex_search(file, code) ? 100 : PTRDIFF_MAX;
    ForEachLine(file, [&](const std::string &line, const std::string &where) {
      EXPECT_LE(std::count_if(line.begin(), line.end(), begins), limit) << where;
      EXPECT_FALSE(std::regex_search(line, putOff)) << where;
    });
  });
}

TEST(Repository, EveryTestFileIsBuilt) {
  std::stringstream stream;
  stream << std::ifstream(COMPILE_COMMANDS).rdbuf();
  const std::string commands = stream.str();
  ASSERT_NE(commands.find("/tests/contract/repository_test.cpp\""), std::string::npos);
  ForEachFile(std::regex("^tests/.*_test\\.cpp$"), [&](const std::string &file) {
    EXPECT_NE(commands.find("/" + file + "\""), std::string::npos) << file << " is in no target";
  });
}

// Of the library's rooms, each includes from itself and the floors below. The network and the
// tools, which may describe a network, meet the library only at its public headers.
TEST(Repository, RoomsIncludeOnlyFromTheirFloorDown) {
  const std::map<std::string, int> floors = {{"platform", 0}, {"model", 1},  {"tables", 2},
                                             {"config", 3},   {"groups", 4}, {"discovery", 4},
                                             {"api", 5},      {"fabric", 6}, {"tools", 7}};
  const std::regex include(R"re(^\s*#\s*include\s*["<](?:\.\./)*(?:src/)?([a-z]+)/)re");
  ForEachFile(std::regex("^(src|fabric|tools)/.*\\.(h|cpp)$"), [&](const std::string &file) {
    const bool library = file.starts_with("src/");
    const std::string path = library ? file.substr(4) : file;
    const std::string own = path.substr(0, path.find('/'));
    ASSERT_TRUE(floors.contains(own)) << file << " is in a room without a floor";
    ForEachLine(file, [&](const std::string &line, const std::string &where) {
      std::smatch named;
      if (!std::regex_search(line, named, include) || !floors.contains(named[1])) return;
      const bool below = floors.at(named[1]) < floors.at(own);
      EXPECT_TRUE(named[1] == own || (below && (library || named[1] == "fabric"))) << where;
    });
  });
}

}  // namespace
