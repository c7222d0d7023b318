#include "support/format_builders.h"

#include <algorithm>
#include <cmath>

namespace facet {

namespace {

struct Bounds {
  Vector3 low{}, high{};
};

Bounds boundsOf(const BuiltMesh& mesh) {
  if (mesh.vertices.empty()) return {};
  const BuiltVertex& first = mesh.vertices.front();
  Bounds box{{first.x, first.y, first.z}, {first.x, first.y, first.z}};
  for (const BuiltVertex& v : mesh.vertices) {
    box.low = {std::min(box.low.x, v.x), std::min(box.low.y, v.y), std::min(box.low.z, v.z)};
    box.high = {std::max(box.high.x, v.x), std::max(box.high.y, v.y), std::max(box.high.z, v.z)};
  }
  return box;
}

ByteWriter chunkOf(uint32_t id, const ByteWriter& data) {
  return ByteWriter().chunk(id, data);
}

}  // namespace

BuiltMesh builtTriangle(std::string texture, std::string shader) {
  return {
      std::move(texture),
      std::move(shader),
      {{1, 2, 3, 0, 1, 0, 0.25F, 0.125F}, {4, 5, 6, 1, 0, 0, 0.5F, 0.375F}, {7, 8, 10, 0, 0, 1, 0.75F, 1}},
      {0, 1, 2}};
}

BuiltMesh builtGrid(uint32_t cells) {
  BuiltMesh mesh;
  const uint32_t side = cells + 1;
  for (uint32_t i = 0; i < side * side; ++i) {
    const auto x = static_cast<float>(i % side), z = static_cast<float>(i / side);
    const auto scale = static_cast<float>(cells);
    mesh.vertices.push_back({x, std::sin(x) * std::cos(z), z, 0, 1, 0, x / scale, z / scale});
  }
  for (uint32_t row = 0; row < cells; ++row) {
    for (uint32_t column = 0; column < cells; ++column) {
      const uint32_t a = row * side + column;
      for (const uint32_t corner : {a, a + side, a + 1, a + 1, a + side, a + side + 1})
        mesh.indices.push_back(static_cast<uint16_t>(corner));
    }
  }
  return mesh;
}

ByteWriter filler(size_t count) {
  return ByteWriter().raw(std::string(count, '\xEE'));
}

ByteWriter vxmHeader(int version, const BuiltMesh& mesh, float radius) {
  if (version == 3) return chunkOf(1, filler(4));
  const auto [low, high] = boundsOf(mesh);
  return chunkOf(1, filler(4).write(low, high).raw(filler(12).bytes()).write(radius));
}

ByteWriter vxmNames(const BuiltMesh& mesh) {
  return chunkOf(2, ByteWriter().text(mesh.texture).text(mesh.shader));
}

ByteWriter vxmVertices(int version, uint32_t format, const BuiltMesh& mesh) {
  struct Layout {
    uint32_t format;
    size_t before, between, after;  // filler before the position, after the normal, after u, v
  };
  static const std::vector<Layout> layouts3 = {
      {1, 0, 0, 4}, {0x12071980, 0, 0, 4}, {0x240E3300, 4, 28, 0}, {0x112, 0, 0, 0}};
  static const std::vector<Layout> layouts4 = {{1, 0, 24, 4},          {0x12071980, 0, 24, 4}, {2, 4, 28, 0},
                                               {0x240E3300, 4, 28, 0}, {3, 6, 32, 0},          {4, 8, 36, 0},
                                               {0x112, 0, 0, 0}};
  const auto& layouts = version == 3 ? layouts3 : layouts4;
  const auto layout = std::ranges::find(layouts, format, &Layout::format);

  ByteWriter data;
  data.write(format, static_cast<uint32_t>(mesh.vertices.size()));
  for (const BuiltVertex& v : mesh.vertices) {
    if (layout == layouts.end()) {
      data.write(v.x, v.y, v.z);
      continue;
    }
    data.raw(filler(layout->before).bytes()).write(v.x, v.y, v.z, v.nx, v.ny, v.nz);
    data.raw(filler(layout->between).bytes()).write(v.u, v.v).raw(filler(layout->after).bytes());
  }
  return chunkOf(version == 3 ? 7 : 3, data);
}

ByteWriter vxmIndices(int version, const BuiltMesh& mesh) {
  ByteWriter data;
  data.write(static_cast<uint32_t>(mesh.indices.size()));
  for (const uint16_t index : mesh.indices) data.write(index);
  return chunkOf(version == 3 ? 8 : 4, data);
}

ByteWriter vxmBounds(const Vector3& low, const Vector3& high) {
  return chunkOf(6, ByteWriter().write(low, high));
}

ByteWriter vxmDetailLevel(uint32_t firstIndex, uint16_t triangles) {
  return chunkOf(6, filler(16).write(uint32_t{1}, firstIndex, triangles, uint16_t{0}));
}

ByteWriter vxmVisual(int version, const BuiltMesh& mesh, uint32_t format) {
  ByteWriter visual = vxmHeader(version, mesh);
  visual.raw(vxmNames(mesh).bytes());
  if (version == 3) visual.raw(vxmBounds(boundsOf(mesh).low, boundsOf(mesh).high).bytes());
  return visual.raw(vxmVertices(version, format, mesh).bytes()).raw(vxmIndices(version, mesh).bytes());
}

ByteWriter vxmHierarchy(int version, const std::vector<BuiltMesh>& meshes, uint32_t format) {
  ByteWriter children;
  for (uint32_t i = 0; i < meshes.size(); ++i) children.chunk(i, vxmVisual(version, meshes[i], format));
  return vxmHeader(version, meshes.empty() ? BuiltMesh{} : meshes.front())
      .chunk(version == 3 ? 17 : 9, children);
}

}  // namespace facet
