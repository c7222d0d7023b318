#include "sample.h"

#include <algorithm>

#include "bytes.h"
#include "image_write.h"
#include "writers.h"

namespace facet::sample {

namespace {

// Formats that keep no folders in their texture names need each texture folder as a base path of its own.
constexpr const char* textureFolders[] = {"", "Terrain\\", "Build\\", "Nature\\", "Props\\", "Effects\\"};

void writeConfiguration(const std::filesystem::path& path) {
  Bytes list;
  for (const char* folder : textureFolders) list.text(std::string("gamedata\\textures\\") + folder);
  list.u8(0);
  writeFile(path, list.content());
}

const SampleMesh& meshNamed(const Scene& scene, std::string_view name) {
  return *std::find_if(scene.meshes.begin(), scene.meshes.end(),
                       [&](const SampleMesh& m) { return m.name == name; });
}

Scene groupOf(const Scene& scene, std::string_view group) {
  Scene part{scene.materials, {}};
  for (const SampleMesh& mesh : scene.meshes) {
    if (mesh.group == group) part.meshes.push_back(mesh);
  }
  return part;
}

}  // namespace

void writeSampleModels(const std::filesystem::path& folder) {
  Scene scene = makeScene();
  writeConfiguration(folder / "VXMViewer.cfg");
  writeVxm4(scene, folder / "lighthouse.vxm");
  writeVxm3(scene, folder / "lighthouse_v3.vxm");
  writeObject(scene, folder / "lighthouse.object");
  write4a(scene, folder / "meshes" / "dynamic");
  writeOrion(scene, meshNamed(scene, "tower"), folder / "lighthouse.msh");
  writeDs2md(scene, folder / "lighthouse.ds2md");
  writeDs2md06(groupOf(scene, "boats"), folder / "boats_06.ds2md");
}

void writeSampleTextures(const std::filesystem::path& folder) {
  for (auto paintAll : {buildingTextures, natureTextures, propTextures, effectTextures, skyTextures}) {
    for (const SampleTexture& texture : paintAll())
      writeFile(folder / "gamedata" / "textures" / texture.file,
                encodePicture(texture.picture, texture.kind));
  }
}

}  // namespace facet::sample
