#include "export/glb_document.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <map>
#include <string>
#include <string_view>

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

void putMesh(const Model& model, const GlbPart& part, size_t place, TextBlocks& text) {
  const size_t first = place * accessorsPerPart;
  text.put("{\"name\":\"Mesh", Padded{part.mesh, 5},
           "\",\"primitives\":[{\"attributes\":{\"POSITION\":", first + positions,
           ",\"NORMAL\":", first + normals, ",\"TEXCOORD_0\":", first + textureCoordinates,
           "},\"indices\":", first + corners);
  const uint32_t material = model.meshes[part.mesh].materialIndex;
  if (material < ownMaterials(model).size()) text.put(",\"material\":", material);
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

void putMaterial(const Material& material, size_t place, std::optional<uint32_t> image, TextBlocks& text) {
  const std::string name =
      material.textureName.empty() ? "material" + std::to_string(place) : material.textureName;
  text.put("{\"name\":", quoted(name),
           ",\"pbrMetallicRoughness\":{\"metallicFactor\":0,\"roughnessFactor\":1,");
  if (image) {
    text.put("\"baseColorTexture\":{\"index\":", *image, "}}");
  } else {
    const auto& [r, g, b, a] = material.color;
    text.put("\"baseColorFactor\":[", linear(r), ',', linear(g), ',', linear(b), ',', number(a), "]}");
  }
  putAlpha(material.renderFlags, text);
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

}  // namespace

void writeGlbDocument(const Model& model, const GlbLayout& layout, Output& out) {
  const auto& parts = layout.parts;
  const auto& images = layout.images.files;
  const auto materials = ownMaterials(model);
  TextBlocks text(out);
  text.put("{\"asset\":{\"version\":\"2.0\",\"generator\":\"facetbench\"},\"scene\":0");
  text.put(",\"scenes\":[{\"name\":\"Model\"");
  putList("nodes", parts.size(), text, [&](size_t i) { text.put(i); });
  text.put("}]");
  putList("nodes", parts.size(), text, [&](size_t i) {
    text.put("{\"name\":\"Mesh", Padded{parts[i].mesh, 5}, "\",\"mesh\":", i, '}');
  });
  putList("meshes", parts.size(), text, [&](size_t i) { putMesh(model, parts[i], i, text); });
  putList("materials", materials.size(), text,
          [&](size_t i) { putMaterial(materials[i], i, layout.images.ofMaterial[i], text); });
  putList("textures", images.size(), text, [&](size_t i) { text.put("{\"source\":", i, '}'); });
  const size_t firstImageView = parts.size() * viewsPerPart;
  putList("images", images.size(), text, [&](size_t i) {
    text.put("{\"bufferView\":", firstImageView + i, ",\"mimeType\":\"image/png\"}");
  });
  putList("accessors", parts.size(), text, [&](size_t i) { putAccessors(model, parts[i], i, text); });
  putList("bufferViews", parts.size() + images.size(), text, [&](size_t i) {
    if (i < parts.size()) return putViews(model, parts[i], text);
    const size_t image = i - parts.size();
    putView(layout.imagesAt[image], images[image]->size(), text);
    text.put('}');
  });
  if (layout.size != 0) text.put(",\"buffers\":[{\"byteLength\":", layout.size, "}]");
  text.put('}');
  text.finish();
}

}  // namespace facet
