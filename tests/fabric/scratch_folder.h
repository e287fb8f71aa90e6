// A folder of a test's own, removed with everything in it at the end. A process has one at a time;
// those of processes that run at the same time differ.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

class ScratchFolder {
 public:
  ScratchFolder() { std::filesystem::create_directories(path_); }
  ScratchFolder(const ScratchFolder &) = delete;
  ~ScratchFolder() { std::filesystem::remove_all(path_); }

  [[nodiscard]] const std::filesystem::path &Path() const { return path_; }
  void Put(const std::string &name, const std::string &text) const {
    std::ofstream(path_ / name, std::ios::binary) << text;
  }
  [[nodiscard]] std::string Get(const std::string &name) const {
    std::ifstream input(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), {}};
  }

 private:
  const std::filesystem::path path_ =
      std::filesystem::path(testing::TempDir()) / ("kvrapi-test." + std::to_string(getpid()));
};
