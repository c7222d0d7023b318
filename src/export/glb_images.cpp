#include "export/glb_images.h"

#include <map>
#include <string>

#include "picture/image_cache.h"
#include "platform/parallel.h"

namespace facet {

EmbeddedImages embedImages(const Model& model) {
  const auto materials = ownMaterials(model);
  const auto cache = model.images ? model.images : std::make_shared<ImageCache>();
  std::map<std::string, size_t> places;
  std::vector<const std::string*> paths;
  for (const Material& material : materials) {
    if (material.hasTexture == 0 || material.textureFile.empty()) continue;
    const auto [place, isNew] = places.try_emplace(material.textureFile, paths.size());
    if (isNew) paths.push_back(&place->first);
  }
  std::vector<std::shared_ptr<const std::vector<std::byte>>> pictures(paths.size());
  parallelFor(paths.size(), [&](size_t i) { pictures[i] = cache->png(*paths[i]); });

  EmbeddedImages images;
  std::vector<std::optional<uint32_t>> kept(paths.size());
  for (size_t i = 0; i < pictures.size(); ++i) {
    if (!pictures[i]) continue;
    kept[i] = static_cast<uint32_t>(images.files.size());
    images.files.push_back(std::move(pictures[i]));
  }
  for (const Material& material : materials) {
    const auto place = places.find(material.textureFile);
    const bool shown = material.hasTexture != 0 && place != places.end();
    images.ofMaterial.push_back(shown ? kept[place->second] : std::nullopt);
  }
  return images;
}

}  // namespace facet
