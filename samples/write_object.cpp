#include <compare>
#include <map>
#include <span>

#include "bytes.h"
#include "writers.h"

namespace facet::sample {

namespace {

/// Numbers values in the order of their first appearance.
template <class T>
class Numbering {
 public:
  uint32_t numberOf(const T& value) {
    auto [place, isNew] = numbers_.try_emplace(value, uint32_t(values.size()));
    if (isNew) values.push_back(value);
    return place->second;
  }
  std::vector<T> values;

 private:
  std::map<T, uint32_t> numbers_;
};

struct Point {
  float x, y, z;
  auto operator<=>(const Point&) const = default;
};

struct MapEntry {
  float u, v;
  auto operator<=>(const MapEntry&) const = default;
};

/// A corner of faces: a point and its place on the texture.
struct Reference {
  uint32_t point, entry;
  auto operator<=>(const Reference&) const = default;
};

/// The meshes of one group as points, references and faces that share them.
struct ObjectMesh {
  Numbering<Point> points;
  Numbering<MapEntry> entries;
  Numbering<Reference> references;
  std::vector<uint32_t> corners;     ///< reference of each corner, three for a face
  std::vector<uint32_t> faceCounts;  ///< faces of each mesh of the group
};

ObjectMesh shareCorners(std::span<const SampleMesh> group) {
  ObjectMesh object;
  for (const SampleMesh& mesh : group) {
    for (uint16_t index : mesh.indices) {
      const SampleVertex& vertex = mesh.vertices[index];
      uint32_t point = object.points.numberOf({vertex.position.x, vertex.position.y, vertex.position.z});
      uint32_t entry = object.entries.numberOf({vertex.u, vertex.v});
      object.corners.push_back(object.references.numberOf({point, entry}));
    }
    object.faceCounts.push_back(uint32_t(mesh.indices.size() / 3));
  }
  return object;
}

Bytes pointChunk(const ObjectMesh& object) {
  Bytes data;
  data.u32(uint32_t(object.points.values.size()));
  for (const Point& point : object.points.values) data.vec3({point.x, point.y, point.z});
  return data;
}

Bytes faceChunk(const ObjectMesh& object) {
  Bytes data;
  data.u32(uint32_t(object.corners.size() / 3));
  for (uint32_t reference : object.corners) {
    data.u32(object.references.values[reference].point);
    data.u32(reference);
  }
  return data;
}

Bytes referenceChunk(const ObjectMesh& object) {
  Bytes data;
  data.u32(uint32_t(object.references.values.size()));
  for (const Reference& reference : object.references.values) {
    data.u8(1);  // one pair: map 0 and the entry in it
    data.u32(0);
    data.u32(reference.entry);
  }
  return data;
}

Bytes surfaceFaceChunk(std::span<const SampleMesh> group, const ObjectMesh& object) {
  Bytes data;
  data.u16(uint32_t(group.size()));
  uint32_t face = 0;
  for (size_t i = 0; i < group.size(); ++i) {
    data.text(group[i].name);
    data.u32(object.faceCounts[i]);
    for (uint32_t end = face + object.faceCounts[i]; face < end; ++face) data.u32(face);
  }
  return data;
}

// One map of texture coordinates; the point numbers after its entries are left zero.
Bytes mapChunk(const ObjectMesh& object) {
  Bytes data;
  data.u32(1);
  data.text("Texture");
  data.u8(2);
  data.u8(0);
  data.u8(0);
  data.u32(uint32_t(object.entries.values.size()));
  for (const MapEntry& entry : object.entries.values) {
    data.f32(entry.u);
    data.f32(entry.v);
  }
  data.zeros(object.entries.values.size() * 4);
  return data;
}

Bytes objectMesh(std::span<const SampleMesh> group) {
  ObjectMesh object = shareCorners(group);
  Bytes data, box;
  box.zeros(24);
  data.chunk(0x1004, box);
  data.chunk(0x1005, pointChunk(object));
  data.chunk(0x1006, faceChunk(object));
  data.chunk(0x1008, referenceChunk(object));
  data.chunk(0x1009, surfaceFaceChunk(group, object));
  data.chunk(0x1012, mapChunk(object));
  return data;
}

Bytes surfaceChunk(const Scene& scene) {
  Bytes data;
  data.u32(uint32_t(scene.meshes.size()));
  for (const SampleMesh& mesh : scene.meshes) {
    const SampleMaterial& material = scene.materials[mesh.material];
    data.text(mesh.name);
    data.text(material.shader);
    data.text("default");
    data.text("default_object");
    data.text(material.texture);
    data.text("Texture");
    data.zeros(12);
  }
  return data;
}

}  // namespace

void writeObject(const Scene& scene, const std::filesystem::path& path) {
  Bytes objects, data, file;
  uint32_t child = 0;
  for (std::span<const SampleMesh> group : meshGroups(scene)) objects.chunk(child++, objectMesh(group));
  data.chunk(0x910, objects);
  data.chunk(0x907, surfaceChunk(scene));
  file.chunk(0x7777, data);
  writeFile(path, file.content());
}

}  // namespace facet::sample
