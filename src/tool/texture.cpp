#include "tool/texture.h"

#include <nlohmann/json.hpp>

#include "picture/image.h"
#include "platform/output.h"
#include "platform/text.h"
#include "tool/console.h"

namespace facet {

namespace {

using Json = nlohmann::ordered_json;

/// Writes the first level as a PNG; the reason where that fails.
std::string writePng(const Image& image, const std::string& path) {
  const ImageLevel& level = image.levels.front();
  const auto png = encodePng(imagePixels(image, 0), level.width, level.height);
  if (png.empty()) return "cannot make a PNG of it";
  OutputFile file(path);
  file.write({reinterpret_cast<const char*>(png.data()), png.size()});
  return file.commit() ? std::string() : file.error();
}

std::string describe(const std::string& path, const D3DXIMAGE_INFO& info) {
  return path + ": " + std::to_string(info.Width) + " x " + std::to_string(info.Height) + ", " +
         formatName(info.Format) + ", " + std::to_string(info.MipLevels) +
         (info.MipLevels == 1 ? " level\n" : " levels\n");
}

bool tell(const std::string& path, const TextureOptions& options) {
  const ImageResult result = loadImage(path);
  Json document = {{"path", utf8FromPath(path)}};
  if (!result.image) {
    document["error"] = result.error;
    if (options.json) printOut(document.dump() + "\n");
    reportFailure(path, result.error);
    return false;
  }
  const D3DXIMAGE_INFO& info = result.image->info;
  document["width"] = info.Width;
  document["height"] = info.Height;
  document["format"] = formatName(info.Format);
  document["mipCount"] = info.MipLevels;
  printOut(options.json ? document.dump() + "\n" : describe(path, info));
  if (options.output.empty()) return true;
  const std::string reason = writePng(*result.image, options.output);
  if (!reason.empty()) reportFailure(options.output, reason);
  return reason.empty();
}

}  // namespace

int runTexture(const TextureOptions& options) {
  bool allWell = true;
  for (const std::string& path : options.files) allWell = tell(path, options) && allWell;
  return allWell ? exitSuccess : exitFailure;
}

}  // namespace facet
