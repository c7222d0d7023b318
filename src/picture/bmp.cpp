#include <algorithm>

#include "picture/decoders.h"

namespace facet {
namespace {

constexpr size_t fileHeaderEnd = 14;
constexpr uint32_t coreHeader = 12, infoHeader = 40, version4Header = 108;
constexpr uint32_t maskCompression = 3;

struct Header {
  uint32_t dataStart, size;
  int64_t width, height;  // the height below 0: top row first
  uint32_t bits, compression, alphaMask, colors;

  uint64_t rows() const { return static_cast<uint64_t>(height < 0 ? -height : height); }
  uint64_t rowBytes() const { return (static_cast<uint64_t>(width) * bits + 7) / 8; }
  uint64_t rowPitch() const { return (rowBytes() + 3) / 4 * 4; }
  bool paletted() const { return bits <= 8; }
};

/// Reads the header fields; the caller knows that the file holds a header of its size.
Header readHeader(Bytes file, uint32_t size) {
  Header header{};
  header.dataStart = valueAt<uint32_t>(file, 10);
  header.size = size;
  if (size == coreHeader) {
    header.width = valueAt<uint16_t>(file, 18);
    header.height = valueAt<uint16_t>(file, 20);
    header.bits = valueAt<uint16_t>(file, 24);
    return header;
  }
  header.width = valueAt<int32_t>(file, 18);
  header.height = valueAt<int32_t>(file, 22);
  header.bits = valueAt<uint16_t>(file, 28);
  header.compression = valueAt<uint32_t>(file, 30);
  header.colors = valueAt<uint32_t>(file, 46);
  if (size >= version4Header && header.compression == maskCompression)
    header.alphaMask = valueAt<uint32_t>(file, 66);
  return header;
}

std::string headerError(const Header& header, Bytes file) {
  const uint64_t width = header.width < 0 ? 0 : static_cast<uint64_t>(header.width);
  if (std::string error = sizeError("BMP", width, header.rows()); !error.empty()) return error;
  if (header.compression != 0 && header.compression != maskCompression)
    return "run-length coded or otherwise packed BMP pixels are not read; save it without compression";
  if (std::ranges::count(std::initializer_list<uint32_t>{1, 4, 8, 16, 24, 32}, header.bits) == 0)
    return "BMP pixels of " + std::to_string(header.bits) + " bits are not read";
  if (header.dataStart < fileHeaderEnd + header.size || header.dataStart > file.size()) {
    return "BMP pixels begin at byte " + std::to_string(header.dataStart) + " of " +
           std::to_string(file.size());
  }
  const uint64_t held = file.size() - header.dataStart;
  const uint64_t needed = (header.rows() - 1) * header.rowPitch() + header.rowBytes();
  return held < needed ? tooShort("BMP picture", held, needed) : "";
}

/// A copy whose palette has all 256 entries, for the decoder takes the file's word that no index lies beyond.
std::vector<std::byte> withFullPalette(const Header& header, Bytes file) {
  constexpr size_t paletteStart = fileHeaderEnd + infoHeader;
  constexpr auto dataStart = static_cast<uint32_t>(paletteStart + size_t{256} * 4);
  const Bytes data = file.subspan(header.dataStart);
  std::vector<std::byte> copy(dataStart + data.size());
  const auto put = [&](size_t offset, auto value) { std::memcpy(&copy[offset], &value, sizeof value); };
  std::copy_n(file.begin(), 2, copy.begin());
  put(10, dataStart);
  put(14, infoHeader);
  put(18, static_cast<int32_t>(header.width));
  put(22, static_cast<int32_t>(header.height));
  put(26, uint16_t{1});
  put(28, static_cast<uint16_t>(header.bits));

  const size_t entryBytes = header.size == coreHeader ? 3 : 4;
  const size_t held = (header.dataStart - fileHeaderEnd - header.size) / entryBytes;
  const size_t stated = header.colors ? header.colors : 256;
  for (size_t i = 0; i < std::min({held, stated, size_t{256}}); ++i)
    std::copy_n(&file[fileHeaderEnd + header.size + i * entryBytes], entryBytes, &copy[paletteStart + i * 4]);
  std::ranges::copy(data, copy.begin() + dataStart);
  return copy;
}

}  // namespace

ImageResult decodeBmp(Bytes file) {
  const size_t sizeEnd = fileHeaderEnd + 4;
  if (file.size() < sizeEnd) return {nullptr, tooShort("BMP header", file.size(), sizeEnd)};
  const auto size = valueAt<uint32_t>(file, fileHeaderEnd);
  if (size != coreHeader && (size < infoHeader || size > 1024))
    return {nullptr, "BMP header of " + std::to_string(size) + " bytes is not known"};
  if (file.size() < fileHeaderEnd + size)
    return {nullptr, tooShort("BMP header", file.size(), fileHeaderEnd + size)};
  const Header header = readHeader(file, size);
  if (std::string error = headerError(header, file); !error.empty()) return {nullptr, error};

  const auto width = static_cast<uint32_t>(header.width), height = static_cast<uint32_t>(header.rows());
  std::vector<std::byte> rgba = header.paletted() ? decodeByStb(withFullPalette(header, file), width, height)
                                                  : decodeByStb(file, width, height);
  if (rgba.empty()) return {nullptr, "BMP picture of a kind that is not read"};
  return pictureOfRgba(D3DXIFF_BMP, width, height, header.alphaMask != 0, std::move(rgba));
}

}  // namespace facet
