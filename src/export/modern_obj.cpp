#include <array>

#include "export/mesh_text.h"
#include "export/modern_scene.h"
#include "export/text.h"

// Wavefront OBJ with its material library beside it. v counts from the lower edge of a picture.

namespace facet {

namespace {

void writeLibrary(const ModernScene& scene, Output& out) {
  TextBlocks text(out);
  text.put("# facetbench\n");
  for (const Look& look : scene.looks) {
    const ScenePicture* picture = scene.pictureOf(look);
    const auto& [r, g, b, a] = look.color;
    text.put("\nnewmtl ", look.name, '\n');
    for (const std::string_view name : {"Ka ", "Kd "}) text.put(name, r, ' ', g, ' ', b, '\n');
    text.put("Ks 0 0 0\nillum 1\nd 1\n");
    if (picture == nullptr) continue;
    text.put("map_Kd ", picture->path, '\n');
    if (look.alpha != Look::opaque) text.put("map_d ", picture->path, '\n');
  }
  text.finish();
}

constexpr EntryStyle positionLine{"v ", " ", "\n"}, normalLine{"vn ", " ", "\n"},
    textureLine{"vt ", " ", "\n"};

void putHead(const MeshRef& mesh, TextBuffer& text) {
  const std::string& name = mesh.scene->lookOf(mesh.mesh).name;
  text.put("o ", Padded{mesh.number, 5}, '_', name, "\ng ", name, "\nusemtl ", name, '\n');
}

/// List numbers start at 1 and run through the whole file.
void putFaces(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  const DistinctLists& lists = mesh.lists->lists;
  const ListNumbers& before = mesh.lists->before;
  const auto putCorner = [&](uint16_t index) {
    text.put(' ', before.positions + 1 + lists.positions.places[index], '/',
             before.textureCoordinates + 1 + lists.textureCoordinates.places[index], '/',
             before.normals + 1 + lists.normals.places[index]);
  };
  forWholeTriangles(mesh.mesh, first, end, [&](uint16_t a, uint16_t b, uint16_t c) {
    text.put('f');
    putCorner(a);
    putCorner(c);
    putCorner(b);
    text.put('\n');
  });
}

template <UpAxis up>
constexpr std::array<MeshSection, 4> sections{{
    {putHead, vertexCount, putPositions<positionLine, turned<up>>},
    {nullptr, vertexCount, putNormals<normalLine, turned<up>>},
    {nullptr, vertexCount, putTextureCoordinates<textureLine, finite>},
    {nullptr, triangleCount, putFaces},
}};

}  // namespace

void writeModernObj(const ModernScene& scene, Output& out, Output& companion) {
  writeLibrary(scene, companion);
  out.write("# facetbench\nmtllib " + scene.companion + '\n');
  const auto& all = scene.up == UpAxis::y ? sections<UpAxis::y> : sections<UpAxis::z>;
  writeDistinctSections(scene.model, out, all, &scene);
}

}  // namespace facet
