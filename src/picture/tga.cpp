#include <algorithm>

#include "picture/decoders.h"

namespace facet {
namespace {

constexpr size_t headerEnd = 18;

enum Kind : uint8_t { paletted = 1, color = 2, gray = 3 };
constexpr uint8_t runLengths = 8;        // added to the kind
constexpr uint8_t rightToLeft = 0x10;    // in the descriptor
constexpr uint8_t attributeBits = 0x0F;  // in the descriptor

struct Header {
  uint8_t idLength, mapKind, kind;
  bool packed;
  uint16_t mapStart, mapLength;
  uint8_t mapBits;
  uint16_t width, height;
  uint8_t bits, descriptor;

  uint64_t mapBytes() const { return mapKind ? mapLength * ((mapBits + 7u) / 8) : 0; }
  uint64_t dataStart() const { return headerEnd + idLength + mapBytes(); }
  uint64_t pixelBytes() const { return (bits + 7u) / 8; }
  uint64_t pixels() const { return uint64_t{width} * height; }
};

Header readHeader(Bytes file) {
  const auto kind = valueAt<uint8_t>(file, 2);
  return {.idLength = valueAt<uint8_t>(file, 0),
          .mapKind = valueAt<uint8_t>(file, 1),
          .kind = static_cast<uint8_t>(kind & ~runLengths),
          .packed = (kind & runLengths) != 0,
          .mapStart = valueAt<uint16_t>(file, 3),
          .mapLength = valueAt<uint16_t>(file, 5),
          .mapBits = valueAt<uint8_t>(file, 7),
          .width = valueAt<uint16_t>(file, 12),
          .height = valueAt<uint16_t>(file, 14),
          .bits = valueAt<uint8_t>(file, 16),
          .descriptor = valueAt<uint8_t>(file, 17)};
}

bool isOneOf(uint8_t value, std::initializer_list<uint8_t> values) {
  return std::ranges::count(values, value) > 0;
}

bool makesSense(const Header& header) {
  if (header.kind == paletted)
    return header.mapKind == 1 && isOneOf(header.bits, {8, 16}) && isOneOf(header.mapBits, {15, 16, 24, 32});
  if (header.kind == color) return header.mapKind == 0 && isOneOf(header.bits, {15, 16, 24, 32});
  return header.kind == gray && header.mapKind == 0 && isOneOf(header.bits, {8, 16});
}

/// Bytes that the pixels take in the file. Runs are followed up to the last pixel or the end of the data; the
/// sum is beyond the end when they are cut.
uint64_t dataBytes(const Header& header, Bytes data) {
  if (!header.packed) return header.pixels() * header.pixelBytes();
  uint64_t position = 0;
  for (uint64_t pixels = 0; pixels < header.pixels();) {
    if (position >= data.size()) return position + 1;
    const auto packet = std::to_integer<uint32_t>(data[position]);
    const uint64_t count = (packet & 127) + 1;
    position += 1 + header.pixelBytes() * (packet & 128 ? 1 : std::min(count, header.pixels() - pixels));
    pixels += count;
  }
  return position;
}

std::string headerError(const Header& header, Bytes file) {
  if (std::string error = sizeError("TGA", header.width, header.height); !error.empty()) return error;
  if (header.pixels() > maximumPackedPixels) return "TGA picture has too many pixels";
  if (header.kind == paletted && (header.mapLength == 0 || header.mapStart != 0))
    return "TGA palette that is empty or does not begin with colour 0";
  if (file.size() < header.dataStart()) return tooShort("TGA file", file.size(), header.dataStart());
  const Bytes data = file.subspan(header.dataStart());
  const uint64_t needed = dataBytes(header, data);
  return data.size() < needed ? tooShort("TGA picture", data.size(), needed) : "";
}

void mirrorRows(std::vector<std::byte>& rgba, size_t width) {
  for (size_t row = 0; row < rgba.size(); row += width * 4)
    for (size_t left = 0, right = width - 1; left < right; ++left, --right)
      std::swap_ranges(&rgba[row + left * 4], &rgba[row + left * 4] + 4, &rgba[row + right * 4]);
}

}  // namespace

bool isTga(Bytes file) {
  return file.size() >= headerEnd && makesSense(readHeader(file));
}

ImageResult decodeTga(Bytes file) {
  const Header header = readHeader(file);
  if (std::string error = headerError(header, file); !error.empty()) return {nullptr, error};
  std::vector<std::byte> rgba = decodeByStb(file, header.width, header.height);
  if (rgba.empty()) return {nullptr, "TGA picture of a kind that is not read"};
  if (header.descriptor & rightToLeft) mirrorRows(rgba, header.width);

  const bool graySpare = header.kind == gray && header.bits == 16;
  bool alpha = graySpare || (header.kind == paletted ? header.mapBits : header.bits) == 32;
  // Writers that know no alpha say so, and leave its byte at 0 or unset.
  if (alpha && !(header.descriptor & attributeBits) && alphaIsZero(rgba)) alpha = false;
  return pictureOfRgba(D3DXIFF_TGA, header.width, header.height, alpha, std::move(rgba));
}

}  // namespace facet
