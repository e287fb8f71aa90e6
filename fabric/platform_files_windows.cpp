#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <regex>
#include <windows.h>

#include "fabric/platform_files.h"

namespace fabric {
namespace {

// The whole file, and whatever lies beyond its end.
constexpr DWORD kAll = MAXDWORD;

// Whoever has a file open, if only to look it through for viruses, keeps it from being replaced,
// and one that is being replaced can't be opened. Both pass in a moment.
constexpr int kAttempts = 2000;
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
  for (int i = 1; !attempt(); ++i) {
    if (i == kAttempts || !MayPass(GetLastError())) return false;
    Sleep(kPauseMs);
  }
  return true;
}

// An open file that is closed at the end of its block. Others may do with it what they like.
class OpenFile {
 public:
  OpenFile(const std::filesystem::path &file, DWORD access, DWORD disposition) {
    constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    Patiently([&] {
      value_ = CreateFileW(file.c_str(), access, kShare, nullptr, disposition,
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

FileLock::FileLock(const std::filesystem::path &file) {
  const HANDLE handle =
      CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                  nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
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
  std::string content;
  char part[1 << 16];
  while (content.size() < limit) {
    const std::size_t wanted = std::min(sizeof part, limit - content.size());
    DWORD count = 0;
    if (ReadFile(open.Value(), part, static_cast<DWORD>(wanted), &count, nullptr) == 0) {
      return std::nullopt;
    }
    if (count == 0) break;
    content.append(part, count);
  }
  return content;
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

// Letters have no case, and some names are devices with any extension.
std::string FileKey(const std::string &name) {
  std::string key = name;
  std::ranges::transform(key, key.begin(), [](unsigned char c) { return std::tolower(c); });
  const std::regex device("(con|prn|aux|nul|com[0-9]|lpt[0-9])(\\..*)?");
  return std::regex_match(key, device) ? "" : key;
}

std::optional<std::string> Environment(const char *name) {
  const wchar_t *value = _wgetenv(PathOf(name).c_str());
  if (value == nullptr || *value == L'\0') return std::nullopt;
  return std::filesystem::path(value).string();
}

}  // namespace fabric
