#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "device/device.h"
#include "picture/image.h"
#include "platform/desktop.h"

namespace facet {

/// Like Vertex left uninitialised by itself, so that large arrays are written once.
struct Vector3 {
  float x, y, z;
  bool operator==(const Vector3&) const = default;
};

/// Position in model units and texture coordinates.
struct Vertex {
  float x, y, z;
  float u, v;
};
static_assert(sizeof(Vertex) == 20 && sizeof(Vector3) == 12);

/// Triangles of one material. Everything a reader does not fill is zero or none.
struct Mesh {
  uint32_t vertexCount = 0;
  std::unique_ptr<Vertex[]> vertices;  ///< vertexCount records
  std::unique_ptr<Vector3[]> normals;  ///< vertexCount normals
  uint32_t indexCount = 0;  ///< may end in a partial triangle; users take indexCount / 3 whole ones
  std::unique_ptr<uint16_t[]> indices;  ///< triangle list; an index may be at or above vertexCount
  uint32_t materialIndex = 0;           ///< below materialCount once a load is complete
  std::shared_ptr<IDirect3DVertexBuffer9> vertexBuffer;  ///< built by drawing
  std::shared_ptr<IDirect3DIndexBuffer9> indexBuffer;    ///< built by finishing; none if its creation failed
  std::string surfaceName;                               ///< used while an editable object is read
  Vector3 boundsMin{}, boundsMax{}, center{};
  float radius = 0;        ///< of the sphere that the distance cut uses
  uint8_t visibility = 0;  ///< 0 culled in this frame, 1 visible, 2 never culled
  bool hidden = false;     ///< by who looks at the model
};

/// Bits of Material::renderFlags: how a material with a texture is drawn.
enum RenderFlags : uint8_t {
  renderAlphaTest = 1,
  renderBlend = 2,          ///< alone of the pair: source alpha / inverse source alpha
  renderLightPlane = 4,     ///< alone of the pair: unlit, one / inverse source alpha
  renderSelfLight = 2 | 4,  ///< unlit, one / source alpha
  renderNeedsLight = 8,     ///< together with the pair: left out while the light is off
};

struct Material {
  uint32_t hasTexture = 0;                     ///< 1 when a texture was created or shared
  std::string textureName;                     ///< as the model file holds it, without extension
  std::string shaderName;                      ///< "default" where the format has none
  uint8_t renderFlags = 0;                     ///< see import/materials.h
  std::shared_ptr<IDirect3DTexture9> texture;  ///< may be shared by materials that name the same texture
  std::array<float, 4> color{};                ///< r, g, b, a in 0..1
  std::string textureFile;                     ///< the file found for the texture, empty when none was
};

/// A texture that a model's own materials name and that they do without.
struct MissingTexture {
  std::string name;    ///< as the model file holds it
  std::string reason;  ///< "not found", "never looked for", "stone.dds: too short for a DDS file ..."
};

/// How many sky materials every loaded model ends with.
inline constexpr uint32_t skyMaterialCount = 6;

/// Format codes of the file a model came from.
enum ModelType : uint32_t {
  modelTypeOrion257 = 257,
  modelTypeOrion258 = 258,
  modelTypeVxm3 = 0x3333,
  modelTypeVxm4 = 0x4444,
  modelType4a = 0x4AE0,
  modelTypeObject = 0x7777,
  modelTypeDds = 0x20534444,
  modelTypeDs2md = 0x5344000E,
};

/// A loaded file: flat lists of meshes and materials. While a reader runs, `meshes` may hold one element more
/// than meshCount: the slot of a mesh that is not counted yet. Afterwards the sizes equal the counts.
struct Model {
  std::vector<Mesh> meshes;
  uint32_t meshCount = 0;
  std::vector<Material> materials;
  uint32_t materialCount = 0;  ///< after a load the last six are the sky materials
  uint32_t totalVertices = 0;
  uint32_t totalIndices = 0;
  uint32_t modelType = 0;
  std::string name;  ///< path of the model file, set by the caller of a load
  Vector3 center{};
  std::vector<std::string> listedFiles;  ///< files that the model's own file lists and that were read
  std::vector<std::string> warnings;     ///< what is wrong with the file, though it was read; a line each
  uint32_t texturesNamed = 0, texturesFound = 0;  ///< own materials that name a texture, and that have it
  std::vector<MissingTexture> missingTextures;    ///< each name once
  std::vector<std::string> texturePlaces;         ///< where they were looked for, if any is missing
  std::shared_ptr<ImageCache> images;             ///< what its textures' files were decoded with, or none
  IDirect3DDevice9* device = nullptr;             ///< borrowed; none where nothing will be drawn
};

/// Ends a load: the reason is one line for the user.
class LoadError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Shows "too many objects" / "ASSERT" and throws LoadError.
[[noreturn]] void failTooManyObjects();

/// Gives `array` room for `count` + 1 elements, keeping the first `count`. The caller fills the new last
/// element and then raises its count. When memory runs out: failTooManyObjects.
template <class T>
T& growArray(std::vector<T>& array, uint32_t count) {
  try {
    if (count == 0) array.clear();
    array.resize(size_t{count} + 1);
  } catch (const std::bad_alloc&) {
    failTooManyObjects();
  }
  return array.back();
}

/// Gives the mesh new arrays of `count` vertices and normals, not initialised.
void allocateVertices(Mesh& mesh, uint32_t count);

/// Gives the mesh a new array of `count` indices, not initialised.
void allocateIndices(Mesh& mesh, uint32_t count);

/// The materials of the model itself, without the sky materials at the end.
std::span<const Material> ownMaterials(const Model& model);

/// How many threads the model's size is worth, at most one for each core; the totals must be known.
unsigned usefulThreads(const Model& model);

/// "2 of 26 textures missing", or an empty text where none is.
std::string missingTexturesCount(const Model& model);

/// Releases all that the model owns: each texture once, every buffer and array, both lists.
void releaseModel(Model& model);

/// Leaves out the meshes of which `left` is true, and the own materials that only those used. Meshes beyond
/// the end of `left` stay.
void removeMeshes(Model& model, const std::vector<bool>& left);

/// Completes a model whose reader is done. Every model: visibility 2 for meshes on "terrain" textures or
/// "water" shaders, the totals (modulo 2^32), an index buffer per mesh where the model has a device and the
/// buffer can be created, which it cannot beyond 4 GiB. Editable objects and 4A models also get bounds and
/// normals, which their formats do not carry.
void finishModel(Model& model);

/// The least and the greatest x, y and z of all vertices of a mesh, used or not; zeros without vertices. A
/// coordinate that is no number in the first vertex stays so; elsewhere it does not count.
struct Box {
  Vector3 low{}, high{};
};
Box vertexBox(const Mesh& mesh);

/// Bounding box, its centre and half its diagonal as radius, from all vertices, used or not. A mesh without
/// vertices stays as it is.
void computeBounds(Mesh& mesh);

/// One face normal per triangle, e1 x e2 times 1 / length, written to its corners; the last triangle of a
/// vertex wins, and a vertex of no triangle keeps what it has. A triangle without area gives 0, 0, 0; one
/// with an index out of range is passed over.
void computeNormals(Mesh& mesh);

}  // namespace facet
