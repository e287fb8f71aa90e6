// Makes the reference, the manual pages and the completions of kvrctl from what
// `kvrctl help --json` printed.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include <fmt/format.h>

#include "pages.h"

namespace {

using namespace reference;

Json ReadDescription(const std::string &file) {
  if (file == "-") return Json::parse(std::cin);
  std::ifstream input(file, std::ios::binary);
  if (!input) throw std::runtime_error(fmt::format("'{}' cannot be read", file));
  return Json::parse(input);
}

void WritePage(const std::filesystem::path &folder, const Page &page) {
  const std::filesystem::path file = folder / page.file;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream output(file, std::ios::binary);
  output << page.text << std::flush;
  if (!output) throw std::runtime_error(fmt::format("'{}' cannot be written", file.string()));
}

void MakePages(const Json &program, const std::filesystem::path &folder) {
  WritePage(folder, MarkdownReference(program));
  for (const Page &page : ManPages(program))
    WritePage(folder, page);
  WritePage(folder, BashCompletion(program));
  WritePage(folder, ZshCompletion(program));
}

}  // namespace

int main(int argc, char **argv) {
  try {
    if (argc != 3) throw std::runtime_error("two arguments are needed");
    MakePages(ReadDescription(argv[1]), argv[2]);
    return 0;
  } catch (const std::exception &error) {
    fmt::print(stderr,
               "kvrctl_reference: {}.\n  Give it the file that `kvrctl help --json` printed, or - "
               "for standard input, and the folder to write to.\n",
               error.what());
    return 2;
  }
}
