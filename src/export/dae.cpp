#include <array>

#include "export/export.h"
#include "export/mesh_text.h"
#include "export/text.h"

// COLLADA 1.4.1: an image for each material, one shared material, and a geometry for each mesh, instanced
// both from the node library and from the scene. Values stand as the model holds them; texture names go into
// the document as they are.

namespace facet {

namespace {

constexpr std::string_view documentHead = R"(<?xml version="1.0" encoding="utf-8"?>
<COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" version="1.4.1">
<asset>
<contributor>
<author>facetbench</author>
<authoring_tool>facetbench</authoring_tool>
</contributor>
<unit meter="1.00" name="meter"/>
<up_axis>Y_UP</up_axis>
</asset>
<library_images>
)";

constexpr std::string_view materialLibraries = R"(</library_images>
<library_materials>
<material id="__default_ID" name="__default_">
<instance_effect url="#__default_-effect"/>
</material>
</library_materials>
<library_effects>
<effect id="__default_-effect" name="__default_-effect">
<profile_COMMON>
<technique sid="COMMON">
<phong>
<emission><color>0.000000 0.000000 0.000000 1</color></emission>
<ambient><color>0.000000 0.000000 0.000000 1</color></ambient>
<diffuse><color>0.700000 0.700000 0.700000 1</color></diffuse>
<specular><color>0.330000 0.330000 0.330000 1</color></specular>
<shininess><float>20.000000</float></shininess>
<reflectivity><float>0.100000</float></reflectivity>
<transparent><color>1 1 1 1</color></transparent>
<transparency><float>0.000000</float></transparency>
</phong>
</technique>
</profile_COMMON>
</effect>
</library_effects>
<library_geometries>
)";

void writeDocumentHead(const Model& model, Output& out) {
  TextBlocks text(out);
  const auto materials = ownMaterials(model);
  text.put(documentHead);
  for (size_t i = 0; i < materials.size(); ++i) {
    text.put("<image id=\"file", i, "-image\" name=\"file", i, "\">\n<init_from>", materials[i].textureName,
             "</init_from>\n</image>\n");
  }
  text.put(materialLibraries);
  text.finish();
}

/// Opens a source of mesh m, such as "positions", named "position", with its array of `count` floats.
void openSource(uint32_t m, std::string_view kind, std::string_view name, uint64_t count, TextBuffer& text) {
  text.put("<source id=\"mesh", m, '-', kind, "\" name=\"", name, "\">\n<float_array id=\"mesh", m, '-', kind,
           "-array\" count=\"", count, "\">");
}

/// Closes it; each letter of `axes` names one float of an element.
void closeSource(const MeshRef& mesh, std::string_view kind, std::string_view axes, TextBuffer& text) {
  text.put("</float_array>\n<technique_common>\n<accessor source=\"#mesh", mesh.number, '-', kind,
           "-array\" count=\"", mesh.mesh.vertexCount, "\" stride=\"", axes.size(), "\">\n");
  for (const char axis : axes) text.put("<param name=\"", axis, "\" type=\"float\"/>\n");
  text.put("</accessor>\n</technique_common>\n</source>\n");
}

void putPositions(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  for (uint32_t i = first; i < end; ++i) {
    const Vertex& vertex = mesh.mesh.vertices[i];
    text.put(vertex.x, ' ', vertex.y, ' ', vertex.z, ' ');
  }
}

void putNormals(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  for (uint32_t i = first; i < end; ++i) {
    const Vector3& normal = mesh.mesh.normals[i];
    text.put(normal.x, ' ', normal.y, ' ', normal.z, ' ');
  }
}

void putTextureCoordinates(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  for (uint32_t i = first; i < end; ++i) {
    const Vertex& vertex = mesh.mesh.vertices[i];
    text.put(vertex.u, ' ', vertex.v, ' ');
  }
}

void putTrianglesHead(const MeshRef& mesh, TextBuffer& text) {
  const uint32_t m = mesh.number;
  closeSource(mesh, "uv", "ST", text);
  text.put("<vertices id=\"mesh", m, "-vertices\">\n<input semantic=\"POSITION\" source=\"#mesh", m,
           "-positions\"/>\n</vertices>\n");
  text.put("<triangles material=\"__default_\" count=\"", triangleCount(mesh.mesh), "\">\n");
  text.put("<input semantic=\"VERTEX\" source=\"#mesh", m, "-vertices\" offset=\"0\"/>\n");
  text.put("<input semantic=\"NORMAL\" source=\"#mesh", m, "-normals\" offset=\"1\"/>\n");
  text.put("<input semantic=\"TEXCOORD\" source=\"#mesh", m, "-uv\" offset=\"2\" set=\"0\"/>\n<p>");
}

void putIndices(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  for (uint32_t k = first; k < end; ++k) {
    const uint16_t index = mesh.mesh.indices[k];
    text.put(index, ' ', index, ' ', index, ' ');
  }
}

// Each head closes the list before it.
constexpr std::array<MeshSection, 5> geometrySections{{
    {[](const MeshRef& mesh, TextBuffer& text) {
       const uint32_t m = mesh.number;
       text.put("<geometry id=\"mesh", m, "-geometry\" name=\"mesh", m, "-geometry\">\n<mesh>\n");
       openSource(m, "positions", "position", uint64_t{mesh.mesh.vertexCount} * 3, text);
     },
     vertexCount, putPositions},
    {[](const MeshRef& mesh, TextBuffer& text) {
       closeSource(mesh, "positions", "XYZ", text);
       openSource(mesh.number, "normals", "normal", uint64_t{mesh.mesh.vertexCount} * 3, text);
     },
     vertexCount, putNormals},
    {[](const MeshRef& mesh, TextBuffer& text) {
       closeSource(mesh, "normals", "XYZ", text);
       openSource(mesh.number, "uv", "uv", uint64_t{mesh.mesh.vertexCount} * 2, text);
     },
     vertexCount, putTextureCoordinates},
    {putTrianglesHead, indexCount, putIndices},
    {[](const MeshRef&, TextBuffer& text) { text.put("</p>\n</triangles>\n</mesh>\n</geometry>\n"); },
     nullptr, nullptr},
}};

void openNodes(uint32_t m, TextBuffer& text) {
  text.put("<node id=\"Group_", m, "\" name=\"Group_", m, "\">\n<node id=\"mesh", m, "\" name=\"mesh", m,
           "\">\n");
  text.put("<instance_geometry url=\"#mesh", m, "-geometry\">\n<bind_material>\n<technique_common>\n",
           "<instance_material symbol=\"__default_\" target=\"#__default_ID\"");
}

constexpr std::string_view bindTextureCoordinates =
    "<bind_vertex_input semantic=\"UVSET0\" input_semantic=\"TEXCOORD\" input_set=\"0\"/>\n";
constexpr std::string_view closeNodes =
    "</technique_common>\n</bind_material>\n</instance_geometry>\n</node>\n</node>\n";

// In the library the binding stands inside its material instance, in the scene behind it.
constexpr std::array<MeshSection, 1> librarySections{{{[](const MeshRef& mesh, TextBuffer& text) {
                                                         openNodes(mesh.number, text);
                                                         text.put('>', bindTextureCoordinates,
                                                                  "</instance_material>\n", closeNodes);
                                                       },
                                                       nullptr, nullptr}}};
constexpr std::array<MeshSection, 1> sceneSections{{{[](const MeshRef& mesh, TextBuffer& text) {
                                                       openNodes(mesh.number, text);
                                                       text.put("/>", bindTextureCoordinates, closeNodes);
                                                     },
                                                     nullptr, nullptr}}};

}  // namespace

void exportDae(Model& model, std::string_view, Output& out) {
  writeDocumentHead(model, out);
  writeMeshSections(model, out, geometrySections);
  out.write("</library_geometries>\n<library_nodes>\n");
  writeMeshSections(model, out, librarySections);
  out.write(
      "</library_nodes>\n<library_visual_scenes>\n"
      "<visual_scene id=\"defScene\" name=\"defScene\">\n<node id=\"Model\" name=\"Model\">\n");
  writeMeshSections(model, out, sceneSections);
  out.write(
      "</node>\n</visual_scene>\n</library_visual_scenes>\n"
      "<scene>\n<instance_visual_scene url=\"#defScene\"/>\n</scene>\n</COLLADA>\n");
}

}  // namespace facet
