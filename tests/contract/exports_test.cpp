// Three lists say which functions the library has: the export list, the public header and the
// symbols of the built library. The outside libraries have a header and symbols each.
#include <cstdio>
#include <memory>
#include <regex>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace {

using Names = std::set<std::string>;

// The first group of every match in what a command prints.
Names Matches(const std::string &command, const std::string &pattern) {
  const std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"), pclose);
  std::string text;
  char part[4096];
  while (pipe && std::fgets(part, sizeof part, pipe.get()) != nullptr) text += part;
  const std::regex regex(pattern);
  return {std::sregex_token_iterator(text.begin(), text.end(), regex, 1), {}};
}

Names Declared(const std::string &header, const std::string &marker) {
  return Matches("cat '" SOURCE_DIR "/include/kvrapi/" + header + "'",
                 marker + R"(\s[^;#(]*?\b([A-Za-z]\w*)\()");
}

Names Defined(const std::string &library) {
  return Matches("nm -D --defined-only -P '" + library + "'", R"((?:^|\n)(\S+) )");
}

Names Tags(const std::string &library, const std::string &tag) {
  return Matches("readelf -dW '" + library + "'", "\\(" + tag + R"(\)[^\[]*\[([^\]]+)\])");
}

TEST(Exports, ListHeaderAndLibraryNameTheSameFunctions) {
  const Names listed = Matches("cat '" SOURCE_DIR "/src/api/kvrapi.def'", R"(\n +(\w+))");
  EXPECT_EQ(listed.size(), 54u);
  EXPECT_EQ(Declared("kvrapi.h", "KVR_API"), listed);
  EXPECT_EQ(Defined(LIBRARY_KVRAPI), listed);
}

TEST(Exports, LibraryAsksForEveryOutsideFunction) {
  Names outside = Declared("tqlink.h", "TQ_API");
  EXPECT_EQ(outside.size(), 12u);
  EXPECT_EQ(Defined(LIBRARY_TQLINK), outside);
  const Names discovery = Declared("vexonet.h", "VEXO_API");
  EXPECT_EQ(discovery.size(), 7u);
  EXPECT_EQ(Defined(LIBRARY_VEXONET), discovery);
  outside.insert(discovery.begin(), discovery.end());
  EXPECT_EQ(Matches("nm -Du '" LIBRARY_KVRAPI "'", R"( U ((?:TQ|Vexo|KVR)_\w+))"), outside);
}

// Another implementation under the same file name takes the place of an outside library, so the
// names under which they are looked for are the bare ones.
TEST(Exports, LibraryNeedsTheOutsideLibrariesAndTheRuntimeOnly) {
  EXPECT_EQ(Tags(LIBRARY_KVRAPI, "SONAME"), Names{"libkvrapi.so"});
  EXPECT_EQ(Tags(LIBRARY_TQLINK, "SONAME"), Names{"libTqlink.so"});
  EXPECT_EQ(Tags(LIBRARY_VEXONET, "SONAME"), Names{"libVexonet.so"});
  Names needed = Tags(LIBRARY_KVRAPI, "NEEDED");
  EXPECT_EQ(needed.erase("libTqlink.so") + needed.erase("libVexonet.so"), 2u);
  const std::regex runtime("(libstdc\\+\\+|libgcc_s|libm|libc|ld-linux[-\\w]*" SANITIZERS
                           ")\\.so.*");
  for (const std::string &name : needed) EXPECT_TRUE(std::regex_match(name, runtime)) << name;
}

}  // namespace
