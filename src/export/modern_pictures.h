#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "export/modern_scene.h"

// The pictures of one modern output: made on all cores, one in memory for each, and written in order.

namespace facet {

/// One for each key: none where its source cannot be read, of which a warning tells.
using ScenePictures = std::vector<std::optional<ScenePicture>>;

/// Files in the store's folder. Those that are new wait beside their places for commit(); without keep() they
/// are removed again.
class StoredPictures {
 public:
  /// `folder` is the store's as the output names it, empty or with a slash behind.
  StoredPictures(PictureStore& store, std::string folder) : store_(store), folder_(std::move(folder)) {}
  ~StoredPictures();
  StoredPictures(const StoredPictures&) = delete;
  StoredPictures& operator=(const StoredPictures&) = delete;

  /// Throws std::runtime_error where a picture cannot be written.
  ScenePictures make(const std::vector<PictureKey>& keys, std::vector<std::string>& warnings);
  void commit(ModernResult& result);
  void keep() { kept_ = true; }

 private:
  std::string pathOf(const PictureStore::Picture& picture) const { return folder_ + picture.name; }

  PictureStore& store_;
  const std::string folder_;
  std::vector<PictureStore::Reserved> used_;
  bool kept_ = false;
};

/// The bytes of the pictures, one after another in a file without a name.
class EmbeddedPictures {
 public:
  ScenePictures make(const std::vector<PictureKey>& keys, std::vector<std::string>& warnings);
  std::FILE* file() const { return file_.get(); }

 private:
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_{nullptr, std::fclose};
};

}  // namespace facet
