#include <array>

#include "export/export.h"
#include "export/mesh_text.h"

// AutoCAD DXF: a layer for each mesh and a 3DFACE for each triangle. The file is z-up, so y and z change
// places, and corners run backwards to keep faces looking outward; the fourth corner repeats the last one.

namespace facet {

namespace {

/// Colours are 1 to 255, in turn.
uint32_t layerColor(const Mesh& mesh) {
  const uint32_t color = (mesh.materialIndex & 0xFF) + 1;
  return color == 256 ? 1 : color;
}

constexpr std::string_view layerTableHead =
    "  0\nSECTION\n  2\nHEADER\n  0\nENDSEC\n"
    "  0\nSECTION\n  2\nTABLES\n  0\nTABLE\n  2\nLAYER\n  70\n153\n";

void putLayer(const MeshRef& mesh, TextBuffer& text) {
  text.put("  0\nLAYER\n  2\nMesh", Padded{mesh.number, 5}, "\n 70\n0\n 62\n", layerColor(mesh.mesh),
           "\n  6\nCONTINUOUS\n");
}

void putFaces(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  forTriangles(mesh.mesh, first, end, [&](uint32_t, uint16_t indexA, uint16_t indexB, uint16_t indexC) {
    const Vertex a = cornerAt(mesh.mesh, indexA).vertex;
    const Vertex b = cornerAt(mesh.mesh, indexB).vertex;
    const Vertex c = cornerAt(mesh.mesh, indexC).vertex;
    text.put("  0\n3DFACE\n  8\nMesh", Padded{mesh.number, 5}, '\n', " 10\n", c.x, "\n 20\n", c.z, "\n 30\n",
             c.y, '\n', " 11\n", b.x, "\n 21\n", b.z, "\n 31\n", b.y, '\n', " 12\n", a.x, "\n 22\n", a.z,
             "\n 32\n", a.y, '\n', " 13\n", a.x, "\n 23\n", a.z, "\n 33\n", a.y, '\n');
  });
}

constexpr std::array<MeshSection, 1> layers{{{putLayer, nullptr, nullptr}}};
constexpr std::array<MeshSection, 1> faces{{{nullptr, triangleCount, putFaces}}};

}  // namespace

void exportDxf(Model& model, std::string_view, Output& out) {
  out.write(layerTableHead);
  writeMeshSections(model, out, layers);
  out.write("  0\nENDTAB\n  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n");
  writeMeshSections(model, out, faces);
  out.write("  0\nENDSEC\n  0\nEOF\n");
}

}  // namespace facet
