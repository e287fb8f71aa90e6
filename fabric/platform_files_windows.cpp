#include <algorithm>
#include <cctype>
#include <regex>
#include <windows.h>

#include "fabric/platform_files.h"
#include "fabric/read_up_to.h"

namespace fabric {
namespace {

// The whole file, and whatever lies beyond its end.
constexpr DWORD kAll = MAXDWORD;

// Others may do with an open file what they like.
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Whoever has a file open, if only to look it through for viruses, keeps it from being replaced,
// and one that is being replaced can't be opened. Both pass in a moment.
constexpr ULONGLONG kPatienceMs = 2000;
constexpr DWORD kPauseMs = 2;

std::error_code LastError() {
  return {static_cast<int>(GetLastError()), std::system_category()};
}

bool MayPass(DWORD error) {
  return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ||
         error == ERROR_DELETE_PENDING || error == ERROR_USER_MAPPED_FILE;
}

// Calls until it succeeds, or fails for good.
template <class Attempt>
bool Patiently(Attempt attempt) {
  const ULONGLONG limit = GetTickCount64() + kPatienceMs;
  while (!attempt()) {
    if (!MayPass(GetLastError()) || GetTickCount64() > limit) return false;
    Sleep(kPauseMs);
  }
  return true;
}

// An open file that is closed at the end of its block.
class OpenFile {
 public:
  OpenFile(const std::filesystem::path &file, DWORD access, DWORD disposition) {
    Patiently([&] {
      value_ = CreateFileW(file.c_str(), access, kShareAll, nullptr, disposition,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
      return value_ != INVALID_HANDLE_VALUE;
    });
  }
  OpenFile(const OpenFile &) = delete;
  OpenFile &operator=(const OpenFile &) = delete;
  ~OpenFile() {
    if (IsOpen()) CloseHandle(value_);
  }
  [[nodiscard]] bool IsOpen() const { return value_ != INVALID_HANDLE_VALUE; }
  [[nodiscard]] HANDLE Value() const { return value_; }

 private:
  HANDLE value_ = INVALID_HANDLE_VALUE;
};

std::error_code WriteFlushed(const std::filesystem::path &file, const void *content,
                             std::size_t size) {
  const OpenFile open(file, GENERIC_WRITE, CREATE_ALWAYS);
  DWORD written = 0;
  if (!open.IsOpen() ||
      WriteFile(open.Value(), content, static_cast<DWORD>(size), &written, nullptr) == 0 ||
      FlushFileBuffers(open.Value()) == 0) {
    return LastError();
  }
  return written == size ? std::error_code() : std::make_error_code(std::errc::no_space_on_device);
}

}  // namespace

// Nobody replaces the lock file, so that access denied is for good.
FileLock::FileLock(const std::filesystem::path &file) {
  HANDLE handle = INVALID_HANDLE_VALUE;
  Patiently([&] {
    handle = CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, kShareAll, nullptr,
                         OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return handle != INVALID_HANDLE_VALUE || GetLastError() == ERROR_ACCESS_DENIED;
  });
  handle_ = reinterpret_cast<std::intptr_t>(handle);
  OVERLAPPED fromStart{};
  if (handle == INVALID_HANDLE_VALUE ||
      LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK, 0, kAll, kAll, &fromStart) == 0) {
    error_ = LastError();
  }
}

FileLock::~FileLock() {
  const HANDLE handle = reinterpret_cast<HANDLE>(handle_);
  if (handle == INVALID_HANDLE_VALUE) return;
  OVERLAPPED fromStart{};
  UnlockFileEx(handle, 0, kAll, kAll, &fromStart);
  CloseHandle(handle);
}

std::optional<std::string> ReadContent(const std::filesystem::path &file, std::size_t limit) {
  const OpenFile open(file, GENERIC_READ, OPEN_EXISTING);
  if (!open.IsOpen()) return std::nullopt;
  return ReadUpTo(limit, [&](char *part, std::size_t size) -> std::optional<std::size_t> {
    DWORD count = 0;
    if (ReadFile(open.Value(), part, static_cast<DWORD>(size), &count, nullptr) == 0) {
      return std::nullopt;
    }
    return count;
  });
}

std::error_code ReplaceContent(const std::filesystem::path &file, const void *content,
                               std::size_t size) {
  std::filesystem::path scratch = file;
  scratch += ".tmp";
  if (auto error = WriteFlushed(scratch, content, size)) return error;
  constexpr DWORD kHow = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  const bool moved =
      Patiently([&] { return MoveFileExW(scratch.c_str(), file.c_str(), kHow) != 0; });
  return moved ? std::error_code() : LastError();
}

std::error_code RemoveFile(const std::filesystem::path &file) {
  const bool removed = Patiently([&] { return DeleteFileW(file.c_str()) != 0; });
  return removed ? std::error_code() : LastError();
}

// Letters have no case. Some names are devices, also with blanks behind them and any extension.
std::string FileKey(const std::string &name) {
  std::string key = name;
  std::ranges::transform(key, key.begin(), [](unsigned char c) { return std::tolower(c); });
  const std::regex device("(con|prn|aux|nul|conin\\$|conout\\$|com[0-9]|lpt[0-9]) *(\\..*)?");
  return std::regex_match(key, device) ? "" : key;
}

// Of the process, not of the C runtime: that keeps a copy, and a program may have several of it.
std::optional<std::string> Environment(const char *name) {
  const auto wide = PathOf(name);
  std::wstring value(GetEnvironmentVariableW(wide.c_str(), nullptr, 0), L'\0');
  value.resize(
      GetEnvironmentVariableW(wide.c_str(), value.data(), static_cast<DWORD>(value.size())));
  if (value.empty()) return std::nullopt;
  return std::filesystem::path(value).string();
}

}  // namespace fabric
