#include "support/format_builders.h"

#include <algorithm>
#include <cmath>

namespace facet {

namespace {

std::pair<glm::vec3, glm::vec3> boundsOf(const BuiltMesh& mesh) {
  if (mesh.vertices.empty()) return {};
  glm::vec3 low = mesh.vertices[0].position(), high = low;
  for (const BuiltVertex& v : mesh.vertices)
    low = glm::min(low, v.position()), high = glm::max(high, v.position());
  return {low, high};
}

ByteWriter chunkOf(uint32_t id, const ByteWriter& data) {
  return ByteWriter().chunk(id, data);
}

uint32_t vertexCount(const BuiltMesh& mesh) {
  return static_cast<uint32_t>(mesh.vertices.size());
}

/// What stands around the position, normal and texture coordinates in a record of a VXM vertex format.
struct VertexLayout {
  int version;
  uint32_t format;
  size_t before, between, after;
};
constexpr VertexLayout vertexLayouts[] = {
    {3, 1, 0, 0, 4},  {3, 0x12071980, 0, 0, 4},  {3, 0x240E3300, 4, 28, 0}, {3, 0x112, 0, 0, 0},
    {4, 1, 0, 24, 4}, {4, 0x12071980, 0, 24, 4}, {4, 0x240E3300, 4, 28, 0}, {4, 0x112, 0, 0, 0},
    {4, 2, 4, 28, 0}, {4, 3, 6, 32, 0},          {4, 4, 8, 36, 0},
};

}  // namespace

BuiltMesh builtTriangle(std::string texture, std::string shader) {
  return {std::move(texture),
          std::move(shader),
          {{1, 2, 3, 0, 1, 0, 0.25F, 0.125F}, {4, 5, 6, 1, 0, 0, 0.5F, 0.25F}, {7, 8, 10, 0, 0, 1, 0.75F, 1}},
          {0, 1, 2}};
}

BuiltMesh builtGrid(uint32_t cells) {
  BuiltMesh mesh;
  const uint32_t side = cells + 1;
  const auto scale = static_cast<float>(cells);
  for (uint32_t i = 0; i < side * side; ++i) {
    const auto x = static_cast<float>(i % side), z = static_cast<float>(i / side);
    const float slope = static_cast<float>(i) / static_cast<float>(side * side);
    const float height = std::sin(x) * std::cos(z), up = std::sqrt(1 - slope * slope);
    mesh.vertices.push_back({x, height, z, slope, up, 0, x / scale, z / scale});
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

BuiltMesh joined(const std::vector<BuiltMesh>& meshes) {
  BuiltMesh all;
  for (const BuiltMesh& mesh : meshes) {
    all.vertices.insert(all.vertices.end(), mesh.vertices.begin(), mesh.vertices.end());
    all.indices.insert(all.indices.end(), mesh.indices.begin(), mesh.indices.end());
  }
  return all;
}

ByteWriter filler(size_t count) {
  return ByteWriter().raw(std::string(count, '\xEE'));
}

ByteWriter nameChunk(const BuiltMesh& mesh) {
  return chunkOf(2, ByteWriter().text(mesh.texture).text(mesh.shader));
}

ByteWriter vxmHeader(int version, const BuiltMesh& mesh, float radius) {
  if (version == 3) return chunkOf(1, filler(4));
  const auto [low, high] = boundsOf(mesh);
  return chunkOf(1, filler(4).write(low, high, filler(12), radius));
}

ByteWriter vxmVertices(int version, uint32_t format, const BuiltMesh& mesh) {
  const auto* layout = std::ranges::find_if(
      vertexLayouts, [&](const VertexLayout& row) { return row.version == version && row.format == format; });
  ByteWriter data;
  data.write(format, vertexCount(mesh));
  for (const BuiltVertex& v : mesh.vertices) {
    if (layout == std::end(vertexLayouts)) {
      data.write(v.position());
      continue;
    }
    data.write(filler(layout->before), v.position(), v.normal());
    data.write(filler(layout->between), v.uv(), filler(layout->after));
  }
  return chunkOf(version == 3 ? 7 : 3, data);
}

ByteWriter vxmIndices(int version, const BuiltMesh& mesh) {
  return chunkOf(version == 3 ? 8 : 4, ByteWriter().list(mesh.indices));
}

ByteWriter vxmBounds(const glm::vec3& low, const glm::vec3& high) {
  return chunkOf(6, ByteWriter().write(low, high));
}

ByteWriter vxmDetailLevel(uint32_t firstIndex, uint16_t triangles) {
  return chunkOf(6, filler(16).write(uint32_t{1}, firstIndex, triangles, uint16_t{0}));
}

ByteWriter vxmVisual(int version, const BuiltMesh& mesh, uint32_t format) {
  const auto [low, high] = boundsOf(mesh);
  return vxmHeader(version, mesh)
      .write(nameChunk(mesh), version == 3 ? vxmBounds(low, high) : ByteWriter())
      .write(vxmVertices(version, format, mesh), vxmIndices(version, mesh));
}

ByteWriter vxmHierarchy(int version, const std::vector<BuiltMesh>& meshes,
                        const std::vector<uint32_t>& formats) {
  ByteWriter children;
  for (uint32_t i = 0; i < meshes.size(); ++i)
    children.chunk(i, vxmVisual(version, meshes[i], formats[i % formats.size()]));
  return vxmHeader(version, joined(meshes)).chunk(version == 3 ? 17 : 9, children);
}

ObjectMesh objectMesh(const BuiltMesh& mesh, std::string surface) {
  ObjectMesh object;
  ObjectMap map;
  for (uint32_t i = 0; i < mesh.vertices.size(); ++i) {
    const BuiltVertex& v = mesh.vertices[i];
    object.points.push_back(v.position());
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
  ByteWriter references, lists, maps;
  references.write(static_cast<uint32_t>(mesh.references.size()));
  for (const ObjectReference& pairs : mesh.references) references.list<uint8_t>(pairs);
  lists.write(static_cast<uint16_t>(mesh.surfaces.size()));
  for (const auto& [name, faces] : mesh.surfaces) lists.text(name).list(faces);
  maps.write(static_cast<uint32_t>(mesh.maps.size()));
  for (const ObjectMap& map : mesh.maps) {
    const auto entries = static_cast<uint32_t>(map.values.size() / (map.type == 0 ? 2 : 1));
    maps.text("map").write(filler(1));
    if (mapLayout == 0x1012) maps.write(map.polygon);
    maps.write(map.type, entries, map.values);
    if (mapLayout == 0x1012) maps.write(filler(entries * (map.polygon == 0 ? 4 : 8)));
  }
  return chunkOf(0x1004, filler(24))
      .chunk(0x1005, ByteWriter().list(mesh.points))
      .chunk(0x1006, ByteWriter().list(mesh.faces))
      .chunk(0x1008, references)
      .chunk(0x1009, lists)
      .chunk(mapLayout, maps);
}

ByteWriter objectSurfaces(const std::vector<ObjectSurface>& surfaces, uint32_t layout) {
  ByteWriter data;
  data.write(static_cast<uint32_t>(surfaces.size()));
  for (const ObjectSurface& surface : surfaces) {
    data.text(surface.name).text(surface.shader);
    if (layout == 0x905) data.write(filler(9));
    if (layout >= 0x906) data.text("unused");
    if (layout == 0x907) data.text("unused too");
    data.text(surface.texture).text("unused at the end");
    if (layout >= 0x906) data.write(filler(12));
  }
  return chunkOf(layout, data);
}

ByteWriter objectFile(const std::vector<ObjectMesh>& meshes, const std::vector<ObjectSurface>& surfaces,
                      uint32_t layout, uint32_t mapLayout) {
  ByteWriter children;
  for (uint32_t i = 0; i < meshes.size(); ++i) children.chunk(i, objectMeshChunks(meshes[i], mapLayout));
  ByteWriter data = chunkOf(0x900, filler(2)).chunk(0x910, children);
  return chunkOf(0x7777, data.write(objectSurfaces(surfaces, layout)));
}

ByteWriter model4aVertices(const BuiltMesh& mesh) {
  ByteWriter data = filler(4).write(vertexCount(mesh));
  for (const BuiltVertex& v : mesh.vertices) data.write(v.position(), filler(12), v.uv());
  return chunkOf(3, data);
}

ByteWriter model4aPackedVertices(const BuiltMesh& mesh, uint8_t leadRecords) {
  const auto packed = [](float value, float scale) {
    return static_cast<int16_t>(std::lround(value * scale));
  };
  ByteWriter data;
  data.write(leadRecords, filler(61u * leadRecords), vertexCount(mesh));
  for (const BuiltVertex& v : mesh.vertices) {
    data.write(packed(v.x, 2720), packed(v.y, 2720), packed(v.z, 2720));
    data.write(filler(22), packed(v.u, 2048), packed(v.v, 2048));
  }
  return chunkOf(5, data);
}

ByteWriter model4aIndices(const BuiltMesh& mesh, uint32_t lead) {
  return chunkOf(4, ByteWriter().write(lead, mesh.indices));
}

ByteWriter model4aMeshFile(const std::vector<BuiltMesh>& meshes, bool packed) {
  ByteWriter children;
  for (uint32_t i = 0; i < meshes.size(); ++i) {
    const BuiltMesh& mesh = meshes[i];
    children.chunk(i, nameChunk(mesh)
                          .write(packed ? model4aPackedVertices(mesh) : model4aVertices(mesh))
                          .write(model4aIndices(mesh, static_cast<uint32_t>(mesh.indices.size() / 3))));
  }
  return chunkOf(1, filler(64)).chunk(9, children);
}

ByteWriter model4aListFile(std::string_view names) {
  return chunkOf(1, filler(64)).chunk(16, filler(4).text(names));
}

ByteWriter orionFile(const BuiltMesh& mesh, std::string_view trailer, uint32_t magic) {
  ByteWriter file;
  file.write(magic, filler(20), static_cast<uint32_t>(mesh.indices.size() / 3), vertexCount(mesh),
             filler(72));
  for (const BuiltVertex& v : mesh.vertices) file.write(v.position());
  for (const BuiltVertex& v : mesh.vertices) file.write(v.normal());
  file.write(mesh.indices);
  for (const BuiltVertex& v : mesh.vertices) file.write(v.uv());
  return file.raw(trailer);
}

ByteWriter ds2mdText(std::string_view text) {
  return ByteWriter().write(static_cast<uint16_t>(text.size())).raw(text);
}

ByteWriter ds2mdHead(std::string_view version, uint8_t meshCount) {
  ByteWriter head;
  head.write(uint32_t{0x5344000E}, filler(12), ds2mdText(version));
  if (!version.starts_with("0.6")) return head.write(ds2mdText("head"), meshCount);
  return head.write(filler(4), meshCount, filler(1), ds2mdText("head"));
}

ByteWriter ds2mdRecord(std::string_view version, const BuiltMesh& mesh) {
  const auto indexCount = static_cast<uint32_t>(mesh.indices.size());
  ByteWriter record = ds2mdText(mesh.shader);
  record.write(ds2mdText("art\\tex\\" + mesh.texture + ".raw"));
  for (const char* text : {"note", "two", "three", ""}) record.write(ds2mdText(text));
  if (version.starts_with("0.6"))
    return record.write(filler(4), vertexCount(mesh), indexCount, filler(1), mesh.vertices, mesh.indices);
  const auto [low, high] = boundsOf(mesh);
  record.write(low, high, filler(9)).list(mesh.indices);
  record.write(static_cast<uint16_t>(vertexCount(mesh)));
  for (const BuiltVertex& v : mesh.vertices) record.write(v.position());
  for (const BuiltVertex& v : mesh.vertices) record.write(v.normal());
  for (const BuiltVertex& v : mesh.vertices) record.write(v.uv());
  return record;
}

ByteWriter ds2mdFile(std::string_view version, const std::vector<BuiltMesh>& meshes) {
  ByteWriter file = ds2mdHead(version, static_cast<uint8_t>(meshes.size()));
  for (size_t i = 0; i < meshes.size(); ++i)
    file.zeros(i == 0 ? 0 : 4).write(ds2mdRecord(version, meshes[i]));
  return file;
}

}  // namespace facet
