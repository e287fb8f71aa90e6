#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <io.h>

#include <windows.h>

#include "support/process.h"

namespace {

std::wstring Wide(const std::string &utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end())).wstring();
}

HANDLE MakeScratchFile() {
  wchar_t folder[MAX_PATH], file[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  GetTempFileNameW(folder, L"kvr", 0, file);
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileW(file, GENERIC_READ | GENERIC_WRITE, 0, &inherited, CREATE_ALWAYS,
                     FILE_FLAG_DELETE_ON_CLOSE, nullptr);
}

std::FILE *ToRead(HANDLE handle) {
  const int descriptor = _open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_RDONLY);
  return _fdopen(descriptor, "rb");
}

HANDLE HandleOf(std::intptr_t id) { return reinterpret_cast<HANDLE>(id); }

}  // namespace

void Process::Start(const std::vector<std::string> &words) {
  std::wstring line;
  for (const std::string &word : words)
    line += word.find(' ') == std::string::npos ? Wide(word) + L" " : L'"' + Wide(word) + L"\" ";
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE read = nullptr, write = nullptr;
  if (CreatePipe(&read, &write, &inherited, 4096) == 0) std::abort();
  SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
  const HANDLE out = MakeScratchFile();
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = out;
  start.hStdError = write;
  PROCESS_INFORMATION process{};
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                     &process) == 0) {
    std::abort();
  }
  SetHandleInformation(out, HANDLE_FLAG_INHERIT, 0);
  CloseHandle(process.hThread);
  CloseHandle(write);
  id_ = reinterpret_cast<std::intptr_t>(process.hProcess);
  out_ = ToRead(out);
  err_ = ToRead(read);
}

void Process::Kill() const { TerminateProcess(HandleOf(id_), kKilled); }

int Process::Wait() {
  DWORD status = 0;
  WaitForSingleObject(HandleOf(id_), INFINITE);
  GetExitCodeProcess(HandleOf(id_), &status);
  CloseHandle(HandleOf(id_));
  return static_cast<int>(status);
}

int RunInShell(const std::string &line) { return _wsystem((Wide(line) + L" >NUL 2>&1").c_str()); }

void SetVariable(const char *name, const std::string &value) {
  _wputenv_s(Wide(name).c_str(), Wide(value).c_str());
}
