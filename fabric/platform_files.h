// What a fabric folder asks of the operating system beyond the standard library: files that are
// replaced whole or not at all, locks between processes, and names in UTF-8. Each operating system
// has its own .cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace fabric {

// Holds an exclusive lock between processes and threads for its lifetime, waiting for it as long as
// it takes. The lock ends with the process that holds it; the lock file stays.
class FileLock {
 public:
  explicit FileLock(const std::filesystem::path &file);
  FileLock(const FileLock &) = delete;
  FileLock &operator=(const FileLock &) = delete;
  ~FileLock();

  // Success when the lock is held, else why it could not be had.
  [[nodiscard]] std::error_code Error() const { return error_; }

 private:
  std::intptr_t handle_ = -1;
  std::error_code error_;
};

// The file's content, or its first bytes up to the limit; none when it can't be read. Of a file
// that is being replaced it is the old or the new content.
std::optional<std::string> ReadContent(const std::filesystem::path &file,
                                       std::size_t limit = std::string::npos);

// Replaces the file's content so that at any moment, whatever dies, it is the old or the new one,
// and the new one is on the disk on success. The caller keeps other writers of the file away: they
// would share FILE.tmp, which a writer that died leaves behind and the next one writes over.
std::error_code ReplaceContent(const std::filesystem::path &file, const void *content,
                               std::size_t size);

// Removes the file, on the disk too on success. A file that isn't there is an error.
std::error_code RemoveFile(const std::filesystem::path &file);

// The path that a text in UTF-8 names.
inline std::filesystem::path PathOf(const std::string &utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

// What two names have in common that make the same file, whatever its extension; empty for a name
// that no file can have. Names are ASCII.
std::string FileKey(const std::string &name);

// The value of a variable of the environment, in UTF-8; none where it is absent or empty.
std::optional<std::string> Environment(const char *name);

}  // namespace fabric
