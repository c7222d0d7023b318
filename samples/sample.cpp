#include "sample.h"

#include <algorithm>
#include <stdexcept>

#include "paint.h"
#include "platform/output.h"
#include "scene.h"

namespace facet::sample {

namespace {

namespace fs = std::filesystem;
using Meshes = std::vector<BuiltMesh>;

void writeFile(const fs::path& path, std::string_view content) {
  std::error_code failure;
  fs::create_directories(path.parent_path(), failure);
  OutputFile file(path);
  file.write(content);
  if (!file.commit()) throw std::runtime_error(path.string() + ": " + file.error());
}

// Formats that keep no folders in their texture names need each texture folder as a base path of its own.
ByteWriter configuration() {
  ByteWriter list;
  for (const char* folder : {"", "Terrain\\", "Build\\", "Nature\\", "Props\\", "Effects\\"})
    list.text(std::string("gamedata\\textures\\") + folder);
  return list.zeros(1);
}

// The vertex formats in turn, but for large meshes the one that takes the least room.
std::vector<uint32_t> formatsFor(const Meshes& meshes, const std::vector<uint32_t>& inTurn) {
  std::vector<uint32_t> formats;
  for (const BuiltMesh& mesh : meshes)
    formats.push_back(mesh.vertices.size() > 300 ? 0x112 : inTurn[formats.size() % inTurn.size()]);
  return formats;
}

// An object mesh for each mesh, with a surface of its own.
ByteWriter objectOf(const Scene& scene) {
  std::vector<ObjectMesh> meshes;
  std::vector<ObjectSurface> surfaces;
  for (const SampleMesh& mesh : scene.meshes) {
    meshes.push_back(objectMesh(mesh, mesh.name));
    surfaces.push_back({mesh.name, mesh.shader, mesh.texture});
  }
  return objectFile(meshes, surfaces);
}

// What Orion and DS2MD files hold.
Meshes inHundredths(Meshes meshes) {
  for (BuiltMesh& mesh : meshes) {
    for (BuiltVertex& v : mesh.vertices) {
      v.x *= 100;
      v.y *= 100;
      v.z *= 100;
    }
  }
  return meshes;
}

// The format holds one mesh with one texture; front faces wind the other way in it.
ByteWriter orionOf(const BuiltMesh& mesh) {
  BuiltMesh scaled = inHundredths({mesh})[0];
  std::ranges::reverse(scaled.indices);
  return orionFile(scaled, std::string(8, '\0') + mesh.texture + ".dds" + '\0');
}

// Whether all values fit the 16 bits that packed vertices have for them.
bool fitsPacked(const Meshes& meshes) {
  return std::ranges::all_of(joined(meshes).vertices, [](const BuiltVertex& v) {
    return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z), std::abs(v.u), std::abs(v.v)}) < 12;
  });
}

// A file for each group of meshes, and the list that names them. The folder has to be called "dynamic".
void write4a(const Scene& scene, const fs::path& folder) {
  std::string names;
  for (auto mesh = scene.meshes.begin(); mesh != scene.meshes.end();) {
    const std::string& group = mesh->group;
    Meshes meshes;
    while (mesh != scene.meshes.end() && mesh->group == group) meshes.push_back(*mesh++);
    writeFile(folder / "lighthouse" / (group + ".mesh"), model4aMeshFile(meshes, fitsPacked(meshes)).bytes());
    names += (names.empty() ? "" : ",") + ("dynamic\\lighthouse\\" + group);
  }
  writeFile(folder / "lighthouse.model", model4aListFile(names).bytes());
}

}  // namespace

void writeSampleModels(const fs::path& folder) {
  Scene scene = makeScene();
  Meshes all(scene.meshes.begin(), scene.meshes.end()), boats;
  std::ranges::copy_if(scene.meshes, std::back_inserter(boats),
                       [](const SampleMesh& mesh) { return mesh.group == "boats"; });
  const struct {
    const char* name;
    ByteWriter file;
  } files[] = {
      {"VXMViewer.cfg", configuration()},
      {"lighthouse.vxm", vxmHierarchy(4, all, formatsFor(all, {1, 0x112, 2, 3, 4, 0x12071980, 0x240E3300}))},
      {"lighthouse_v3.vxm", vxmHierarchy(3, all, formatsFor(all, {1, 0x112, 0x12071980, 0x240E3300}))},
      {"lighthouse.object", objectOf(scene)},
      {"lighthouse.msh", orionOf(scene["tower"])},
      {"lighthouse.ds2md", ds2mdFile("0.5", inHundredths(all))},
      {"boats_06.ds2md", ds2mdFile("0.6", inHundredths(boats))},
  };
  for (const auto& [name, file] : files) writeFile(folder / name, file.bytes());
  write4a(scene, folder / "meshes" / "dynamic");
}

void writeSampleTextures(const fs::path& folder) {
  paintTextures([&](const char* file, const std::string& bytes) {
    writeFile(folder / "gamedata" / "textures" / file, bytes);
  });
}

}  // namespace facet::sample
