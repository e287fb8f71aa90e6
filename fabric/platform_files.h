// What a fabric folder asks of the operating system beyond the standard library: files that are
// replaced whole or not at all, and locks between processes. Another system gets its own .cpp.
#pragma once

#include <cstddef>
#include <filesystem>
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
  int descriptor_ = -1;
  std::error_code error_;
};

// Replaces the file's content so that at any moment, whatever dies, it is the old or the new one,
// and the new one is on the disk on success. The caller keeps other writers of the file away: they
// would share FILE.tmp, which a writer that died leaves behind and the next one writes over.
std::error_code ReplaceFile(const std::filesystem::path &file, const void *content,
                            std::size_t size);

// Removes the file, on the disk too on success. A file that isn't there is an error.
std::error_code RemoveFile(const std::filesystem::path &file);

}  // namespace fabric
