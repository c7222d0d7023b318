#include <array>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "export/binary_blocks.h"
#include "export/corners.h"
#include "export/glb_images.h"
#include "export/text_buffer.h"
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

/// Of length 1; up where the model has no direction. Most normals are good as they are.
Vector3 directionOf(const Vector3& normal) {
  const double x = normal.x, y = normal.y, z = normal.z;
  const double squared = x * x + y * y + z * z;
  if (std::abs(squared - 1) < 1e-5) return {normal.x, normal.y, -normal.z};
  if (!(squared > 0) || !std::isfinite(squared)) return {0, 1, 0};
  const double scale = 1 / std::sqrt(squared);
  return {static_cast<float>(x * scale), static_cast<float>(y * scale), static_cast<float>(-z * scale)};
}

/// A mesh that has something to draw, and where its data stand in the binary chunk.
struct Part {
  uint32_t mesh;
  uint32_t indexCount = 0;  // of the triangles that have all their vertices
  Vector3 low, high;
  uint64_t verticesAt = 0, indicesAt = 0;
};

/// 65535 means "restart" among 16-bit indices and is no vertex.
uint32_t indexSize(const Mesh& mesh) {
  return mesh.vertexCount > UINT16_MAX ? 4 : 2;
}

template <class Put>
void forWholeTriangles(const Mesh& mesh, Put put) {
  forTriangles(mesh, 0, triangleCount(mesh), [&](uint32_t, uint16_t a, uint16_t b, uint16_t c) {
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
  forWholeTriangles(mesh, [&](uint16_t, uint16_t, uint16_t) { count += 3; });
  return count;
}

Part measure(const Mesh& mesh, uint32_t number) {
  constexpr float infinity = std::numeric_limits<float>::infinity();
  Vector3 low{infinity, infinity, infinity}, high{-infinity, -infinity, -infinity};
  for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
    const auto [x, y, z] = positionOf(mesh.vertices[i]);
    low = {std::min(low.x, x), std::min(low.y, y), std::min(low.z, z)};
    high = {std::max(high.x, x), std::max(high.y, y), std::max(high.z, z)};
  }
  return {.mesh = number, .indexCount = wholeIndexCount(mesh), .low = low, .high = high};
}

/// What the file holds: the parts, then the images.
struct Layout {
  std::vector<Part> parts;
  EmbeddedImages images;
  std::vector<uint64_t> imagesAt;
  uint64_t size = 0;
};

Layout layOut(const Model& model) {
  Layout layout;
  for (uint32_t m = 0; m < model.meshCount; ++m) {
    const Mesh& mesh = model.meshes[m];
    Part part = measure(mesh, m);
    if (part.indexCount == 0) continue;
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
  document["accessors"][position]["min"] = {part.low.x, part.low.y, part.low.z};
  document["accessors"][position]["max"] = {part.high.x, part.high.y, part.high.z};
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

/// The indices of the whole triangles, some thousand at a time.
template <class Index>
void putIndices(const Mesh& mesh, BinaryBlocks& file) {
  std::array<Index, 3 * 1024> block;
  size_t size = 0;
  forWholeTriangles(mesh, [&](uint16_t a, uint16_t b, uint16_t c) {
    block[size] = a;
    block[size + 1] = c;
    block[size + 2] = b;
    size += 3;
    if (size < block.size()) return;
    file.putArray(std::span<const Index>(block));
    size = 0;
  });
  file.putArray(std::span<const Index>(block.data(), size));
}

void putPart(const Mesh& mesh, const Part& part, BinaryBlocks& file) {
  for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
    const Vertex& vertex = mesh.vertices[i];
    file.put(positionOf(vertex), directionOf(mesh.normals[i]), finite(vertex.u), finite(vertex.v));
  }
  if (indexSize(mesh) == 2)
    putIndices<uint16_t>(mesh, file);
  else
    putIndices<uint32_t>(mesh, file);
  const uint64_t size = uint64_t{part.indexCount} * indexSize(mesh);
  file.putZeros(padded(size) - size);
}

}  // namespace

void exportGlb(Model& model, std::string_view, Output& out) {
  const Layout layout = layOut(model);
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
    for (const Part& part : layout.parts) putPart(model.meshes[part.mesh], part, file);
    for (const auto& image : layout.images.files) {
      file.putArray(std::span(image));
      file.putZeros(padded(image.size()) - image.size());
    }
  }
  file.finish();
}

}  // namespace facet
