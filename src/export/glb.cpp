#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "export/binary_blocks.h"
#include "export/export.h"
#include "export/glb_document.h"
#include "export/mesh_text.h"
#include "export/modern_scene.h"
#include "platform/parallel.h"

// glTF 2.0 in one binary file. It is right-handed and y-up: the z axis is mirrored, and the second and third
// corner of each triangle change places so that faces still look outward. What the format forbids is left out
// or made plain: triangles with a missing vertex, numbers that are not finite, normals without a direction.

namespace facet {

namespace {

constexpr uint32_t fileHeaderSize = 12, chunkHeaderSize = 8;

constexpr uint64_t padded(uint64_t size) {
  return (size + 3) / 4 * 4;
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

void add(GlbBounds& bounds, const Vector3& p) {
  auto& [low, high] = bounds;
  low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
  high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
}

/// Bounds of the positions as they are written.
GlbBounds boundsOf(std::span<const Vertex> vertices) {
  GlbBounds bounds;
  for (const Vertex& vertex : vertices) add(bounds, positionOf(vertex));
  return bounds;
}

/// The same, four vertices at a time in a form that compilers turn into vector instructions.
GlbBounds quickBoundsOf(std::span<const Vertex> vertices) {
  constexpr size_t count = 4, floats = sizeof(Vertex) / sizeof(float);
  using Lanes = std::array<float, count * floats>;
  Lanes low, high, notFinite{};  // 0 where all were finite, otherwise no number
  low.fill(GlbBounds::infinity);
  high.fill(-GlbBounds::infinity);
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
  GlbBounds bounds = boundsOf(rest);
  if (rest.size() == vertices.size()) return bounds;
  for (size_t k = 0; k < low.size(); k += floats) {
    add(bounds, {low[k], low[k + 1], -low[k + 2]});
    add(bounds, {high[k], high[k + 1], -high[k + 2]});
  }
  return bounds;
}

GlbPart measure(const Mesh& mesh, uint32_t number) {
  return {.mesh = number,
          .indexCount = wholeIndexCount(mesh),
          .bounds = quickBoundsOf({mesh.vertices.get(), mesh.vertexCount})};
}

/// Every mesh of the model, measured on all cores.
std::vector<GlbPart> measureAll(const Model& model) {
  std::vector<GlbPart> parts(model.meshCount);
  const auto measureOne = [&](size_t i) { parts[i] = measure(model.meshes[i], static_cast<uint32_t>(i)); };
  parallelFor(parts.size(), measureOne, usefulThreads(model));
  return parts;
}

GlbLayout layOut(const Model& model) {
  GlbLayout layout;
  for (GlbPart& part : measureAll(model)) {
    if (part.indexCount == 0) continue;
    const Mesh& mesh = model.meshes[part.mesh];
    part.verticesAt = layout.size;
    part.indicesAt = layout.size += uint64_t{glbVertexSize} * mesh.vertexCount;
    layout.size = padded(layout.size + uint64_t{part.indexCount} * glbIndexSize(mesh));
    layout.parts.push_back(part);
  }
  return layout;
}

void addImage(uint64_t size, GlbLayout& layout) {
  layout.images.push_back({layout.size, size});
  layout.size = padded(layout.size + size);
}

/// Bytes that are only counted.
class OutputSize : public Output {
  std::string writeSome(std::string_view) override { return {}; }
};

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
  char* to = bytes.extend(size_t{glbVertexSize} * (end - first));
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

/// Some of a part's vertices or triangles. The last run of triangles ends with the padding.
struct Run {
  const GlbPart* part;
  bool triangles;
  uint32_t first, end;
};

/// Large enough that threads seldom wait for their turn.
constexpr uint32_t itemsPerJob = 16384;

std::vector<Run> runsOf(const Model& model, std::span<const GlbPart> parts) {
  std::vector<Run> runs;
  for (const GlbPart& part : parts) {
    const Mesh& mesh = model.meshes[part.mesh];
    for (const bool triangles : {false, true}) {
      const uint32_t count = triangles ? triangleCount(mesh) : mesh.vertexCount;
      for (uint32_t first = 0; first < count; first += itemsPerJob)
        runs.push_back({&part, triangles, first, std::min(first + itemsPerJob, count)});
    }
  }
  return runs;
}

void putRun(const Mesh& mesh, const Run& run, TextBuffer& bytes) {
  if (!run.triangles) {
    putVertices(mesh, run.first, run.end, bytes);
    return;
  }
  if (glbIndexSize(mesh) == 2)
    putTriangles<uint16_t>(mesh, run.first, run.end, bytes);
  else
    putTriangles<uint32_t>(mesh, run.first, run.end, bytes);
  if (run.end < triangleCount(mesh)) return;
  const uint64_t size = uint64_t{run.part->indexCount} * glbIndexSize(mesh);
  for (uint64_t at = size; at < padded(size); ++at) bytes.put('\0');
}

void writeParts(const Model& model, std::span<const GlbPart> parts, Output& out) {
  const std::vector<Run> runs = runsOf(model, parts);
  auto run = runs.begin();
  writePieces(usefulThreads(model), out, [&]() -> MakeText {
    if (run == runs.end()) return {};
    const auto first = run;
    for (uint32_t items = 0; run != runs.end() && items < itemsPerJob; ++run) items += run->end - run->first;
    return [&model, first, end = run](TextBuffer& bytes) {
      for (auto each = first; each != end; ++each) putRun(model.meshes[each->part->mesh], *each, bytes);
    };
  });
}

/// The file around its document, which writeDocument(out) writes, and its images, which putImages(file) puts.
template <class WriteDocument, class PutImages>
void writeFile(const Model& model, const GlbLayout& layout, Output& out, WriteDocument writeDocument,
               PutImages putImages) {
  OutputSize document;
  writeDocument(document);
  const uint64_t textSize = padded(document.bytesWritten());
  const uint64_t binarySize = layout.size == 0 ? 0 : chunkHeaderSize + layout.size;
  const uint64_t fileSize = fileHeaderSize + chunkHeaderSize + textSize + binarySize;
  if (fileSize > UINT32_MAX) throw std::runtime_error("the format holds at most 4 GB, the model has more");

  constexpr uint32_t version = 2;
  BinaryBlocks file(out);
  file.putBytes("glTF");
  file.put(version, static_cast<uint32_t>(fileSize), static_cast<uint32_t>(textSize));
  file.putBytes("JSON");
  file.finish();
  writeDocument(out);
  out.write(std::string_view("   ").substr(0, textSize - document.bytesWritten()));
  if (layout.size != 0) {
    file.put(static_cast<uint32_t>(layout.size));
    file.putBytes({"BIN\0", 4});
    file.finish();
    writeParts(model, layout.parts, out);
    putImages(file);
  }
  file.finish();
}

/// Copies the picture that comes next in the scene's file of embedded ones.
void putEmbedded(const ModernScene& scene, uint64_t size, BinaryBlocks& file) {
  std::array<char, 16384> block;
  for (uint64_t left = size; left > 0;) {
    const size_t count = std::min<uint64_t>(left, block.size());
    if (std::fread(block.data(), 1, count, scene.embedded) != count)
      throw std::runtime_error("the temporary file of its textures cannot be read");
    file.putBytes({block.data(), count});
    left -= count;
  }
  file.putZeros(padded(size) - size);
}

}  // namespace

void exportGlb(Model& model, std::string_view, Output& out) {
  GlbLayout layout = layOut(model);
  const EmbeddedImages images = embedImages(model);
  for (const auto& image : images.files) addImage(image->size(), layout);
  const auto writeDocument = [&](Output& to) { writeGlbDocument(model, layout, images, to); };
  writeFile(model, layout, out, writeDocument, [&](BinaryBlocks& file) {
    for (const auto& image : images.files) {
      file.putArray(std::span(*image));
      file.putZeros(padded(image->size()) - image->size());
    }
  });
}

void writeModernGlb(const ModernScene& scene, Output& out, Output&) {
  GlbLayout layout = layOut(scene.model);
  for (const ScenePicture& picture : scene.pictures) addImage(picture.size, layout);
  const auto writeDocument = [&](Output& to) { writeGlbDocument(scene, layout, to); };
  writeFile(scene.model, layout, out, writeDocument, [&](BinaryBlocks& file) {
    for (const ScenePicture& picture : scene.pictures) putEmbedded(scene, picture.size, file);
  });
}

void writeModernGltf(const ModernScene& scene, Output& out, Output& companion) {
  const GlbLayout layout = layOut(scene.model);
  writeGlbDocument(scene, layout, out);
  writeParts(scene.model, layout.parts, companion);
}

}  // namespace facet
