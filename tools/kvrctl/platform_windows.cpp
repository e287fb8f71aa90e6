#include <cstdio>
#include <cstdlib>
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
  static const UINT former = GetConsoleOutputCP();
  std::atexit([] { SetConsoleOutputCP(former); });
  SetConsoleOutputCP(CP_UTF8);
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
}

const std::string_view kPlainInShell = "-_./@:+\\";

// First as a program takes its command line apart, where backslashes are letters but in front of a
// quote. cmd knows no quote inside quotes and replaces %NAME% even there, so in a word with such
// letters every one that means something to cmd gets a caret. (In a batch file no caret keeps a %.)
std::string QuotedForShell(const std::string &word) {
  std::string quoted = "\"";
  std::size_t backslashes = 0;
  for (const char c : word) {
    if (c == '"') quoted.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    quoted += c;
  }
  quoted.append(backslashes, '\\') += '"';
  if (word.find_first_of("\"%") == std::string::npos) return quoted;
  std::string escaped;
  for (const char c : quoted) {
    if (std::string_view("\"&|<>^()%!").find(c) != std::string_view::npos) escaped += '^';
    escaped += c;
  }
  return escaped;
}

void SetEnvironment(const char *name, const std::string &value) {
  SetEnvironmentVariableW(fabric::PathOf(name).c_str(), fabric::PathOf(value).c_str());
}

}  // namespace kvrctl
