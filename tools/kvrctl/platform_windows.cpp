#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <map>
#include <memory>
#include <windows.h>

#include "kvrapi/text.hpp"

#include "fabric/platform_files.h"
#include "platform.h"

namespace kvrctl {
namespace {

constexpr std::size_t kUsualWidth = 80;

HANDLE HandleOf(std::FILE *stream) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

// The modes of consoles as they were, for the shell that goes on in them.
class FormerModes {
 public:
  FormerModes() = default;
  FormerModes(const FormerModes &) = delete;
  FormerModes &operator=(const FormerModes &) = delete;
  ~FormerModes() {
    for (const auto &[console, mode] : modes_)
      SetConsoleMode(console, mode);
  }

  void Keep(HANDLE console, DWORD mode) { modes_.emplace(console, mode); }

 private:
  std::map<HANDLE, DWORD> modes_;
};

}  // namespace

std::vector<std::string> ProgramArguments(int /*argc*/, char ** /*argv*/) {
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&LocalFree)> words(
      CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; words && i < count; ++i) {
    const std::wstring word = words.get()[i];
    arguments.push_back(kvrapi::Utf8Of(word));
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

bool IsTerminal(std::FILE *stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

std::size_t TerminalWidth(std::FILE *stream) {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  const bool told = GetConsoleScreenBufferInfo(HandleOf(stream), &info) != 0;
  const int columns = info.srWindow.Right - info.srWindow.Left + 1;
  return told && columns > 0 ? static_cast<std::size_t>(columns) : kUsualWidth;
}

bool EnableColor(std::FILE *stream) {
  static FormerModes formerModes;
  const HANDLE console = HandleOf(stream);
  DWORD mode = 0;
  if (GetConsoleMode(console, &mode) == 0) return false;
  if ((mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0) return true;
  if (SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) == 0) return false;
  formerModes.Keep(console, mode);
  return true;
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
