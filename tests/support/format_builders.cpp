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

ObjectMesh objectMesh(const BuiltMesh& mesh, std::string surface) {
  ObjectMesh object;
  ObjectMap map;
  for (uint32_t i = 0; i < mesh.vertices.size(); ++i) {
    const BuiltVertex& v = mesh.vertices[i];
    object.points.push_back({v.x, v.y, v.z});
    object.references.push_back({{0, i}});
    map.values.insert(map.values.end(), {v.u, v.v});
  }
  object.maps.push_back(map);
  ObjectFaceList faces{std::move(surface), {}};
  for (size_t k = 0; k + 3 <= mesh.indices.size(); k += 3) {
    const uint32_t a = mesh.indices[k], b = mesh.indices[k + 1], c = mesh.indices[k + 2];
    faces.second.push_back(static_cast<uint32_t>(object.faces.size()));
    object.faces.push_back({{{a, a}, {b, b}, {c, c}}});
  }
  object.surfaces.push_back(faces);
  return object;
}

ByteWriter objectMeshChunks(const ObjectMesh& mesh, uint32_t mapLayout) {
  ByteWriter points, faces, references, lists, maps;
  points.write(static_cast<uint32_t>(mesh.points.size()));
  for (const Vector3& point : mesh.points) points.write(point);
  faces.write(static_cast<uint32_t>(mesh.faces.size()));
  for (const ObjectFace& face : mesh.faces)
    for (const auto& [point, reference] : face) faces.write(point, reference);
  references.write(static_cast<uint32_t>(mesh.references.size()));
  for (const ObjectReference& pairs : mesh.references) {
    references.write(static_cast<uint8_t>(pairs.size()));
    for (const auto& [map, entry] : pairs) references.write(map, entry);
  }
  lists.write(static_cast<uint16_t>(mesh.surfaces.size()));
  for (const auto& [name, numbers] : mesh.surfaces) {
    lists.text(name).write(static_cast<uint32_t>(numbers.size()));
    for (const uint32_t face : numbers) lists.write(face);
  }
  maps.write(static_cast<uint32_t>(mesh.maps.size()));
  for (const ObjectMap& map : mesh.maps) {
    const auto entries = static_cast<uint32_t>(map.values.size() / (map.type == 0 ? 2 : 1));
    maps.text("map").raw(filler(1).bytes());
    if (mapLayout == 0x1012) maps.write(map.polygon);
    maps.write(map.type, entries);
    for (const float value : map.values) maps.write(value);
    if (mapLayout == 0x1012) maps.raw(filler(entries * (map.polygon == 0 ? 4 : 8)).bytes());
  }
  return chunkOf(0x1004, filler(24))
      .chunk(0x1005, points)
      .chunk(0x1006, faces)
      .chunk(0x1008, references)
      .chunk(0x1009, lists)
      .chunk(mapLayout, maps);
}

ByteWriter objectSurfaces(const std::vector<ObjectSurface>& surfaces, uint32_t layout) {
  ByteWriter data;
  data.write(static_cast<uint32_t>(surfaces.size()));
  for (const ObjectSurface& surface : surfaces) {
    data.text(surface.name).text(surface.shader);
    if (layout == 0x905) data.raw(filler(9).bytes());
    if (layout >= 0x906) data.text("unused");
    if (layout == 0x907) data.text("unused too");
    data.text(surface.texture).text("unused at the end");
    if (layout >= 0x906) data.raw(filler(12).bytes());
  }
  return chunkOf(layout, data);
}

ByteWriter objectFile(const std::vector<ObjectMesh>& meshes, const std::vector<ObjectSurface>& surfaces,
                      uint32_t layout, uint32_t mapLayout) {
  ByteWriter children;
  for (uint32_t i = 0; i < meshes.size(); ++i) children.chunk(i, objectMeshChunks(meshes[i], mapLayout));
  return chunkOf(0x7777, ByteWriter()
                             .chunk(0x900, filler(2))
                             .chunk(0x910, children)
                             .raw(objectSurfaces(surfaces, layout).bytes()));
}

ByteWriter model4aMaterial(const BuiltMesh& mesh) {
  return vxmNames(mesh);  // the same chunk
}

ByteWriter model4aVertices(const BuiltMesh& mesh) {
  ByteWriter data = filler(4).write(static_cast<uint32_t>(mesh.vertices.size()));
  for (const BuiltVertex& v : mesh.vertices)
    data.write(v.x, v.y, v.z).raw(filler(12).bytes()).write(v.u, v.v);
  return chunkOf(3, data);
}

ByteWriter model4aPackedVertices(const BuiltMesh& mesh, uint8_t leadRecords) {
  const auto packed = [](float value, float scale) {
    return static_cast<int16_t>(std::lround(value * scale));
  };
  ByteWriter data;
  data.write(leadRecords).raw(filler(61u * leadRecords).bytes());
  data.write(static_cast<uint32_t>(mesh.vertices.size()));
  for (const BuiltVertex& v : mesh.vertices) {
    data.write(packed(v.x, 2720), packed(v.y, 2720), packed(v.z, 2720));
    data.raw(filler(22).bytes()).write(packed(v.u, 2048), packed(v.v, 2048));
  }
  return chunkOf(5, data);
}

ByteWriter model4aIndices(const BuiltMesh& mesh, uint32_t lead) {
  ByteWriter data;
  data.write(lead);
  for (const uint16_t index : mesh.indices) data.write(index);
  return chunkOf(4, data);
}

ByteWriter model4aMeshFile(const std::vector<BuiltMesh>& meshes, bool packed) {
  ByteWriter children;
  for (uint32_t i = 0; i < meshes.size(); ++i) {
    ByteWriter child = model4aMaterial(meshes[i]);
    child.raw((packed ? model4aPackedVertices(meshes[i]) : model4aVertices(meshes[i])).bytes());
    child.raw(model4aIndices(meshes[i], static_cast<uint32_t>(meshes[i].indices.size() / 3)).bytes());
    children.chunk(i, child);
  }
  return chunkOf(1, filler(64)).chunk(9, children);
}

ByteWriter model4aListFile(std::string_view names) {
  return chunkOf(1, filler(64)).chunk(16, filler(4).text(names));
}

ByteWriter orionFile(const BuiltMesh& mesh, std::string_view trailer, uint32_t magic) {
  ByteWriter file;
  file.write(magic).raw(filler(20).bytes());
  file.write(static_cast<uint32_t>(mesh.indices.size() / 3), static_cast<uint32_t>(mesh.vertices.size()));
  file.raw(filler(72).bytes());
  for (const BuiltVertex& v : mesh.vertices) file.write(v.x, v.y, v.z);
  for (const BuiltVertex& v : mesh.vertices) file.write(v.nx, v.ny, v.nz);
  for (const uint16_t index : mesh.indices) file.write(index);
  for (const BuiltVertex& v : mesh.vertices) file.write(v.u, v.v);
  return file.raw(trailer);
}

ByteWriter ds2mdText(std::string_view text) {
  return ByteWriter().write(static_cast<uint16_t>(text.size())).raw(text);
}

ByteWriter ds2mdHead(std::string_view version, uint8_t meshCount) {
  ByteWriter head;
  head.write(uint32_t{0x5344000E}).raw(filler(12).bytes()).raw(ds2mdText(version).bytes());
  const std::string skipped = ds2mdText("head").bytes();
  if (!version.starts_with("0.6")) return head.raw(skipped).write(meshCount);
  return head.raw(filler(4).bytes()).write(meshCount).raw(filler(1).bytes()).raw(skipped);
}

ByteWriter ds2mdRecord(std::string_view version, const BuiltMesh& mesh) {
  const auto vertexCount = static_cast<uint32_t>(mesh.vertices.size());
  const auto indexCount = static_cast<uint32_t>(mesh.indices.size());
  ByteWriter indices, record = ds2mdText(mesh.shader);
  for (const uint16_t index : mesh.indices) indices.write(index);
  record.raw(ds2mdText("art\\tex\\" + mesh.texture + ".raw").bytes());
  for (const char* text : {"note", "two", "three", ""}) record.raw(ds2mdText(text).bytes());
  if (version.starts_with("0.6")) {
    record.raw(filler(4).bytes()).write(vertexCount, indexCount).raw(filler(1).bytes());
    for (const BuiltVertex& v : mesh.vertices) record.write(v);
    return record.raw(indices.bytes());
  }
  const auto [low, high] = boundsOf(mesh);
  record.write(low, high).raw(filler(9).bytes()).write(indexCount).raw(indices.bytes());
  record.write(static_cast<uint16_t>(vertexCount));
  for (const BuiltVertex& v : mesh.vertices) record.write(v.x, v.y, v.z);
  for (const BuiltVertex& v : mesh.vertices) record.write(v.nx, v.ny, v.nz);
  for (const BuiltVertex& v : mesh.vertices) record.write(v.u, v.v);
  return record;
}

ByteWriter ds2mdFile(std::string_view version, const std::vector<BuiltMesh>& meshes) {
  ByteWriter file = ds2mdHead(version, static_cast<uint8_t>(meshes.size()));
  for (size_t i = 0; i < meshes.size(); ++i)
    file.zeros(i == 0 ? 0 : 4).raw(ds2mdRecord(version, meshes[i]).bytes());
  return file;
}

ByteWriter ddsFile(uint32_t width, uint32_t height) {
  constexpr uint32_t caps = 0x1000, flags = 0x1007, rgba = 0x41;
  ByteWriter file;
  file.raw("DDS ").write(uint32_t{124}, flags, height, width, width * 4, uint32_t{0}, uint32_t{1}).zeros(44);
  file.write(uint32_t{32}, rgba, uint32_t{0}, uint32_t{32});
  file.write(0x00FF0000u, 0x0000FF00u, 0x000000FFu, 0xFF000000u, caps).zeros(16);
  return file.raw(filler(size_t{width} * height * 4).bytes());
}

}  // namespace facet
