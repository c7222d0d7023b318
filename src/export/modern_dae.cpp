#include <array>

#include "export/mesh_text.h"
#include "export/modern_scene.h"
#include "export/text.h"

// COLLADA 1.4.1, valid by its schema: an image for each picture, an effect and a material for each look, a
// geometry and a node for each mesh. v counts from the lower edge of a picture.

namespace facet {

namespace {

/// The schema wants times; these are always the same, so that equal models give equal files.
constexpr std::string_view documentHead = R"(<?xml version="1.0" encoding="utf-8"?>
<COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" version="1.4.1">
<asset>
<contributor><authoring_tool>facetbench</authoring_tool></contributor>
<created>2000-01-01T00:00:00Z</created>
<modified>2000-01-01T00:00:00Z</modified>
<unit name="meter" meter="1"/>
<up_axis>)";

/// A name as the schema takes it: it begins with a letter or '_', and has no signs but these three.
std::string schemaName(std::string_view name) {
  constexpr auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  std::string result;
  for (size_t i = 0; i < name.size(); ++i) {
    const char c = name[i];
    if (isLetter(c) || (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '_') {
      result += c;
    } else if (c == '\xC3' && name[i + 1] != '\x97' && name[i + 1] != '\xB7') {  // letters with accents
      result += name.substr(i++, 2);
    } else {
      result += '_';
      if (c == '\xC2' || c == '\xC3') ++i;
    }
  }
  if (!isLetter(result[0]) && result[0] != '_' && result[0] != '\xC3') result.insert(0, "_");
  return result;
}

/// "_00007_stone"
std::string meshName(const MeshRef& mesh) {
  TextBuffer name;
  name.put(Padded{mesh.number, 5}, '_', mesh.scene->lookOf(mesh.mesh).name);
  return schemaName(name.view());
}

void putPictures(const ModernScene& scene, TextBlocks& text) {
  if (scene.pictures.empty()) return;  // the schema forbids libraries of nothing
  text.put("<library_images>\n");
  for (size_t i = 0; i < scene.pictures.size(); ++i) {
    text.put("<image id=\"picture", i, "\" name=\"", schemaName(scene.pictures[i].name), "\"><init_from>",
             percentEncoded(scene.pictures[i].path), "</init_from></image>\n");
  }
  text.put("</library_images>\n");
}

void putEffect(const Look& look, size_t number, TextBlocks& text) {
  text.put("<effect id=\"effect", number, "\"><profile_COMMON>\n");
  if (look.picture) {
    text.put("<newparam sid=\"surface", number, "\"><surface type=\"2D\"><init_from>picture", *look.picture,
             "</init_from></surface></newparam>\n");
    text.put("<newparam sid=\"sampler", number, "\"><sampler2D><source>surface", number,
             "</source></sampler2D></newparam>\n");
  }
  text.put("<technique sid=\"common\"><lambert>\n");
  const auto putTexture = [&] { text.put("<texture texture=\"sampler", number, "\" texcoord=\"UVMap\"/>"); };
  text.put("<diffuse>");
  if (look.picture) {
    putTexture();
  } else {
    const auto& [r, g, b, a] = look.color;
    text.put("<color>", r, ' ', g, ' ', b, " 1</color>");
  }
  text.put("</diffuse>\n");
  if (look.picture && look.alpha != Look::opaque) {
    text.put("<transparent opaque=\"A_ONE\">");
    putTexture();
    text.put("</transparent>\n");
  }
  text.put("</lambert></technique>\n</profile_COMMON></effect>\n");
}

void putLooks(const ModernScene& scene, TextBlocks& text) {
  const auto& looks = scene.looks;
  if (looks.empty()) return;
  text.put("<library_effects>\n");
  for (size_t i = 0; i < looks.size(); ++i) putEffect(looks[i], i, text);
  text.put("</library_effects>\n<library_materials>\n");
  for (size_t i = 0; i < looks.size(); ++i) {
    text.put("<material id=\"material", i, "\" name=\"", schemaName(looks[i].name),
             "\"><instance_effect url=\"#effect", i, "\"/></material>\n");
  }
  text.put("</library_materials>\n");
}

/// Opens a source of the mesh, such as "positions", with its array of floats.
void openSource(const MeshRef& mesh, std::string_view kind, uint32_t floatsPerVertex, TextBuffer& text) {
  const uint32_t m = mesh.number;
  text.put("<source id=\"mesh", m, '-', kind, "\"><float_array id=\"mesh", m, '-', kind, "-array\" count=\"",
           uint64_t{mesh.mesh.vertexCount} * floatsPerVertex, "\">\n");
}

/// Closes it; each letter of `axes` names one float of an element.
void closeSource(const MeshRef& mesh, std::string_view kind, std::string_view axes, TextBuffer& text) {
  text.put("</float_array>\n<technique_common><accessor source=\"#mesh", mesh.number, '-', kind,
           "-array\" count=\"", mesh.mesh.vertexCount, "\" stride=\"", axes.size(), "\">");
  for (const char axis : axes) text.put("<param name=\"", axis, "\" type=\"float\"/>");
  text.put("</accessor></technique_common></source>\n");
}

template <UpAxis up>
void putPositions(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  for (uint32_t i = first; i < end; ++i) {
    const Vertex& v = mesh.mesh.vertices[i];
    const Vector3 p = turned<up>(v.x, v.y, v.z);
    text.put(p.x, ' ', p.y, ' ', p.z, '\n');
  }
}

template <UpAxis up>
void putNormals(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  for (uint32_t i = first; i < end; ++i) {
    const Vector3& normal = mesh.mesh.normals[i];
    const Vector3 n = turned<up>(normal.x, normal.y, normal.z);
    text.put(n.x, ' ', n.y, ' ', n.z, '\n');
  }
}

void putTextureCoordinates(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  for (uint32_t i = first; i < end; ++i) {
    const Vertex& v = mesh.mesh.vertices[i];
    text.put(finite(v.u), ' ', finite(1.0F - v.v), '\n');
  }
}

void putTrianglesHead(const MeshRef& mesh, TextBuffer& text) {
  const uint32_t m = mesh.number;
  closeSource(mesh, "uv", "ST", text);
  text.put("<vertices id=\"mesh", m, "-vertices\"><input semantic=\"POSITION\" source=\"#mesh", m,
           "-positions\"/></vertices>\n");
  text.put("<triangles material=\"look\" count=\"", wholeIndexCount(mesh.mesh) / 3, "\">\n");
  text.put("<input semantic=\"VERTEX\" source=\"#mesh", m, "-vertices\" offset=\"0\"/>\n");
  text.put("<input semantic=\"NORMAL\" source=\"#mesh", m, "-normals\" offset=\"0\"/>\n");
  text.put("<input semantic=\"TEXCOORD\" source=\"#mesh", m, "-uv\" offset=\"0\" set=\"0\"/>\n<p>\n");
}

void putTriangles(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  forWholeTriangles(mesh.mesh, first, end,
                    [&](uint16_t a, uint16_t b, uint16_t c) { text.put(a, ' ', c, ' ', b, '\n'); });
}

// Each head closes the list before it.
template <UpAxis up>
constexpr std::array<MeshSection, 5> geometrySections{{
    {[](const MeshRef& mesh, TextBuffer& text) {
       text.put("<geometry id=\"mesh", mesh.number, "\" name=\"", meshName(mesh), "\"><mesh>\n");
       openSource(mesh, "positions", 3, text);
     },
     vertexCount, putPositions<up>},
    {[](const MeshRef& mesh, TextBuffer& text) {
       closeSource(mesh, "positions", "XYZ", text);
       openSource(mesh, "normals", 3, text);
     },
     vertexCount, putNormals<up>},
    {[](const MeshRef& mesh, TextBuffer& text) {
       closeSource(mesh, "normals", "XYZ", text);
       openSource(mesh, "uv", 2, text);
     },
     vertexCount, putTextureCoordinates},
    {putTrianglesHead, triangleCount, putTriangles},
    {[](const MeshRef&, TextBuffer& text) { text.put("</p></triangles>\n</mesh></geometry>\n"); }, nullptr,
     nullptr},
}};

void putNode(const MeshRef& mesh, TextBuffer& text) {
  text.put("<node id=\"node", mesh.number, "\" name=\"", meshName(mesh), "\"><instance_geometry url=\"#mesh",
           mesh.number, "\"><bind_material><technique_common>\n");
  text.put("<instance_material symbol=\"look\" target=\"#material", mesh.scene->lookNumber(mesh.mesh),
           "\"><bind_vertex_input semantic=\"UVMap\" input_semantic=\"TEXCOORD\" input_set=\"0\"/>",
           "</instance_material>\n</technique_common></bind_material></instance_geometry></node>\n");
}

constexpr std::array<MeshSection, 1> nodeSections{{{putNode, nullptr, nullptr}}};

}  // namespace

void writeModernDae(const ModernScene& scene, Output& out, Output&) {
  const MeshRange all{scene.model, 0, scene.model.meshCount, {}, &scene};
  const bool yUp = scene.up == UpAxis::y;
  const bool empty = std::ranges::none_of(scene.model.meshes, hasWholeTriangle);
  TextBlocks text(out);
  text.put(documentHead, yUp ? "Y_UP" : "Z_UP", "</up_axis>\n</asset>\n");
  putPictures(scene, text);
  putLooks(scene, text);
  text.finish();
  if (!empty) {
    out.write("<library_geometries>\n");
    writeMeshSections(all, out, yUp ? geometrySections<UpAxis::y> : geometrySections<UpAxis::z>);
    out.write("</library_geometries>\n");
  }
  out.write("<library_visual_scenes><visual_scene id=\"scene\" name=\"Model\">\n");
  if (empty) out.write("<node/>\n");  // a scene has at least one
  writeMeshSections(all, out, nodeSections);
  out.write(
      "</visual_scene></library_visual_scenes>\n"
      "<scene><instance_visual_scene url=\"#scene\"/></scene>\n</COLLADA>\n");
}

}  // namespace facet
