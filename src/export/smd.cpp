#include <array>

#include "export/export.h"
#include "export/mesh_text.h"

// Valve SMD: every triangle with its material and three whole vertices, bound to one root bone at rest. The
// file is z-up, so y and z change places, and corners run backwards to keep faces looking outward.

namespace facet {

namespace {

void putCorner(const Corner& corner, TextBuffer& text) {
  const auto& [vertex, normal] = corner;
  text.put("0 ", vertex.x, ' ', vertex.z, ' ', vertex.y, ' ', normal.x, ' ', normal.z, ' ', normal.y, ' ',
           vertex.u, ' ', 1.0F - vertex.v, '\n');
}

void putTriangles(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  const std::string_view material = textureNameOf(mesh.model, mesh.mesh);
  forTriangles(mesh.mesh, first, end, [&](uint32_t, uint16_t a, uint16_t b, uint16_t c) {
    text.put(material, '\n');
    for (const uint16_t index : {c, b, a}) putCorner(cornerAt(mesh.mesh, index), text);
  });
}

constexpr std::array<MeshSection, 1> sections{{{nullptr, triangleCount, putTriangles}}};

}  // namespace

void exportSmd(Model& model, std::string_view, Output& out) {
  out.write(
      "version 1\nnodes\n0 \"root\" -1\nend\nskeleton\ntime 0\n"
      "0 0.000000 0.000000 0.000000 0.000000 0.000000 0.000000\nend\ntriangles\n");
  writeMeshSections(model, out, sections);
  out.write("end\n");
}

}  // namespace facet
