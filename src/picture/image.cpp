#include "picture/image.h"

#include <new>
#include <string_view>
#include <utility>

#include "picture/decoders.h"
#include "platform/files.h"

namespace facet {
namespace {

struct Signature {
  std::string_view bytes;
  ImageResult (*decode)(Bytes file);
};

constexpr Signature signatures[] = {
    {"DDS ", decodeDds},
    {"\x89PNG", decodePng},
    {"BM", decodeBmp},
};

}  // namespace

ImageResult loadImage(const std::filesystem::path& path) {
  const std::unique_ptr<ByteSource> source = openFile(path);
  if (!source) return {nullptr, "cannot be opened"};
  try {
    std::vector<std::byte> file(source->size());
    if (!source->read(file.data(), file.size())) return {nullptr, "cannot be read"};
    return decodeImage(file);
  } catch (const std::bad_alloc&) {
    return {nullptr, "is too large for the memory"};
  }
}

ImageResult decodeImage(std::span<const std::byte> file) {
  const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
  for (const Signature& signature : signatures)
    if (text.starts_with(signature.bytes)) return signature.decode(file);
  if (isTga(file)) return decodeTga(file);
  return {nullptr, "is no DDS, PNG, BMP or TGA picture"};
}

std::vector<uint8_t> imagePixels(const Image& image, uint32_t level) {
  const ImageLevel& source = image.levels[level];
  std::vector<uint8_t> rgba(size_t{source.width} * source.height * 4);
  decodePixels(image.info.Format, source.width, source.height, source.bytes, rgba);
  return rgba;
}

std::string tooShort(const char* what, uint64_t held, uint64_t needed) {
  return std::string(what) + " has " + std::to_string(held) + " bytes, " + std::to_string(needed) +
         " are needed";
}

std::string sizeError(const char* kind, uint64_t width, uint64_t height) {
  if (width >= 1 && height >= 1 && width <= maximumPictureSide && height <= maximumPictureSide) return {};
  return std::string(kind) + " picture of " + std::to_string(width) + " x " + std::to_string(height) +
         " pixels: sides of 1 to " + std::to_string(maximumPictureSide) + " are possible";
}

ImageResult pictureOfRgba(D3DXIMAGE_FILEFORMAT kind, uint32_t width, uint32_t height, bool alpha,
                          std::vector<std::byte> rgba) {
  for (size_t i = 0; i < rgba.size(); i += 4) std::swap(rgba[i], rgba[i + 2]);
  auto image = std::make_shared<Image>();
  image->info.Width = width;
  image->info.Height = height;
  image->info.Format = alpha ? D3DFMT_A8R8G8B8 : D3DFMT_X8R8G8B8;
  image->info.ImageFileFormat = kind;
  image->levels.push_back({width, height, std::move(rgba)});
  return {std::move(image), {}};
}

bool alphaIsZero(Bytes rgba) {
  for (size_t i = 3; i < rgba.size(); i += 4)
    if (rgba[i] != std::byte{0}) return false;
  return true;
}

// The cache.

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

std::string ImageCache::whyNoPicture(const std::string& path) {
  const std::shared_ptr<Entry> entry = entryOf(path);
  {
    const std::lock_guard lock(entry->mutex);
    if (entry->tried) return entry->error;
  }
  return image(path).error;
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
