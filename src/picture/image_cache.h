#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "picture/image.h"

namespace facet {

/// Decodes each picture file once for all the models of a batch, which may share it on several threads. The
/// pictures used longest ago are dropped when there are too many bytes of them; whether a file can be read at
/// all stays known. A file that changes meanwhile is not read again.
class ImageCache {
 public:
  explicit ImageCache(uint64_t mostBytes = 256 << 20) : mostBytes_(mostBytes) {}

  ImageResult image(const std::string& path);

  /// True when the file holds a picture.
  bool isPicture(const std::string& path);

  /// The picture as a PNG file: a file that is one stands as it is, of others the first level is encoded.
  /// None when the file holds no picture.
  std::shared_ptr<const std::vector<std::byte>> png(const std::string& path);

 private:
  struct Entry {
    std::mutex mutex;  // one thread decodes, others that want the same wait
    bool tried = false;
    std::string error;
    std::shared_ptr<const Image> image;
    std::shared_ptr<const std::vector<std::byte>> png;
    // Under the cache's mutex:
    uint64_t bytes = 0, lastUse = 0;
  };

  std::shared_ptr<Entry> entryOf(const std::string& path);
  static void decode(Entry& entry, const std::string& path);
  void count(Entry& entry, uint64_t bytes);

  const uint64_t mostBytes_;
  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<Entry>> entries_;
  uint64_t bytes_ = 0, uses_ = 0;
};

}  // namespace facet
