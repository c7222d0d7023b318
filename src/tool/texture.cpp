#include <nlohmann/json.hpp>

#include "picture/image.h"
#include "platform/text.h"
#include "tool/batch.h"
#include "tool/console.h"

namespace facet {

namespace {

using Json = nlohmann::ordered_json;

struct PictureOptions {
  std::vector<std::string> files;
  bool json = false;
  std::string output;  ///< PNG to write the one file's first level to, empty for none
};

std::string describe(const std::string& path, const D3DXIMAGE_INFO& info) {
  return path + ": " + std::to_string(info.Width) + " x " + std::to_string(info.Height) + ", " +
         formatName(info.Format) + ", " + std::to_string(info.MipLevels) +
         (info.MipLevels == 1 ? " level\n" : " levels\n");
}

bool tell(const std::string& path, const PictureOptions& options) {
  const ImageResult result = loadImage(path);
  Json document = {{"path", utf8FromPath(path)}};
  if (!result.image) {
    document["error"] = result.error;
    if (options.json) printOut(document.dump() + "\n");
    report(path, result.error);
    return false;
  }
  const D3DXIMAGE_INFO& info = result.image->info;
  document["width"] = info.Width;
  document["height"] = info.Height;
  document["format"] = formatName(info.Format);
  document["mipCount"] = info.MipLevels;
  if (options.output != standardOutput)
    printOut(options.json ? document.dump() + "\n" : describe(path, info));
  if (options.output.empty()) return true;
  const std::string reason = writePng(imagePixels(*result.image, 0), info.Width, info.Height, options.output);
  if (!reason.empty()) report(options.output, reason);
  return reason.empty();
}

int runTexture(const PictureOptions& options) {
  if (!options.output.empty()) {
    std::string reason = pictureNameRefusal(options.output);
    if (options.files.size() != 1) reason = "-o takes one picture";
    if (reason.empty()) reason = overwritten(options.files, {&options.output, 1});
    if (!reason.empty()) return usageError("texture", reason);
  }
  bool allWell = true;
  for (const std::string& path : options.files) allWell = tell(path, options) && allWell;
  return allWell ? exitSuccess : exitFailure;
}

}  // namespace

RunCommand setUpTexture(CLI::App& app) {
  const auto options = std::make_shared<PictureOptions>();
  app.add_option("files", options->files, "DDS, TGA, PNG and BMP files")->required()->type_name("FILE");
  app.add_flag("--json", options->json, "one JSON document a line for each file");
  app.add_option("-o,--output", options->output,
                 "write the first level of the one file as a PNG, - is standard output")
      ->type_name("OUT.png");
  return [options] { return runTexture(*options); };
}

}  // namespace facet
