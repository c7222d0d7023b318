#include <array>
#include <bit>
#include <string>

#include "export/binary_blocks.h"
#include "export/export.h"
#include "export/mesh_text.h"
#include "export/text.h"

// MilkShape 3D, version 4. The z axis is mirrored, and the second and third corner of each triangle change
// places so that faces still look outward. Vertex and triangle numbers run through the whole file.

namespace facet {

namespace {

constexpr size_t nameWidth = 32, textureWidth = 128;

void putVertices(const Model& model, BinaryBlocks& file) {
  constexpr uint8_t flags = 0, references = 0;
  constexpr int8_t noBone = -1;
  for (const Mesh& mesh : model.meshes) {
    for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
      const Vertex& v = mesh.vertices[i];
      file.put(flags, v.x, v.y, -v.z, noBone, references);
    }
  }
}

Vector3 mirrored(const Vector3& normal) {
  return {normal.x, normal.y, -normal.z};
}

void putTriangles(const Model& model, BinaryBlocks& file) {
  constexpr uint16_t flags = 0;
  constexpr uint8_t smoothing = 0;
  uint32_t base = 0;
  for (uint32_t m = 0; m < model.meshCount; ++m) {
    const Mesh& mesh = model.meshes[m];
    const auto number = [&](uint16_t index) { return static_cast<uint16_t>(base + index); };
    forTriangles(
        mesh, 0, triangleCount(mesh), [&](uint32_t, uint16_t indexA, uint16_t indexB, uint16_t indexC) {
          const Corner a = cornerAt(mesh, indexA), b = cornerAt(mesh, indexB), c = cornerAt(mesh, indexC);
          file.put(flags, number(indexA), number(indexC), number(indexB),       //
                   mirrored(a.normal), mirrored(c.normal), mirrored(b.normal),  //
                   a.vertex.u, c.vertex.u, b.vertex.u,                          //
                   a.vertex.v, c.vertex.v, b.vertex.v,                          //
                   smoothing, static_cast<uint8_t>(m));
        });
    base += mesh.vertexCount;
  }
}

void putGroups(const Model& model, BinaryBlocks& file) {
  constexpr uint8_t flags = 0;
  uint32_t triangle = 0;
  TextBuffer name;
  for (uint32_t m = 0; m < model.meshCount; ++m) {
    const uint32_t end = triangle + triangleCount(model.meshes[m]);
    name.clear();
    name.put("Mesh", Padded{m, 5});
    file.put(flags);
    file.putName(name.view(), nameWidth);
    file.put(static_cast<uint16_t>(end - triangle));
    for (; triangle < end; ++triangle) file.put(static_cast<uint16_t>(triangle));
    file.put(static_cast<uint8_t>(model.meshes[m].materialIndex));
  }
}

void putMaterials(const Model& model, BinaryBlocks& file) {
  constexpr std::array<float, 4> ambient{0.3F, 0.3F, 0.3F, 0}, diffuse{1, 1, 1, 0}, specular{}, emissive{};
  constexpr float shininess = 0, opacity = 1;
  constexpr uint8_t mode = 0;
  const auto materials = ownMaterials(model);
  TextBuffer name;
  for (uint32_t i = 0; i < materials.size(); ++i) {
    name.clear();
    name.put("Material", Padded{i, 3});
    file.putName(name.view(), nameWidth);
    file.put(ambient, diffuse, specular, emissive, shininess, opacity, mode);
    file.putName(materials[i].textureName, textureWidth);
    file.putZeros(textureWidth);  // alpha map
  }
}

}  // namespace

std::string refuseMs3d(const Model& model) {
  constexpr uint32_t largestCount = 65534;
  const auto refusal = [](uint64_t count, std::string_view noun, uint32_t limit) {
    return "the format holds at most " + std::to_string(limit) + ' ' + std::string(noun) +
           ", the model has " + std::to_string(count);
  };
  if (model.totalVertices > largestCount) return refusal(model.totalVertices, "vertices", largestCount);
  if (model.totalIndices / 3 > largestCount)
    return refusal(model.totalIndices / 3, "triangles", largestCount);
  if (model.meshCount > UINT16_MAX) return refusal(model.meshCount, "meshes", UINT16_MAX);
  if (ownMaterials(model).size() > UINT16_MAX)
    return refusal(ownMaterials(model).size(), "materials", UINT16_MAX);
  return {};
}

void exportMs3d(Model& model, std::string_view, Output& out) {
  constexpr int32_t version = 4, frames = 30;
  constexpr float framesPerSecond = 30, currentTime = 0;
  constexpr uint16_t joints = 0;
  BinaryBlocks file(out);
  file.putBytes("MS3D000000");
  file.put(version, static_cast<uint16_t>(model.totalVertices));
  putVertices(model, file);
  file.put(static_cast<uint16_t>(model.totalIndices / 3));
  putTriangles(model, file);
  file.put(static_cast<uint16_t>(model.meshCount));
  putGroups(model, file);
  file.put(static_cast<uint16_t>(ownMaterials(model).size()));
  putMaterials(model, file);
  file.put(framesPerSecond, currentTime, frames, joints);
  file.finish();
}

}  // namespace facet
