#include <array>

#include "export/export.h"
#include "export/mesh_text.h"

// One ASCII stereolithography solid of all triangles. A facet's normal is that of its first corner.

namespace facet {

namespace {

void putTriangles(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  forTriangles(mesh.mesh, first, end, [&](uint32_t, uint16_t indexA, uint16_t indexB, uint16_t indexC) {
    const auto [a, normal] = cornerAt(mesh.mesh, indexA);
    const Vertex b = cornerAt(mesh.mesh, indexB).vertex, c = cornerAt(mesh.mesh, indexC).vertex;
    text.put(" facet normal ", normal.x, ' ', normal.y, ' ', normal.z, "\n  outer loop\n", "   vertex ", a.x,
             ' ', a.y, ' ', a.z, '\n', "   vertex ", b.x, ' ', b.y, ' ', b.z, '\n', "   vertex ", c.x, ' ',
             c.y, ' ', c.z, '\n', "  endloop\n endfacet\n");
  });
}

constexpr std::array<MeshSection, 1> sections{{{nullptr, triangleCount, putTriangles}}};

}  // namespace

void exportStl(Model& model, std::string_view, Output& out) {
  out.write("solid Object0000\n");
  writeMeshSections(model, out, sections);
  out.write("endsolid Object0000\n");
}

}  // namespace facet
