// Where the security tables of a simulated network are kept: one whole SaTable image for each host,
// shared by all its adapters, in a folder, in memory, or in memory over another store.
//
// Every store is safe to use from several threads; a folder store also from several processes. A
// host name is taken as checked (description.h): it is fit to be part of a file name.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "kvrapi/table_formats.h"

namespace fabric {

class ImageStore {
 public:
  using Visitor = std::function<void(const SaTable &image)>;
  using Change = std::function<void(SaTable &image)>;

  ImageStore() = default;
  ImageStore(const ImageStore &) = delete;
  ImageStore &operator=(const ImageStore &) = delete;
  virtual ~ImageStore() = default;

  // Shows the host's image to the visitor, which must not call the store. False, without a visit,
  // when the host holds none or it cannot be read.
  virtual bool Read(const std::string &host, const Visitor &visit) = 0;

  // Stores a whole image, in place of one or where there was none. On false the image is the old
  // one.
  virtual bool Write(const std::string &host, const SaTable &image) = 0;

  // Removes the image. False when there is none or it cannot be removed.
  virtual bool Remove(const std::string &host) = 0;

  // Changes the image as one step that no other write, removal or update comes between. False
  // when there is none or it cannot be read or stored.
  virtual bool Update(const std::string &host, const Change &change) = 0;
};

class MemoryStore final : public ImageStore {
 public:
  bool Read(const std::string &host, const Visitor &visit) override;
  bool Write(const std::string &host, const SaTable &image) override;
  bool Remove(const std::string &host) override;
  bool Update(const std::string &host, const Change &change) override;

 private:
  std::mutex mutex_;
  std::unordered_map<std::string, std::unique_ptr<SaTable>> images_;
};

// Keeps FOLDER/tables/HOST.satable. A process that dies while it writes leaves the old image or the
// new one. A file whose size is not that of a SaTable cannot be read, but replaced or removed.
class FolderStore final : public ImageStore {
 public:
  explicit FolderStore(const std::filesystem::path &folder);

  bool Read(const std::string &host, const Visitor &visit) override;
  bool Write(const std::string &host, const SaTable &image) override;
  bool Remove(const std::string &host) override;
  bool Update(const std::string &host, const Change &change) override;

 private:
  [[nodiscard]] std::filesystem::path File(const std::string &host, const char *suffix) const;

  std::filesystem::path tables_;
};

// Shows the images of another store, which is only ever read, and keeps every change of them in
// memory. A host that was changed here is seen as this store left it, whatever becomes of it below.
// What cannot be read below is no image here: it can be replaced, but not removed.
class OverlayStore final : public ImageStore {
 public:
  explicit OverlayStore(std::shared_ptr<ImageStore> below);

  bool Read(const std::string &host, const Visitor &visit) override;
  bool Write(const std::string &host, const SaTable &image) override;
  bool Remove(const std::string &host) override;
  bool Update(const std::string &host, const Change &change) override;

 private:
  void Lift(const std::string &host);

  std::mutex mutex_;
  std::shared_ptr<ImageStore> below_;
  MemoryStore changed_;
  std::unordered_set<std::string> lifted_;  // hosts whose image, or lack of one, is in changed_
};

}  // namespace fabric
