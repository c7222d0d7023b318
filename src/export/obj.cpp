#include <array>

#include "export/export.h"
#include "export/mesh_text.h"
#include "export/text.h"

// Wavefront OBJ with its material library in the same file. The z axis is mirrored, and the second and third
// corner of each triangle change places so that faces still look outward.

namespace facet {

namespace {

void writeHead(const Model& model, std::string_view fileName, Output& out) {
  TextBlocks text(out);
  const auto materials = ownMaterials(model);
  text.put("# This file uses meters as units for non-parametric coordinates.\n");
  text.put("# materials : ", materials.size(), '\n');
  for (size_t i = 0; i < materials.size(); ++i) {
    text.put("newmtl material", i, "\n Ka 0.5000 0.5000 0.5000\n Kd 1.0000 1.0000 1.0000\n illum 1\n");
    text.put(" map_Ka ", materials[i].textureName, '\n');
    text.put(" map_Kd ", materials[i].textureName, "\n\n");
  }
  text.put("mtllib ", fileName, '\n');
  text.put("# meshes : ", model.meshCount, '\n');
  text.finish();
}

constexpr EntryStyle positionLine{"v ", " ", "\n"}, normalLine{"vn ", " ", "\n"},
    textureLine{"vt ", " ", "\n"};

/// List numbers start at 1 and run through the whole file.
void putFaces(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  const DistinctLists& lists = mesh.lists->lists;
  const ListNumbers& before = mesh.lists->before;
  const auto putCorner = [&](uint16_t index) {
    text.put(' ', before.positions + 1 + placeOf(lists.positions, index), '/',
             before.textureCoordinates + 1 + placeOf(lists.textureCoordinates, index), '/',
             before.normals + 1 + placeOf(lists.normals, index));
  };
  forTriangles(mesh.mesh, first, end, [&](uint32_t, uint16_t a, uint16_t b, uint16_t c) {
    text.put('f');
    putCorner(a);
    putCorner(c);
    putCorner(b);
    text.put('\n');
  });
}

constexpr std::array<MeshSection, 4> sections{{
    {[](const MeshRef& mesh, TextBuffer& text) {
       const uint32_t material = mesh.mesh.materialIndex;
       text.put("g Group", Padded{material, 5}, "\nusemtl material", material, '\n');
       text.put("o Mesh", Padded{mesh.number, 5}, '\n');
       putListSize("# vertices : ", mesh.lists->lists.positions, mesh.mesh, text);
     },
     vertexCount, putPositions<positionLine>},
    {[](const MeshRef& mesh, TextBuffer& text) {
       putListSize("# normales : ", mesh.lists->lists.normals, mesh.mesh, text);
     },
     vertexCount, putNormals<normalLine>},
    {[](const MeshRef& mesh, TextBuffer& text) {
       putListSize("# uv's : ", mesh.lists->lists.textureCoordinates, mesh.mesh, text);
     },
     vertexCount, putTextureCoordinates<textureLine>},
    {[](const MeshRef& mesh, TextBuffer& text) {
       text.put("# faces : ", printedTriangles(mesh.mesh), '\n');
       text.put("# indices : ", mesh.mesh.indexCount, '\n');
     },
     printedTriangles, putFaces},
}};

}  // namespace

void exportObj(Model& model, std::string_view fileName, Output& out) {
  writeHead(model, fileName, out);
  writeDistinctSections(model, out, sections);
}

}  // namespace facet
