#include <array>

#include "export/export.h"
#include "export/mesh_text.h"
#include "export/text.h"

// POV-Ray 3.6: a fixed camera and light, a grey texture for each material, and a mesh2 with its object for
// each mesh. Axes and corners as in OBJ; list numbers start at 0 in every mesh.

namespace facet {

namespace {

void writeSceneHead(const Model& model, Output& out) {
  TextBlocks text(out);
  text.put(
      "// This file uses meters as units for non-parametric coordinates.\n"
      "#version 3.6;\n"
      "#include \"colors.inc\"\n#include \"functions.inc\"\n#include \"logo.inc\"\n"
      "global_settings { assumed_gamma 2.0 }\n"
      "camera {location <0,5,-10> direction y sky z up z right (4/3)*x look_at <0, 0, 0> angle 90 }\n"
      "background {color rgb < 0.30, 0.30, 0.30 >}\nlight_source {<1000,3000,0> rgb <1.0, 0.8, 0.4>}\n");
  const auto materials = ownMaterials(model);
  text.put("// materials : ", materials.size(), '\n');
  for (uint32_t i = 0; i < materials.size(); ++i) {
    text.put("#declare Material_", Padded{i, 5}, " = texture { // ", materials[i].textureName,
             " \n   pigment { rgb 0.5 }\n   finish { phong 1 ambient 0.3 diffuse 0.7 specular 1.0 }\n}\n");
  }
  text.put("// meshes : ", model.meshCount, '\n');
  text.finish();
}

constexpr EntryStyle entry{"   <", ",", ">,\n"};

/// Triangles by their corners' places in one of the mesh's lists.
template <DistinctList DistinctLists::*list>
void putTriangles(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  const DistinctList& entries = mesh.lists->lists.*list;
  forTriangles(mesh.mesh, first, end, [&](uint32_t, uint16_t a, uint16_t b, uint16_t c) {
    text.put("   <", placeOf(entries, a), ',', placeOf(entries, c), ',', placeOf(entries, b), ">,\n");
  });
}

constexpr std::array<MeshSection, 7> sections{{
    {[](const MeshRef& mesh, TextBuffer& text) {
       const DistinctList& list = mesh.lists->lists.positions;
       putListSize("// vertices : ", list, mesh.mesh, text);
       text.put("#declare Mesh_", Padded{mesh.number, 5}, "=\nmesh2{\n  vertex_vectors{\n   ", list.size(),
                '\n');
     },
     vertexCount, putPositions<entry>},
    {[](const MeshRef& mesh, TextBuffer& text) {
       const DistinctList& list = mesh.lists->lists.normals;
       text.put("}\n");
       putListSize("// normales : ", list, mesh.mesh, text);
       text.put("  normal_vectors{\n   ", list.size(), '\n');
     },
     vertexCount, putNormals<entry>},
    {[](const MeshRef& mesh, TextBuffer& text) {
       const DistinctList& list = mesh.lists->lists.textureCoordinates;
       text.put("}\n");
       putListSize("// uv's : ", list, mesh.mesh, text);
       text.put("  uv_vectors{\n   ", list.size(), '\n');
     },
     vertexCount, putTextureCoordinates<entry>},
    {[](const MeshRef& mesh, TextBuffer& text) {
       const uint32_t triangles = printedTriangles(mesh.mesh);
       text.put("}\n// faces : ", triangles, "\n// indices : ", mesh.mesh.indexCount, '\n');
       text.put("  face_indices{\n   ", triangles, '\n');
     },
     printedTriangles, putTriangles<&DistinctLists::positions>},
    {[](const MeshRef& mesh, TextBuffer& text) {
       text.put("  }\n  normal_indices{\n   ", printedTriangles(mesh.mesh), '\n');
     },
     printedTriangles, putTriangles<&DistinctLists::normals>},
    {[](const MeshRef& mesh, TextBuffer& text) {
       text.put("  }\n  uv_indices{\n   ", printedTriangles(mesh.mesh), '\n');
     },
     printedTriangles, putTriangles<&DistinctLists::textureCoordinates>},
    {[](const MeshRef& mesh, TextBuffer& text) {
       text.put("  }\n  uv_mapping\n  texture { Material_", Padded{mesh.mesh.materialIndex, 5}, " }\n}\n");
       text.put("object {\n  Mesh_", Padded{mesh.number, 5},
                "\n  translate <0,0,0>\n  rotate <0,clock,0>\n}\n");
     },
     nullptr, nullptr},
}};

}  // namespace

void exportPov(Model& model, std::string_view, Output& out) {
  writeSceneHead(model, out);
  writeDistinctSections(model, out, sections);
}

}  // namespace facet
