#include <algorithm>

#include "picture/decoders.h"

namespace facet {
namespace {

constexpr uint32_t headerSize = 124, pixelFormatSize = 32;
constexpr size_t headerEnd = 128, dx10HeaderEnd = 148, paletteBytes = 1024;
constexpr uint32_t dx10 = 0x30315844;
constexpr uint32_t volumeCaps = 0x200000;

enum PixelFlags : uint32_t {
  alphaPixels = 0x1,
  alphaOnly = 0x2,
  fourCc = 0x4,
  paletteIndexed8 = 0x20,
  rgb = 0x40,
  luminance = 0x20000,
};

struct Header {
  uint32_t width, height, depth, mipCount;
  uint32_t flags, code, bits, r, g, b, a;  // of the pixel format
};

/// DXGI formats that lie in memory like one of Direct3D 9's; sRGB ones count like their plain brothers.
struct DxgiFormat {
  uint32_t code;
  D3DFORMAT format;
};
constexpr DxgiFormat dxgiFormats[] = {
    {28, D3DFMT_A8B8G8R8}, {29, D3DFMT_A8B8G8R8}, {65, D3DFMT_A8},       {71, D3DFMT_DXT1},
    {72, D3DFMT_DXT1},     {74, D3DFMT_DXT3},     {75, D3DFMT_DXT3},     {77, D3DFMT_DXT5},
    {78, D3DFMT_DXT5},     {85, D3DFMT_R5G6B5},   {86, D3DFMT_A1R5G5B5}, {87, D3DFMT_A8R8G8B8},
    {88, D3DFMT_X8R8G8B8}, {91, D3DFMT_A8R8G8B8}, {93, D3DFMT_X8R8G8B8}, {115, D3DFMT_A4R4G4B4},
};

Header readHeader(Bytes file) {
  const auto at = [&](size_t offset) { return valueAt<uint32_t>(file, offset); };
  const bool volume = (at(112) & volumeCaps) != 0;
  return {.width = at(16),
          .height = at(12),
          .depth = volume ? std::max(at(24), 1u) : 1,
          .mipCount = std::max(at(28), 1u),
          .flags = at(80),
          .code = at(84),
          .bits = at(88),
          .r = at(92),
          .g = at(96),
          .b = at(100),
          .a = at(104)};
}

D3DFORMAT formatOfDxgi(uint32_t code) {
  const auto* row = std::ranges::find(dxgiFormats, code, &DxgiFormat::code);
  return row == std::end(dxgiFormats) ? D3DFMT_UNKNOWN : row->format;
}

D3DFORMAT formatOfCode(uint32_t code) {
  const PixelFormat* row = findPixelFormat(static_cast<D3DFORMAT>(code));
  return row ? row->format : D3DFMT_UNKNOWN;
}

D3DFORMAT formatOfMasks(const Header& header) {
  const bool gray = (header.flags & luminance) != 0, colored = (header.flags & rgb) != 0;
  const bool withAlpha = (header.flags & (alphaPixels | alphaOnly)) != 0;
  const uint32_t a = withAlpha ? header.a : 0;
  const uint32_t r = gray || colored ? header.r : 0;
  const uint32_t g = colored ? header.g : 0, b = colored ? header.b : 0;
  for (const PixelFormat& row : pixelFormats()) {
    const bool kindFits = row.kind == (gray ? PixelFormat::luminance : PixelFormat::color);
    if (kindFits && row.bits == header.bits && row.r == r && row.g == g && row.b == b && row.a == a)
      return row.format;
  }
  return D3DFMT_UNKNOWN;
}

std::string unknownFormat(const Header& header) {
  if (header.flags & fourCc)
    return "DDS pixels of the kind " + std::to_string(header.code) + " are not known";
  return "DDS pixels of " + std::to_string(header.bits) + " bits with these masks are not known";
}

/// Cuts the levels out of the file: of each the first slice. Stops before the first that is not whole.
std::vector<ImageLevel> cutLevels(Bytes data, D3DFORMAT format, const Header& header) {
  std::vector<ImageLevel> levels;
  const uint32_t count = std::min(header.mipCount, fullLevelCount(header.width, header.height));
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t width = std::max(header.width >> i, 1u), height = std::max(header.height >> i, 1u);
    const uint64_t slice = levelBytes(format, width, height);
    const uint64_t slices = std::max(header.depth >> i, 1u);
    if (data.size() / slices < slice) break;
    levels.push_back({width, height, {data.begin(), data.begin() + static_cast<ptrdiff_t>(slice)}});
    data = data.subspan(slice * slices);
  }
  return levels;
}

/// Turns 8-bit indices, each followed by an alpha byte when `alphaBytes`, into A8R8G8B8. Palette entries are
/// R, G, B, A bytes; a palette whose alphas are all 0 knows none.
void applyPalette(ImageLevel& level, Bytes palette, bool alphaBytes) {
  const bool opaque = alphaIsZero(palette);
  const size_t stride = alphaBytes ? 2 : 1;
  std::vector<std::byte> colors(size_t{level.width} * level.height * 4);
  for (size_t i = 0; i < colors.size() / 4; ++i) {
    const std::byte* entry = palette.data() + std::to_integer<size_t>(level.bytes[i * stride]) * 4;
    colors[i * 4] = entry[2];
    colors[i * 4 + 1] = entry[1];
    colors[i * 4 + 2] = entry[0];
    colors[i * 4 + 3] = alphaBytes ? level.bytes[i * 2 + 1] : opaque ? std::byte{255} : entry[3];
  }
  level.bytes = std::move(colors);
}

ImageResult finish(const Header& header, D3DFORMAT format, std::vector<ImageLevel> levels) {
  auto image = std::make_shared<Image>();
  image->info = {.Width = header.width,
                 .Height = header.height,
                 .MipLevels = static_cast<uint32_t>(levels.size()),
                 .Format = format,
                 .ImageFileFormat = D3DXIFF_DDS};
  image->levels = std::move(levels);
  return {std::move(image), {}};
}

std::string missingLevel(Bytes data, D3DFORMAT format, const Header& header) {
  return tooShort("DDS picture", data.size(), levelBytes(format, header.width, header.height) * header.depth);
}

/// Paletted pictures become A8R8G8B8, for a texture's palette would be a state of the device.
ImageResult decodePaletted(Bytes data, const Header& header) {
  const bool alphaBytes = header.bits == 16;
  if (header.bits != 8 && !alphaBytes) return {nullptr, unknownFormat(header)};
  if (data.size() < paletteBytes) return {nullptr, tooShort("DDS palette", data.size(), paletteBytes)};
  const Bytes palette = data.first(paletteBytes), indices = data.subspan(paletteBytes);
  const D3DFORMAT layout = alphaBytes ? D3DFMT_A8L8 : D3DFMT_L8;  // lies in memory like the indices
  std::vector<ImageLevel> levels = cutLevels(indices, layout, header);
  if (levels.empty()) return {nullptr, missingLevel(indices, layout, header)};
  for (ImageLevel& level : levels) applyPalette(level, palette, alphaBytes);
  return finish(header, D3DFMT_A8R8G8B8, std::move(levels));
}

}  // namespace

ImageResult decodeDds(Bytes file) {
  if (file.size() < headerEnd) return {nullptr, tooShort("DDS header", file.size(), headerEnd)};
  if (valueAt<uint32_t>(file, 4) != headerSize || valueAt<uint32_t>(file, 76) != pixelFormatSize)
    return {nullptr, "DDS header with wrong sizes of its parts"};
  const Header header = readHeader(file);
  if (std::string error = sizeError("DDS", header.width, header.height); !error.empty())
    return {nullptr, error};
  if (header.depth > maximumPictureSide) return {nullptr, "DDS volume with too many slices"};

  Bytes data = file.subspan(headerEnd);
  D3DFORMAT format = D3DFMT_UNKNOWN;
  if (header.flags & fourCc && header.code == dx10) {
    if (file.size() < dx10HeaderEnd) return {nullptr, tooShort("DDS header", file.size(), dx10HeaderEnd)};
    format = formatOfDxgi(valueAt<uint32_t>(file, headerEnd));
    data = file.subspan(dx10HeaderEnd);
  } else if (header.flags & fourCc) {
    format = formatOfCode(header.code);
  } else if (header.flags & paletteIndexed8) {
    return decodePaletted(data, header);
  } else {
    format = formatOfMasks(header);
  }
  if (format == D3DFMT_UNKNOWN) return {nullptr, unknownFormat(header)};

  std::vector<ImageLevel> levels = cutLevels(data, format, header);
  if (levels.empty()) return {nullptr, missingLevel(data, format, header)};
  return finish(header, format, std::move(levels));
}

}  // namespace facet
