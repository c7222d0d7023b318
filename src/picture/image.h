#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "picture/pixels.h"

namespace facet {

/// D3DX's codes of picture files.
enum D3DXIMAGE_FILEFORMAT : uint32_t { D3DXIFF_BMP = 0, D3DXIFF_TGA = 2, D3DXIFF_PNG = 3, D3DXIFF_DDS = 4 };

/// What D3DX tells of a picture file.
struct D3DXIMAGE_INFO {
  uint32_t Width = 0, Height = 0;
  uint32_t MipLevels = 1;
  D3DFORMAT Format = D3DFMT_UNKNOWN;
  D3DXIMAGE_FILEFORMAT ImageFileFormat = D3DXIFF_BMP;
};

/// One level of a picture: its rows without gaps, from the top; rows of 4 x 4 blocks in the DXT formats.
struct ImageLevel {
  uint32_t width = 0, height = 0;
  std::vector<std::byte> bytes;
};

/// A picture file in memory. DDS levels keep the file's format (compressed ones as they are); PNG, TGA and
/// BMP become D3DFMT_A8R8G8B8 or D3DFMT_X8R8G8B8.
struct Image {
  D3DXIMAGE_INFO info;
  std::vector<ImageLevel> levels;  ///< info.MipLevels of them
};

/// An image, or the reason why there is none.
struct ImageResult {
  std::shared_ptr<const Image> image;
  std::string error;
};

/// Reads a picture file whose kind its first bytes tell. Of cube and volume files the first face or slice
/// counts. Mipmaps that a DDS file counts but does not hold are left out; any other file that does not hold
/// all that its header claims is an error. No memory is taken for what the file cannot fill.
ImageResult loadImage(const std::filesystem::path& path);
ImageResult decodeImage(std::span<const std::byte> file);

/// One level, below info.MipLevels, as R, G, B, A bytes, top row first.
std::vector<uint8_t> imagePixels(const Image& image, uint32_t level);

/// A text that a PNG carries: key of at most 79 bytes and value, both Latin-1, neither empty.
struct PngText {
  std::string key, value;
};

/// Writes R, G, B, A bytes, top row first, as a PNG in memory, without alpha when all pixels are opaque;
/// empty when that fails.
std::vector<std::byte> encodePng(std::span<const uint8_t> pixels, uint32_t width, uint32_t height,
                                 std::span<const PngText> texts = {});

/// Decodes each picture file once for all the models of a batch, which may share it on several threads. The
/// pictures used longest ago are dropped when there are too many bytes of them; whether a file can be read at
/// all stays known. A file that changes meanwhile is not read again.
class ImageCache {
 public:
  explicit ImageCache(uint64_t mostBytes = 256 << 20) : mostBytes_(mostBytes) {}

  ImageResult image(const std::string& path);

  /// The reason why the file holds no picture, or an empty text.
  std::string whyNoPicture(const std::string& path);

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
