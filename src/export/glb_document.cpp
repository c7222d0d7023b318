#include "export/glb_document.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <map>
#include <string>
#include <string_view>

#include "export/modern_scene.h"
#include "export/text.h"
#include "picture/image.h"
#include "platform/parallel.h"

namespace facet {

EmbeddedImages embedImages(const Model& model) {
  const auto materials = ownMaterials(model);
  const auto cache = model.images ? model.images : std::make_shared<ImageCache>();
  std::map<std::string, size_t> places;
  std::vector<const std::string*> paths;
  for (const Material& material : materials) {
    if (material.hasTexture == 0 || material.textureFile.empty()) continue;
    const auto [place, isNew] = places.try_emplace(material.textureFile, paths.size());
    if (isNew) paths.push_back(&place->first);
  }
  std::vector<std::shared_ptr<const std::vector<std::byte>>> pictures(paths.size());
  parallelFor(paths.size(), [&](size_t i) { pictures[i] = cache->png(*paths[i]); });

  EmbeddedImages images;
  std::vector<std::optional<uint32_t>> kept(paths.size());
  for (size_t i = 0; i < pictures.size(); ++i) {
    if (!pictures[i]) continue;
    kept[i] = static_cast<uint32_t>(images.files.size());
    images.files.push_back(std::move(pictures[i]));
  }
  for (const Material& material : materials) {
    const auto place = places.find(material.textureFile);
    const bool shown = material.hasTexture != 0 && place != places.end();
    images.ofMaterial.push_back(shown ? kept[place->second] : std::nullopt);
  }
  return images;
}

namespace {

enum ComponentType { unsignedShort = 5123, unsignedInt = 5125, floatType = 5126 };
enum BufferTarget { vertexTarget = 34962, indexTarget = 34963 };

/// What each part has in the document's lists, one after another.
enum ViewOfPart { vertexView, indexView, viewsPerPart };
enum AccessorOfPart { positions, normals, textureCoordinates, corners, accessorsPerPart };

/// The shortest text that reads back as this number.
std::string number(double value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string vector(const Vector3& v) {
  return '[' + number(v.x) + ',' + number(v.y) + ',' + number(v.z) + ']';
}

/// Names are bytes of an unknown code page: what is no UTF-8 becomes the replacement character.
std::string quoted(const std::string& name) {
  return nlohmann::json(name).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// A list of the document's; one without elements is not allowed and left out.
template <class Put>
void putList(std::string_view name, size_t count, TextBlocks& text, Put put) {
  if (count == 0) return;
  text.put(",\"", name, "\":[");
  for (size_t i = 0; i < count; ++i) {
    if (i > 0) text.put(',');
    put(i);
  }
  text.put(']');
}

/// The mesh of the part at this place; the name has quotes.
void putMesh(std::string_view name, std::optional<uint32_t> material, size_t place, TextBlocks& text) {
  const size_t first = place * accessorsPerPart;
  text.put("{\"name\":", name, ",\"primitives\":[{\"attributes\":{\"POSITION\":", first + positions,
           ",\"NORMAL\":", first + normals, ",\"TEXCOORD_0\":", first + textureCoordinates,
           "},\"indices\":", first + corners);
  if (material) text.put(",\"material\":", *material);
  text.put("}]}");
}

/// Colour factors are linear, the model's colours are those of the screen.
std::string linear(float channel) {
  return number(std::pow(static_cast<double>(channel), 2.2));
}

/// The render flags' alpha test and blending, and the drawing of both sides that goes with them.
void putAlpha(uint8_t flags, TextBlocks& text) {
  constexpr uint8_t blending = renderBlend | renderLightPlane;
  if ((flags & (renderAlphaTest | blending)) == 0) return;
  text.put(",\"doubleSided\":true,\"alphaMode\":");
  if ((flags & blending) != 0) {
    text.put("\"BLEND\"");
  } else {
    const double cutoff = flags == renderAlphaTest ? 128 / 255.0 : 1 / 255.0;  // the test is "above 0"
    text.put("\"MASK\",\"alphaCutoff\":", number(cutoff));
  }
}

void putSurface(const std::string& name, std::optional<uint32_t> image, const std::array<float, 4>& color,
                TextBlocks& text) {
  text.put("{\"name\":", quoted(name),
           ",\"pbrMetallicRoughness\":{\"metallicFactor\":0,\"roughnessFactor\":1,");
  if (image) {
    text.put("\"baseColorTexture\":{\"index\":", *image, "}}");
  } else {
    const auto& [r, g, b, a] = color;
    text.put("\"baseColorFactor\":[", linear(r), ',', linear(g), ',', linear(b), ',', number(a), "]}");
  }
}

void putMaterial(const Material& material, size_t place, std::optional<uint32_t> image, TextBlocks& text) {
  const std::string name =
      material.textureName.empty() ? "material" + std::to_string(place) : material.textureName;
  putSurface(name, image, material.color, text);
  putAlpha(material.renderFlags, text);
  text.put('}');
}

bool isPlainUnlit(const Look& look) {
  return look.unlit && !look.glows();
}

void putLook(const Look& look, TextBlocks& text) {
  if (look.picture && look.glows())
    text.put(
        "{\"name\":", quoted(look.name),
        ",\"pbrMetallicRoughness\":{\"metallicFactor\":0,\"roughnessFactor\":1,\"baseColorFactor\":[0,0,0,1],"
        "\"baseColorTexture\":{\"index\":",
        *look.picture, "}},\"emissiveFactor\":[1,1,1],\"emissiveTexture\":{\"index\":", *look.picture, '}');
  else
    putSurface(look.name, look.picture, look.color, text);
  if (look.twoSided) text.put(",\"doubleSided\":true");
  if (look.alpha == Look::blend) text.put(",\"alphaMode\":\"BLEND\"");
  if (look.alpha == Look::test) text.put(",\"alphaMode\":\"MASK\",\"alphaCutoff\":", number(look.cutoff));
  if (isPlainUnlit(look)) text.put(",\"extensions\":{\"KHR_materials_unlit\":{}}");
  text.put('}');
}

void putAccessor(size_t view, uint32_t offset, ComponentType component, uint32_t count, std::string_view type,
                 TextBlocks& text) {
  text.put("{\"bufferView\":", view, ",\"byteOffset\":", offset, ",\"componentType\":", int{component},
           ",\"count\":", count, ",\"type\":\"", type, '"');
}

void putAccessors(const Model& model, const GlbPart& part, size_t place, TextBlocks& text) {
  const Mesh& mesh = model.meshes[part.mesh];
  const size_t view = place * viewsPerPart;
  putAccessor(view + vertexView, 0, floatType, mesh.vertexCount, "VEC3", text);
  text.put(",\"min\":", vector(part.bounds.low), ",\"max\":", vector(part.bounds.high), "},");
  putAccessor(view + vertexView, 12, floatType, mesh.vertexCount, "VEC3", text);
  text.put("},");
  putAccessor(view + vertexView, 24, floatType, mesh.vertexCount, "VEC2", text);
  text.put("},");
  const ComponentType index = glbIndexSize(mesh) == 2 ? unsignedShort : unsignedInt;
  putAccessor(view + indexView, 0, index, part.indexCount, "SCALAR", text);
  text.put('}');
}

void putView(uint64_t offset, uint64_t size, TextBlocks& text) {
  text.put("{\"buffer\":0,\"byteOffset\":", offset, ",\"byteLength\":", size);
}

void putViews(const Model& model, const GlbPart& part, TextBlocks& text) {
  const Mesh& mesh = model.meshes[part.mesh];
  putView(part.verticesAt, uint64_t{glbVertexSize} * mesh.vertexCount, text);
  text.put(",\"byteStride\":", glbVertexSize, ",\"target\":", int{vertexTarget}, "},");
  putView(part.indicesAt, uint64_t{part.indexCount} * glbIndexSize(mesh), text);
  text.put(",\"target\":", int{indexTarget}, '}');
}

void putHead(TextBlocks& text) {
  text.put("{\"asset\":{\"version\":\"2.0\",\"generator\":\"facetbench\"}");
}

void putScene(const GlbLayout& layout, TextBlocks& text) {
  text.put(",\"scene\":0,\"scenes\":[{\"name\":\"Model\"");
  putList("nodes", layout.parts.size(), text, [&](size_t i) { text.put(i); });
  text.put("}]");
}

void putTextures(size_t count, TextBlocks& text) {
  putList("textures", count, text, [&](size_t i) { text.put("{\"source\":", i, '}'); });
}

/// What an image has where it stands in the binary chunk.
void putImageView(const GlbLayout& layout, size_t image, TextBlocks& text) {
  text.put("\"bufferView\":", layout.parts.size() * viewsPerPart + image, ",\"mimeType\":\"image/png\"");
}

void putBinary(const Model& model, const GlbLayout& layout, TextBlocks& text) {
  const auto& parts = layout.parts;
  const auto& images = layout.images;
  putList("accessors", parts.size(), text, [&](size_t i) { putAccessors(model, parts[i], i, text); });
  putList("bufferViews", parts.size() + images.size(), text, [&](size_t i) {
    if (i < parts.size()) return putViews(model, parts[i], text);
    putView(images[i - parts.size()].at, images[i - parts.size()].size, text);
    text.put('}');
  });
}

/// "Mesh00007", in quotes.
std::string meshName(const GlbPart& part) {
  TextBuffer name;
  name.put("\"Mesh", Padded{part.mesh, 5}, '"');
  return std::string(name.view());
}

/// "00007_stone", in quotes.
std::string meshName(const ModernScene& scene, const GlbPart& part) {
  TextBuffer name;
  name.put(Padded{part.mesh, 5}, '_', scene.lookOf(scene.model.meshes[part.mesh]).name);
  return quoted(std::string(name.view()));
}

}  // namespace

void writeGlbDocument(const Model& model, const GlbLayout& layout, const EmbeddedImages& images,
                      Output& out) {
  const auto& parts = layout.parts;
  const auto materials = ownMaterials(model);
  TextBlocks text(out);
  putHead(text);
  putScene(layout, text);
  putList("nodes", parts.size(), text,
          [&](size_t i) { text.put("{\"name\":", meshName(parts[i]), ",\"mesh\":", i, '}'); });
  putList("meshes", parts.size(), text, [&](size_t i) {
    const uint32_t material = model.meshes[parts[i].mesh].materialIndex;
    putMesh(meshName(parts[i]), material < materials.size() ? std::optional(material) : std::nullopt, i,
            text);
  });
  putList("materials", materials.size(), text,
          [&](size_t i) { putMaterial(materials[i], i, images.ofMaterial[i], text); });
  putTextures(images.files.size(), text);
  putList("images", images.files.size(), text, [&](size_t i) {
    text.put('{');
    putImageView(layout, i, text);
    text.put('}');
  });
  putBinary(model, layout, text);
  if (layout.size != 0) text.put(",\"buffers\":[{\"byteLength\":", layout.size, "}]");
  text.put('}');
  text.finish();
}

void writeGlbDocument(const ModernScene& scene, const GlbLayout& layout, Output& out) {
  const auto& parts = layout.parts;
  TextBlocks text(out);
  putHead(text);
  if (std::ranges::any_of(scene.looks, isPlainUnlit))
    text.put(",\"extensionsUsed\":[\"KHR_materials_unlit\"]");
  putScene(layout, text);
  putList("nodes", parts.size(), text, [&](size_t i) {
    text.put("{\"name\":", meshName(scene, parts[i]), ",\"mesh\":", i);
    if (scene.up == UpAxis::z) text.put(",\"matrix\":[1,0,0,0,0,0,1,0,0,-1,0,0,0,0,0,1]");
    text.put('}');
  });
  putList("meshes", parts.size(), text, [&](size_t i) {
    putMesh(meshName(scene, parts[i]), scene.lookNumber(scene.model.meshes[parts[i].mesh]), i, text);
  });
  putList("materials", scene.looks.size(), text, [&](size_t i) { putLook(scene.looks[i], text); });
  putTextures(scene.pictures.size(), text);
  putList("images", scene.pictures.size(), text, [&](size_t i) {
    const ScenePicture& picture = scene.pictures[i];
    text.put("{\"name\":", quoted(picture.name), ',');
    if (picture.path.empty())
      putImageView(layout, i, text);
    else
      text.put("\"uri\":", quoted(percentEncoded(picture.path)));
    text.put('}');
  });
  putBinary(scene.model, layout, text);
  if (layout.size != 0) {
    text.put(",\"buffers\":[{\"byteLength\":", layout.size);
    if (!scene.companion.empty()) text.put(",\"uri\":", quoted(percentEncoded(scene.companion)));
    text.put("}]");
  }
  text.put('}');
  text.finish();
}

}  // namespace facet
