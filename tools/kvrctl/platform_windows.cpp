#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <memory>
#include <windows.h>

#include "fabric/platform_files.h"
#include "platform.h"
#include "text.h"

namespace kvrctl {

std::vector<std::string> CommandLine(int /*argc*/, char ** /*argv*/) {
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&LocalFree)> words(
      CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; words && i < count; ++i) {
    const std::wstring word = words.get()[i];
    arguments.push_back(Utf8Of(std::u16string(word.begin(), word.end())));
  }
  return arguments;
}

void PrepareOutput() {
  SetConsoleOutputCP(CP_UTF8);
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
}

const std::string_view kPlainInShell = "-_./@:+\\";

// Backslashes are letters but in front of a quote.
std::string QuotedForShell(const std::string &word) {
  std::string quoted = "\"";
  std::size_t backslashes = 0;
  for (const char c : word) {
    if (c == '"') quoted.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    quoted += c;
  }
  return quoted.append(backslashes, '\\') + '"';
}

void SetEnvironment(const char *name, const std::string &value) {
  _wputenv_s(fabric::PathOf(name).c_str(), fabric::PathOf(value).c_str());
}

}  // namespace kvrctl
