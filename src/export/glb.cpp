#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "export/binary_blocks.h"
#include "export/corners.h"
#include "export/glb_images.h"
#include "export/mesh_text.h"
#include "export/writers.h"

// glTF 2.0 in one binary file. It is right-handed and y-up: the z axis is mirrored, and the second and third
// corner of each triangle change places so that faces still look outward. What the format forbids is left out
// or made plain: triangles with a missing vertex, numbers that are not finite, normals without a direction.

namespace facet {

namespace {

using Json = nlohmann::ordered_json;

constexpr uint32_t vertexSize = 32;  // position, normal, texture coordinates
constexpr uint32_t fileHeaderSize = 12, chunkHeaderSize = 8;
enum ComponentType { unsignedShort = 5123, unsignedInt = 5125, floatType = 5126 };
enum BufferTarget { vertexTarget = 34962, indexTarget = 34963 };

constexpr uint64_t padded(uint64_t size) {
  return (size + 3) / 4 * 4;
}

float finite(float value) {
  return std::isfinite(value) ? value : 0.0F;
}

Vector3 positionOf(const Vertex& vertex) {
  return {finite(vertex.x), finite(vertex.y), -finite(vertex.z)};
}

/// Of length 1; up where the model has no direction.
Vector3 directionOf(const Vector3& normal) {
  const double x = normal.x, y = normal.y, z = normal.z;
  const double squared = x * x + y * y + z * z;
  if (!(squared > 0) || !std::isfinite(squared)) return {0, 1, 0};
  const double scale = 1 / std::sqrt(squared);
  return {static_cast<float>(x * scale), static_cast<float>(y * scale), static_cast<float>(-z * scale)};
}

struct Bounds {
  Vector3 low{infinity, infinity, infinity}, high{-infinity, -infinity, -infinity};

  void add(const Vector3& p) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  static constexpr float infinity = std::numeric_limits<float>::infinity();
};

/// A mesh that has something to draw, and where its data stand in the binary chunk.
struct Part {
  uint32_t mesh;
  uint32_t indexCount = 0;  // of the triangles that have all their vertices
  Bounds bounds;
  uint64_t verticesAt = 0, indicesAt = 0;
};

/// 65535 means "restart" among 16-bit indices and is no vertex.
uint32_t indexSize(const Mesh& mesh) {
  return mesh.vertexCount > UINT16_MAX ? 4 : 2;
}

template <class Put>
void forWholeTriangles(const Mesh& mesh, uint32_t first, uint32_t end, Put put) {
  forTriangles(mesh, first, end, [&](uint32_t, uint16_t a, uint16_t b, uint16_t c) {
    if (std::max({a, b, c}) < mesh.vertexCount) put(a, b, c);
  });
}

/// Indices of the triangles that have all their vertices.
uint32_t wholeIndexCount(const Mesh& mesh) {
  const uint32_t all = triangleCount(mesh) * 3;
  uint16_t highest = 0;
  for (uint32_t k = 0; k < all; ++k) highest = std::max(highest, mesh.indices[k]);
  if (highest < mesh.vertexCount) return all;
  uint32_t count = 0;
  forWholeTriangles(mesh, 0, triangleCount(mesh), [&](uint16_t, uint16_t, uint16_t) { count += 3; });
  return count;
}

/// Bounds of the positions as they are written.
Bounds boundsOf(std::span<const Vertex> vertices) {
  Bounds bounds;
  for (const Vertex& vertex : vertices) bounds.add(positionOf(vertex));
  return bounds;
}

/// The same, four vertices at a time in a form that compilers turn into vector instructions.
Bounds quickBoundsOf(std::span<const Vertex> vertices) {
  constexpr size_t count = 4, floats = sizeof(Vertex) / sizeof(float);
  using Lanes = std::array<float, count * floats>;
  Lanes low, high, notFinite{};  // 0 where all were finite, otherwise no number
  low.fill(Bounds::infinity);
  high.fill(-Bounds::infinity);
  auto rest = vertices;
  for (; rest.size() >= count; rest = rest.subspan(count)) {
    Lanes four;
    std::memcpy(four.data(), rest.data(), sizeof four);
    for (size_t k = 0; k < four.size(); ++k) {
      low[k] = four[k] < low[k] ? four[k] : low[k];
      high[k] = four[k] > high[k] ? four[k] : high[k];
      notFinite[k] += four[k] * 0;
    }
  }
  if (std::ranges::any_of(notFinite, [](float sum) { return sum != 0; })) return boundsOf(vertices);
  Bounds bounds = boundsOf(rest);
  if (rest.size() == vertices.size()) return bounds;
  for (size_t k = 0; k < low.size(); k += floats) {
    bounds.add({low[k], low[k + 1], -low[k + 2]});
    bounds.add({high[k], high[k + 1], -high[k + 2]});
  }
  return bounds;
}

Part measure(const Mesh& mesh, uint32_t number) {
  return {.mesh = number,
          .indexCount = wholeIndexCount(mesh),
          .bounds = quickBoundsOf({mesh.vertices.get(), mesh.vertexCount})};
}

/// Every mesh of the model, measured on all cores.
std::vector<Part> measureAll(const Model& model, Output& out) {
  std::vector<Part> parts(model.meshCount);
  uint32_t mesh = 0;
  writePieces(usefulThreads(model), out, [&]() -> TextJob {
    if (mesh == model.meshCount) return {};
    return {.run = [&model, &parts, m = mesh++](TextBuffer&) { parts[m] = measure(model.meshes[m], m); },
            .hasText = false};
  });
  return parts;
}

/// What the file holds: the parts, then the images.
struct Layout {
  std::vector<Part> parts;
  EmbeddedImages images;
  std::vector<uint64_t> imagesAt;
  uint64_t size = 0;
};

Layout layOut(const Model& model, std::vector<Part> parts) {
  Layout layout;
  for (Part& part : parts) {
    if (part.indexCount == 0) continue;
    const Mesh& mesh = model.meshes[part.mesh];
    part.verticesAt = layout.size;
    part.indicesAt = layout.size += uint64_t{vertexSize} * mesh.vertexCount;
    layout.size = padded(layout.size + uint64_t{part.indexCount} * indexSize(mesh));
    layout.parts.push_back(part);
  }
  layout.images = embedImages(ownMaterials(model));
  for (const auto& file : layout.images.files) {
    layout.imagesAt.push_back(layout.size);
    layout.size = padded(layout.size + file.size());
  }
  return layout;
}

/// Appends to an array of the document and returns the new element's number.
size_t append(Json& array, Json element) {
  array.push_back(std::move(element));
  return array.size() - 1;
}

size_t appendView(Json& document, uint64_t offset, uint64_t size) {
  return append(document["bufferViews"], {{"buffer", 0}, {"byteOffset", offset}, {"byteLength", size}});
}

size_t appendAccessor(Json& document, size_t view, uint32_t offset, ComponentType component, uint32_t count,
                      const char* type) {
  return append(document["accessors"], {{"bufferView", view},
                                        {"byteOffset", offset},
                                        {"componentType", component},
                                        {"count", count},
                                        {"type", type}});
}

void describePart(const Model& model, const Part& part, Json& document) {
  const Mesh& mesh = model.meshes[part.mesh];
  const uint32_t count = mesh.vertexCount;
  const size_t vertices = appendView(document, part.verticesAt, uint64_t{vertexSize} * count);
  document["bufferViews"][vertices]["byteStride"] = vertexSize;
  document["bufferViews"][vertices]["target"] = vertexTarget;
  const size_t indices = appendView(document, part.indicesAt, uint64_t{part.indexCount} * indexSize(mesh));
  document["bufferViews"][indices]["target"] = indexTarget;

  const size_t position = appendAccessor(document, vertices, 0, floatType, count, "VEC3");
  document["accessors"][position]["min"] = {part.bounds.low.x, part.bounds.low.y, part.bounds.low.z};
  document["accessors"][position]["max"] = {part.bounds.high.x, part.bounds.high.y, part.bounds.high.z};
  const size_t normal = appendAccessor(document, vertices, 12, floatType, count, "VEC3");
  const size_t texture = appendAccessor(document, vertices, 24, floatType, count, "VEC2");
  const ComponentType indexType = indexSize(mesh) == 2 ? unsignedShort : unsignedInt;
  const size_t corners = appendAccessor(document, indices, 0, indexType, part.indexCount, "SCALAR");

  Json primitive{{"attributes", {{"POSITION", position}, {"NORMAL", normal}, {"TEXCOORD_0", texture}}},
                 {"indices", corners}};
  if (mesh.materialIndex < ownMaterials(model).size()) primitive["material"] = mesh.materialIndex;
  TextBuffer name;
  name.put("Mesh", Padded{part.mesh, 5});
  const size_t meshNumber =
      append(document["meshes"], {{"name", name.view()}, {"primitives", Json::array({primitive})}});
  document["scenes"][0]["nodes"].push_back(
      append(document["nodes"], {{"name", name.view()}, {"mesh", meshNumber}}));
}

/// Colour factors are linear, the model's colours are those of the screen.
double linear(float channel) {
  return std::pow(static_cast<double>(channel), 2.2);
}

/// The render flags' alpha test and blending, and the drawing of both sides that goes with them.
void describeAlpha(uint8_t flags, Json& described) {
  constexpr uint8_t alphaTest = 1, blending = 2 | 4;
  if ((flags & (alphaTest | blending)) == 0) return;
  described["doubleSided"] = true;
  if ((flags & blending) != 0) {
    described["alphaMode"] = "BLEND";
  } else {
    described["alphaMode"] = "MASK";
    described["alphaCutoff"] = flags == alphaTest ? 128 / 255.0 : 1 / 255.0;  // the test is "above 0"
  }
}

void describeMaterial(const Material& material, size_t number, std::optional<uint32_t> image,
                      Json& document) {
  Json surface{{"metallicFactor", 0}, {"roughnessFactor", 1}};
  if (image) {
    surface["baseColorTexture"] = {{"index", *image}};
  } else {
    const auto& [r, g, b, a] = material.color;
    surface["baseColorFactor"] = {linear(r), linear(g), linear(b), a};
  }
  Json described{
      {"name", material.textureName.empty() ? "material" + std::to_string(number) : material.textureName},
      {"pbrMetallicRoughness", surface}};
  describeAlpha(material.renderFlags, described);
  append(document["materials"], std::move(described));
}

/// The document's text, blanks at its end making its length a multiple of 4.
std::string describe(const Model& model, const Layout& layout) {
  Json document{{"asset", {{"version", "2.0"}, {"generator", "facetbench"}}}, {"scene", 0}};
  document["scenes"] = Json::array({{{"name", "Model"}}});
  for (const Part& part : layout.parts) describePart(model, part, document);
  const auto materials = ownMaterials(model);
  for (size_t i = 0; i < materials.size(); ++i)
    describeMaterial(materials[i], i, layout.images.ofMaterial[i], document);
  for (size_t i = 0; i < layout.images.files.size(); ++i) {
    const size_t view = appendView(document, layout.imagesAt[i], layout.images.files[i].size());
    append(document["images"], {{"bufferView", view}, {"mimeType", "image/png"}});
    append(document["textures"], {{"source", i}});
  }
  if (layout.size != 0) append(document["buffers"], {{"byteLength", layout.size}});
  // Names are bytes of an unknown code page: what is no UTF-8 becomes the replacement character.
  std::string text = document.dump(-1, ' ', false, Json::error_handler_t::replace);
  text.resize(padded(text.size()), ' ');
  return text;
}

/// Stores values one by one: a whole record made elsewhere first would stall on its way through the cache.
template <class... Values>
char* store(char* to, const Values&... values) {
  ((std::memcpy(to, &values, sizeof values), to += sizeof values), ...);
  return to;
}

/// As the file has it when all its numbers are finite and its normal has length 1, as most do.
bool isPlain(const Vertex& vertex, const Vector3& n) {
  const float finiteSum = vertex.x + vertex.y + vertex.z + vertex.u + vertex.v;
  return std::abs(n.x * n.x + n.y * n.y + n.z * n.z - 1) < 1e-5F && finiteSum * 0 == 0;
}

void putVertices(const Mesh& mesh, uint32_t first, uint32_t end, TextBuffer& bytes) {
  char* to = bytes.extend(size_t{vertexSize} * (end - first));
  for (uint32_t i = first; i < end; ++i) {
    const Vertex& v = mesh.vertices[i];
    const Vector3& n = mesh.normals[i];
    if (isPlain(v, n))
      to = store(to, v.x, v.y, -v.z, n.x, n.y, -n.z, v.u, v.v);
    else
      to = store(to, positionOf(v), directionOf(n), finite(v.u), finite(v.v));
  }
}

template <class Index>
void putTriangles(const Mesh& mesh, uint32_t first, uint32_t end, TextBuffer& bytes) {
  char* to = bytes.extend(size_t{end - first} * 3 * sizeof(Index));
  forWholeTriangles(mesh, first, end, [&](Index a, Index b, Index c) { to = store(to, a, c, b); });
  bytes.endAt(to);
}

/// What one job writes of a part: some of its vertices or triangles. The last ends with the padding.
struct Run {
  const Part* part;
  bool triangles;
  uint32_t first, end;
};

std::vector<Run> runsOf(const Model& model, std::span<const Part> parts) {
  // Large enough that threads seldom wait for their turn.
  constexpr uint32_t itemsPerRun = 16384;
  std::vector<Run> runs;
  for (const Part& part : parts) {
    const Mesh& mesh = model.meshes[part.mesh];
    for (const bool triangles : {false, true}) {
      const uint32_t count = triangles ? triangleCount(mesh) : mesh.vertexCount;
      for (uint32_t first = 0; first < count; first += itemsPerRun)
        runs.push_back({&part, triangles, first, std::min(first + itemsPerRun, count)});
    }
  }
  return runs;
}

void putRun(const Mesh& mesh, const Run& run, TextBuffer& bytes) {
  if (!run.triangles) {
    putVertices(mesh, run.first, run.end, bytes);
    return;
  }
  if (indexSize(mesh) == 2)
    putTriangles<uint16_t>(mesh, run.first, run.end, bytes);
  else
    putTriangles<uint32_t>(mesh, run.first, run.end, bytes);
  if (run.end < triangleCount(mesh)) return;
  const uint64_t size = uint64_t{run.part->indexCount} * indexSize(mesh);
  for (uint64_t at = size; at < padded(size); ++at) bytes.put('\0');
}

void writeParts(const Model& model, std::span<const Part> parts, Output& out) {
  const std::vector<Run> runs = runsOf(model, parts);
  auto run = runs.begin();
  writePieces(usefulThreads(model), out, [&]() -> TextJob {
    if (run == runs.end()) return {};
    return {[&model, run = *run++](TextBuffer& bytes) { putRun(model.meshes[run.part->mesh], run, bytes); }};
  });
}

}  // namespace

void exportGlb(Model& model, std::string_view, Output& out) {
  const Layout layout = layOut(model, measureAll(model, out));
  const std::string document = describe(model, layout);
  const uint64_t binarySize = layout.size == 0 ? 0 : chunkHeaderSize + layout.size;
  const uint64_t fileSize = fileHeaderSize + chunkHeaderSize + document.size() + binarySize;
  if (fileSize > UINT32_MAX) throw std::runtime_error("the format holds at most 4 GB, the model has more");

  constexpr uint32_t version = 2;
  BinaryBlocks file(out);
  file.putBytes("glTF");
  file.put(version, static_cast<uint32_t>(fileSize), static_cast<uint32_t>(document.size()));
  file.putBytes("JSON");
  file.putBytes(document);
  if (layout.size != 0) {
    file.put(static_cast<uint32_t>(layout.size));
    file.putBytes({"BIN\0", 4});
    file.finish();
    writeParts(model, layout.parts, out);
    for (const auto& image : layout.images.files) {
      file.putArray(std::span(image));
      file.putZeros(padded(image.size()) - image.size());
    }
  }
  file.finish();
}

}  // namespace facet
