#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

#include <sys/file.h>

#include "fabric/platform_files.h"
#include "fabric/read_up_to.h"

namespace fabric {
namespace {

std::error_code LastError() {
  return {errno, std::generic_category()};
}

// A file descriptor that is closed at the end of its block.
class Descriptor {
 public:
  Descriptor(const std::filesystem::path &file, int flags)
      : value_(::open(file.c_str(), flags | O_CLOEXEC, 0666)) {}
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;
  ~Descriptor() {
    if (value_ >= 0) ::close(value_);
  }
  [[nodiscard]] int Value() const { return value_; }

 private:
  int value_;
};

std::error_code WriteAll(int descriptor, const char *content, std::size_t size) {
  while (size > 0) {
    const ssize_t written = ::write(descriptor, content, size);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return LastError();
    content += written;
    size -= static_cast<std::size_t>(written);
  }
  return {};
}

std::error_code FlushFolder(const std::filesystem::path &folder) {
  const Descriptor descriptor(folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY);
  if (descriptor.Value() < 0 || ::fsync(descriptor.Value()) != 0) return LastError();
  return {};
}

std::error_code WriteFlushed(const std::filesystem::path &file, const void *content,
                             std::size_t size) {
  const Descriptor descriptor(file, O_WRONLY | O_CREAT | O_TRUNC);
  if (descriptor.Value() < 0) return LastError();
  if (auto error = WriteAll(descriptor.Value(), static_cast<const char *>(content), size)) {
    return error;
  }
  if (::fsync(descriptor.Value()) != 0) return LastError();
  return {};
}

}  // namespace

FileLock::FileLock(const std::filesystem::path &file) {
  const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  handle_ = descriptor;
  if (descriptor < 0) {
    error_ = LastError();
    return;
  }
  while (::flock(descriptor, LOCK_EX) != 0) {
    if (errno == EINTR) continue;
    error_ = LastError();
    return;
  }
}

FileLock::~FileLock() {
  if (handle_ >= 0) ::close(static_cast<int>(handle_));
}

std::optional<std::string> ReadContent(const std::filesystem::path &file, std::size_t limit) {
  const Descriptor descriptor(file, O_RDONLY);
  if (descriptor.Value() < 0) return std::nullopt;
  return ReadUpTo(limit, [&](char *part, std::size_t size) -> std::optional<std::size_t> {
    for (;;) {
      const ssize_t count = ::read(descriptor.Value(), part, size);
      if (count >= 0) return static_cast<std::size_t>(count);
      if (errno != EINTR) return std::nullopt;
    }
  });
}

std::error_code ReplaceContent(const std::filesystem::path &file, const void *content,
                               std::size_t size) {
  std::filesystem::path scratch = file;
  scratch += ".tmp";
  if (auto error = WriteFlushed(scratch, content, size)) return error;
  if (::rename(scratch.c_str(), file.c_str()) != 0) return LastError();
  return FlushFolder(file.parent_path());
}

std::error_code RemoveFile(const std::filesystem::path &file) {
  if (::unlink(file.c_str()) != 0) return LastError();
  return FlushFolder(file.parent_path());
}

std::string FileKey(const std::string &name) {
  return name;
}

std::optional<std::string> Environment(const char *name) {
  const char *value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return value;
}

}  // namespace fabric
