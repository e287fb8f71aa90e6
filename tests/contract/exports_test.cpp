// Three lists say which functions the library has: the export list, the public header and the
// symbols of the built library. The outside libraries have a header and symbols each. Where
// KVR_WINDOWS_BUILD names the folder of the Windows build, its libraries are looked at too.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
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

bool IsDll(const std::string &library) { return library.ends_with(".dll"); }

Names InDll(const std::string &library, const std::string &pattern) {
  return Matches("objdump -p '" + library + "'", pattern);
}

Names Defined(const std::string &library) {
  if (IsDll(library)) return InDll(library, R"(\n\t\[ *\d+\] (?!\+)(\S+))");
  return Matches("nm -D --defined-only -P '" + library + "'", R"((?:^|\n)(\S+) )");
}

Names AskedFor(const std::string &library) {
  const std::string names = "((?:TQ|Vexo|KVR)_\\w+)";
  if (IsDll(library)) return InDll(library, "\\d  " + names);
  return Matches("nm -Du '" + library + "'", " U " + names);
}

Names Tags(const std::string &library, const std::string &tag) {
  return Matches("readelf -dW '" + library + "'", "\\(" + tag + R"(\)[^\[]*\[([^\]]+)\])");
}

// The files of kvrapi, Tqlink and Vexonet of each build.
std::vector<std::vector<std::string>> Builds() {
  std::vector<std::vector<std::string>> builds = {
      {LIBRARY_KVRAPI, LIBRARY_TQLINK, LIBRARY_VEXONET}};
  if (const char *build = std::getenv("KVR_WINDOWS_BUILD")) {
    const std::string bin = std::string(build) + "/bin/";
    builds.push_back({bin + "kvrapi.dll", bin + "Tqlink.dll", bin + "Vexonet.dll"});
  }
  return builds;
}

TEST(Exports, ListHeaderAndLibraryNameTheSameFunctions) {
  const Names listed = Matches("cat '" SOURCE_DIR "/src/api/kvrapi.def'", R"(\n +(\w+))");
  EXPECT_EQ(listed.size(), 54u);
  EXPECT_EQ(Declared("kvrapi.h", "KVR_API"), listed);
  for (const auto &build : Builds()) EXPECT_EQ(Defined(build[0]), listed) << build[0];
}

TEST(Exports, LibraryAsksForEveryOutsideFunction) {
  const Names outside = Declared("tqlink.h", "TQ_API");
  EXPECT_EQ(outside.size(), 12u);
  const Names discovery = Declared("vexonet.h", "VEXO_API");
  EXPECT_EQ(discovery.size(), 7u);
  Names both = outside;
  both.insert(discovery.begin(), discovery.end());
  for (const auto &build : Builds()) {
    EXPECT_EQ(AskedFor(build[0]), both) << build[0];
    EXPECT_EQ(Defined(build[1]), outside) << build[1];
    EXPECT_EQ(Defined(build[2]), discovery) << build[2];
  }
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

// Windows' own libraries are there everywhere; a runtime of the compiler's is not.
TEST(Exports, DllNeedsTheOutsideLibrariesAndWindowsOnly) {
  for (const auto &build : Builds()) {
    for (const std::string &library : build) {
      if (!IsDll(library)) continue;
      Names needed = InDll(library, R"(DLL Name: (\S+))");
      EXPECT_EQ(needed.erase("Tqlink.dll") + needed.erase("Vexonet.dll"),
                library == build[0] ? 2u : 0u);
      for (const char *own : {"KERNEL32.dll", "msvcrt.dll", "WS2_32.dll"}) needed.erase(own);
      EXPECT_EQ(needed, Names()) << library;
      const Names flags = InDll(library, R"(DllCharacteristics\t(\w+))");
      EXPECT_EQ(flags, Names{"00000140"}) << "addresses drawn at the start, data never run";
    }
    std::ifstream file(build[0], std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(content.find("ios_base"), std::string::npos) << build[0] << " has streams in it";
  }
}

}  // namespace
