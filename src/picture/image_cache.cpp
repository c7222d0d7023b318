#include "picture/image_cache.h"

#include "platform/files.h"

namespace facet {

namespace {

uint64_t sizeOf(const Image& image) {
  uint64_t bytes = 0;
  for (const ImageLevel& level : image.levels) bytes += level.bytes.size();
  return bytes;
}

std::vector<std::byte> wholeFile(const std::string& path) {
  const std::unique_ptr<ByteSource> file = openFile(path);
  std::vector<std::byte> bytes(file ? file->size() : 0);
  if (!file || !file->read(bytes.data(), bytes.size())) bytes.clear();
  return bytes;
}

}  // namespace

std::shared_ptr<ImageCache::Entry> ImageCache::entryOf(const std::string& path) {
  const std::lock_guard lock(mutex_);
  std::shared_ptr<Entry>& entry = entries_[path];
  if (!entry) entry = std::make_shared<Entry>();
  entry->lastUse = ++uses_;
  return entry;
}

void ImageCache::decode(Entry& entry, const std::string& path) {
  if (entry.image || (entry.tried && !entry.error.empty())) return;
  ImageResult result = loadImage(path);
  entry.tried = true;
  entry.image = std::move(result.image);
  entry.error = std::move(result.error);
}

/// Counts what the entry holds now, and drops others until all fit. A dropped entry is whole for whoever uses
/// it at this moment.
void ImageCache::count(Entry& entry, uint64_t bytes) {
  const std::lock_guard lock(mutex_);
  bytes_ += bytes - entry.bytes;
  entry.bytes = bytes;
  while (bytes_ > mostBytes_) {
    Entry* oldest = nullptr;
    for (const auto& [path, other] : entries_)
      if (other.get() != &entry && other->bytes > 0 && (!oldest || other->lastUse < oldest->lastUse))
        oldest = other.get();
    if (oldest == nullptr || !oldest->mutex.try_lock()) return;
    oldest->image = nullptr;
    oldest->png = nullptr;
    bytes_ -= oldest->bytes;
    oldest->bytes = 0;
    oldest->mutex.unlock();
  }
}

ImageResult ImageCache::image(const std::string& path) {
  const std::shared_ptr<Entry> entry = entryOf(path);
  const std::lock_guard lock(entry->mutex);
  decode(*entry, path);
  if (entry->image) count(*entry, sizeOf(*entry->image) + (entry->png ? entry->png->size() : 0));
  return {entry->image, entry->error};
}

bool ImageCache::isPicture(const std::string& path) {
  const std::shared_ptr<Entry> entry = entryOf(path);
  {
    const std::lock_guard lock(entry->mutex);
    if (entry->tried) return entry->error.empty();
  }
  return image(path).image != nullptr;
}

std::shared_ptr<const std::vector<std::byte>> ImageCache::png(const std::string& path) {
  const std::shared_ptr<Entry> entry = entryOf(path);
  const std::lock_guard lock(entry->mutex);
  if (entry->png) return entry->png;
  decode(*entry, path);
  if (!entry->image) return nullptr;
  const Image& image = *entry->image;
  const ImageLevel& first = image.levels.front();
  std::vector<std::byte> bytes = image.info.ImageFileFormat == D3DXIFF_PNG
                                     ? wholeFile(path)
                                     : encodePng(imagePixels(image, 0), first.width, first.height);
  if (bytes.empty()) return nullptr;
  entry->png = std::make_shared<const std::vector<std::byte>>(std::move(bytes));
  entry->image = nullptr;  // whoever wants a PNG wants it again, and seldom the pixels
  count(*entry, entry->png->size());
  return entry->png;
}

}  // namespace facet
