#include "fabric/image_store.h"

#include <cstring>
#include <system_error>
#include <utility>

#include "fabric/platform_files.h"

namespace fabric {
namespace {

// None when the file is absent, unreadable or not of a table's size.
std::unique_ptr<SaTable> LoadImage(const std::filesystem::path &file) {
  const auto content = ReadContent(file, sizeof(SaTable) + 1);
  if (!content || content->size() != sizeof(SaTable)) return nullptr;
  auto image = std::make_unique<SaTable>();
  std::memcpy(image.get(), content->data(), sizeof(SaTable));
  return image;
}

}  // namespace

bool MemoryStore::Read(const std::string &host, const Visitor &visit) {
  const std::lock_guard guard(mutex_);
  const auto found = images_.find(host);
  if (found == images_.end()) return false;
  visit(*found->second);
  return true;
}

bool MemoryStore::Write(const std::string &host, const SaTable &image) {
  const std::lock_guard guard(mutex_);
  images_[host] = std::make_unique<SaTable>(image);
  return true;
}

bool MemoryStore::Remove(const std::string &host) {
  const std::lock_guard guard(mutex_);
  return images_.erase(host) != 0;
}

bool MemoryStore::Update(const std::string &host, const Change &change) {
  const std::lock_guard guard(mutex_);
  const auto found = images_.find(host);
  if (found == images_.end()) return false;
  change(*found->second);
  return true;
}

FolderStore::FolderStore(const std::filesystem::path &folder) : tables_(folder / "tables") {}

std::filesystem::path FolderStore::File(const std::string &host, const char *suffix) const {
  return tables_ / PathOf(host + suffix);
}

// Readers take no lock: a file is only ever replaced whole.
bool FolderStore::Read(const std::string &host, const Visitor &visit) {
  const auto image = LoadImage(File(host, ".satable"));
  if (!image) return false;
  visit(*image);
  return true;
}

bool FolderStore::Write(const std::string &host, const SaTable &image) {
  std::error_code ignored;
  std::filesystem::create_directories(tables_, ignored);
  const FileLock lock(File(host, ".lock"));
  if (lock.Error()) return false;
  return !ReplaceContent(File(host, ".satable"), &image, sizeof image);
}

bool FolderStore::Remove(const std::string &host) {
  const FileLock lock(File(host, ".lock"));
  if (lock.Error()) return false;
  return !RemoveFile(File(host, ".satable"));
}

bool FolderStore::Update(const std::string &host, const Change &change) {
  const FileLock lock(File(host, ".lock"));
  if (lock.Error()) return false;
  const auto image = LoadImage(File(host, ".satable"));
  if (!image) return false;
  change(*image);
  return !ReplaceContent(File(host, ".satable"), image.get(), sizeof *image);
}

OverlayStore::OverlayStore(std::shared_ptr<ImageStore> below) : below_(std::move(below)) {}

// A host without an image below is left there: it may get one.
void OverlayStore::Lift(const std::string &host) {
  if (lifted_.contains(host)) return;
  const auto copy = [&](const SaTable &image) { changed_.Write(host, image); };
  if (below_->Read(host, copy)) lifted_.insert(host);
}

bool OverlayStore::Read(const std::string &host, const Visitor &visit) {
  const std::lock_guard guard(mutex_);
  return lifted_.contains(host) ? changed_.Read(host, visit) : below_->Read(host, visit);
}

bool OverlayStore::Write(const std::string &host, const SaTable &image) {
  const std::lock_guard guard(mutex_);
  changed_.Write(host, image);
  lifted_.insert(host);
  return true;
}

bool OverlayStore::Remove(const std::string &host) {
  const std::lock_guard guard(mutex_);
  Lift(host);
  return changed_.Remove(host);
}

bool OverlayStore::Update(const std::string &host, const Change &change) {
  const std::lock_guard guard(mutex_);
  Lift(host);
  return changed_.Update(host, change);
}

}  // namespace fabric
