#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <regex>
#include <windows.h>

#include "fabric/platform_files.h"
#include "support/process.h"

using fabric::PathOf;

// A process gets the standard streams that its parent has at the time.
void Process::Start(const std::vector<std::string> &words) {
  std::vector<std::wstring> wide;
  for (const std::string &word : words)
    wide.push_back(L'"' + std::regex_replace(PathOf(word).native(), std::wregex(L"\""), L"\\\"") +
                   L'"');
  std::vector<const wchar_t *> argv;
  for (const std::wstring &word : wide) argv.push_back(word.c_str());
  argv.push_back(nullptr);
  int ends[2];
  if (_pipe(ends, 4096, _O_BINARY | _O_NOINHERIT) != 0) std::abort();
  out_ = _wfopen(_wtempnam(nullptr, L"kvr"), L"w+bDN");
  err_ = _fdopen(ends[0], "rb");
  const int ours[] = {_dup(1), _dup(2)};
  std::fflush(nullptr);
  _dup2(_fileno(out_), 1);
  _dup2(ends[1], 2);
  id_ = _wspawnv(_P_NOWAIT, PathOf(words[0]).c_str(), argv.data());
  for (const int stream : {1, 2}) {
    _dup2(ours[stream - 1], stream);
    _close(ours[stream - 1]);
  }
  _close(ends[1]);
}

void Process::Kill() const { TerminateProcess(reinterpret_cast<HANDLE>(id_), kKilled); }

int Process::Wait() {
  int status = -1;
  _cwait(&status, id_, 0);
  return status;
}

int RunInShell(const std::string &line) {
  return _wsystem((PathOf(line).native() + L" >NUL 2>&1").c_str());
}

void SetVariable(const char *name, const std::string &value) {
  _wputenv_s(PathOf(name).c_str(), PathOf(value).c_str());
}
