#include <array>
#include <cmath>
#include <cstring>
#include <stdexcept>

#include "export/binary_blocks.h"
#include "export/mesh_text.h"
#include "export/modern_scene.h"
#include "platform/parallel.h"

// Binary stereolithography: a header of 80 bytes, the number of triangles, and for each its normal, its three
// corners and a word of no meaning.

namespace facet {

namespace {

/// Of length 1; zeros for a triangle without area.
Vector3 facetNormal(const Vector3& a, const Vector3& b, const Vector3& c) {
  const double ux = double{b.x} - a.x, uy = double{b.y} - a.y, uz = double{b.z} - a.z;
  const double vx = double{c.x} - a.x, vy = double{c.y} - a.y, vz = double{c.z} - a.z;
  const double x = uy * vz - uz * vy, y = uz * vx - ux * vz, z = ux * vy - uy * vx;
  const double length = std::sqrt(x * x + y * y + z * z);
  if (!(length > 0)) return {};
  return {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length)};
}

template <UpAxis up>
void putFacets(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& bytes) {
  constexpr size_t facetSize = 50;
  char* to = bytes.extend(facetSize * (end - first));
  const auto corner = [&](uint16_t index) {
    const Vertex& v = mesh.mesh.vertices[index];
    return turned<up>(v.x, v.y, v.z);
  };
  forWholeTriangles(mesh.mesh, first, end, [&](uint16_t indexA, uint16_t indexB, uint16_t indexC) {
    const Vector3 a = corner(indexA), b = corner(indexC), c = corner(indexB);
    const Vector3 facet[] = {facetNormal(a, b, c), a, b, c};
    std::memcpy(to, facet, sizeof facet);
    std::memset(to + sizeof facet, 0, facetSize - sizeof facet);
    to += facetSize;
  });
  bytes.endAt(to);
}

template <UpAxis up>
constexpr std::array<MeshSection, 1> sections{{{nullptr, triangleCount, putFacets<up>}}};

uint32_t wholeTriangles(const Model& model) {
  std::vector<uint32_t> counts(model.meshCount);
  parallelFor(
      counts.size(), [&](size_t i) { counts[i] = wholeIndexCount(model.meshes[i]) / 3; },
      usefulThreads(model));
  uint64_t sum = 0;
  for (const uint32_t count : counts) sum += count;
  if (sum > UINT32_MAX) throw std::runtime_error("the format holds at most 4,294,967,295 triangles");
  return static_cast<uint32_t>(sum);
}

}  // namespace

void writeModernStl(const ModernScene& scene, Output& out, Output&) {
  BinaryBlocks head(out);
  head.putName("binary STL of facetbench", 80);
  head.put(wholeTriangles(scene.model));
  head.finish();
  const auto& all = scene.up == UpAxis::y ? sections<UpAxis::y> : sections<UpAxis::z>;
  writeMeshSections(MeshRange{scene.model, 0, scene.model.meshCount, {}, &scene}, out, all);
}

}  // namespace facet
