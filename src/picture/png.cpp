#include <spng.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "picture/decoders.h"

namespace facet {
namespace {

using Context = std::unique_ptr<spng_ctx, void (*)(spng_ctx*)>;

/// Deflate packs at most about 1032 bytes into one.
constexpr uint64_t deflateLimit = 1032;
constexpr size_t chunkLimit = 16u << 20;

ImageResult failure(int code) {
  return {nullptr, std::string("PNG file: ") + spng_strerror(code)};
}

uint64_t bitsPerPixel(const spng_ihdr& header) {
  if (header.color_type == SPNG_COLOR_TYPE_TRUECOLOR) return uint64_t{header.bit_depth} * 3;
  if (header.color_type == SPNG_COLOR_TYPE_GRAYSCALE_ALPHA) return uint64_t{header.bit_depth} * 2;
  return uint64_t{header.bit_depth} * (header.color_type == SPNG_COLOR_TYPE_TRUECOLOR_ALPHA ? 4 : 1);
}

bool hasAlpha(spng_ctx* context, const spng_ihdr& header) {
  spng_trns transparency;
  return header.color_type == SPNG_COLOR_TYPE_GRAYSCALE_ALPHA ||
         header.color_type == SPNG_COLOR_TYPE_TRUECOLOR_ALPHA ||
         spng_get_trns(context, &transparency) == SPNG_OK;
}

/// Why the header's picture cannot be in a file of this size; empty when it can.
std::string headerError(const spng_ihdr& header, uint64_t fileSize) {
  if (std::string error = sizeError("PNG", header.width, header.height); !error.empty()) return error;
  if (uint64_t{header.width} * header.height > maximumPackedPixels) return "PNG picture has too many pixels";
  const uint64_t unpacked = header.height * ((header.width * bitsPerPixel(header) + 7) / 8);
  return unpacked / deflateLimit > fileSize ? tooShort("PNG file", fileSize, unpacked / deflateLimit) : "";
}

}  // namespace

ImageResult decodePng(Bytes file) {
  const Context context(spng_ctx_new(0), spng_ctx_free);
  if (!context) return failure(SPNG_EMEM);
  spng_set_chunk_limits(context.get(), chunkLimit, chunkLimit);
  spng_set_crc_action(context.get(), SPNG_CRC_ERROR, SPNG_CRC_DISCARD);
  if (const int code = spng_set_png_buffer(context.get(), file.data(), file.size())) return failure(code);

  spng_ihdr header;
  if (const int code = spng_get_ihdr(context.get(), &header)) return failure(code);
  if (std::string error = headerError(header, file.size()); !error.empty()) return {nullptr, error};

  std::vector<std::byte> rgba(size_t{header.width} * header.height * 4);
  const int code =
      spng_decode_image(context.get(), rgba.data(), rgba.size(), SPNG_FMT_RGBA8, SPNG_DECODE_TRNS);
  if (code) return failure(code);
  const bool alpha = hasAlpha(context.get(), header);
  return pictureOfRgba(D3DXIFF_PNG, header.width, header.height, alpha, std::move(rgba));
}

namespace {

/// The pixels without their alpha bytes; empty when one of them counts.
std::vector<uint8_t> opaquePixels(std::span<const uint8_t> rgba) {
  std::vector<uint8_t> rgb(rgba.size() / 4 * 3);
  for (size_t from = 0, to = 0; from < rgba.size(); from += 4, to += 3) {
    if (rgba[from + 3] != 255) return {};
    std::copy_n(&rgba[from], 3, &rgb[to]);
  }
  return rgb;
}

/// False for a text that a PNG cannot hold.
bool setTexts(spng_ctx* context, std::span<const PngText> texts) {
  std::vector<spng_text> chunks;
  for (const PngText& text : texts) {
    spng_text& chunk = chunks.emplace_back();
    if (text.key.size() >= sizeof chunk.keyword) return false;
    std::ranges::copy(text.key, chunk.keyword);
    chunk.type = SPNG_TEXT;
    chunk.length = text.value.size();
    chunk.text = const_cast<char*>(text.value.data());  // spng only reads it
  }
  return chunks.empty() ||
         spng_set_text(context, chunks.data(), static_cast<uint32_t>(chunks.size())) == SPNG_OK;
}

}  // namespace

std::vector<std::byte> encodePng(std::span<const uint8_t> pixels, uint32_t width, uint32_t height,
                                 std::span<const PngText> texts) {
  if (pixels.size() != uint64_t{width} * height * 4) return {};
  const Context context(spng_ctx_new(SPNG_CTX_ENCODER), spng_ctx_free);
  if (!context) return {};
  const std::vector<uint8_t> rgb = opaquePixels(pixels);
  const uint8_t kind = rgb.empty() ? SPNG_COLOR_TYPE_TRUECOLOR_ALPHA : SPNG_COLOR_TYPE_TRUECOLOR;
  if (!rgb.empty()) pixels = rgb;
  spng_ihdr header{width, height, 8, kind, 0, 0, SPNG_INTERLACE_NONE};
  spng_set_ihdr(context.get(), &header);
  if (!setTexts(context.get(), texts)) return {};
  spng_set_option(context.get(), SPNG_ENCODE_TO_BUFFER, 1);
  // Drawn pictures are flat: one cheap filter packs them nearly as well as a search and in a fraction of the
  // time.
  spng_set_option(context.get(), SPNG_FILTER_CHOICE, SPNG_FILTER_CHOICE_SUB);
  spng_set_option(context.get(), SPNG_IMG_COMPRESSION_LEVEL, 1);
  if (spng_encode_image(context.get(), pixels.data(), pixels.size(), SPNG_FMT_PNG, SPNG_ENCODE_FINALIZE))
    return {};

  size_t size = 0;
  int code = 0;
  const std::unique_ptr<void, void (*)(void*)> file(spng_get_png_buffer(context.get(), &size, &code),
                                                    std::free);
  if (!file || code) return {};
  const auto* bytes = static_cast<const std::byte*>(file.get());
  return {bytes, bytes + size};
}

}  // namespace facet
