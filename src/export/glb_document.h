#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "model/model.h"
#include "platform/output.h"

// The JSON document of a glb file, which tells where everything in its binary chunk stands.

namespace facet {

/// Pictures as PNG files in memory, and which of them each material shows.
struct EmbeddedImages {
  std::vector<std::shared_ptr<const std::vector<std::byte>>> files;
  std::vector<std::optional<uint32_t>> ofMaterial;  ///< none where a material's texture cannot be read
};

/// Reads the files of the model's textures, each once and on all cores. A PNG file stands as it is; of other
/// pictures the first level is encoded.
EmbeddedImages embedImages(const Model& model);

struct GlbBounds {
  static constexpr float infinity = std::numeric_limits<float>::infinity();
  Vector3 low{infinity, infinity, infinity}, high{-infinity, -infinity, -infinity};
};

/// A mesh that has something to draw, and where its data stand in the binary chunk.
struct GlbPart {
  uint32_t mesh;
  uint32_t indexCount = 0;  ///< of the triangles that have all their vertices
  GlbBounds bounds;         ///< of the positions as they are written
  uint64_t verticesAt = 0, indicesAt = 0;
};

/// Bytes of a vertex: position, normal, texture coordinates.
inline constexpr uint32_t glbVertexSize = 32;

/// Bytes of an index. 65535 means "restart" among 16-bit indices and is no vertex.
inline uint32_t glbIndexSize(const Mesh& mesh) {
  return mesh.vertexCount > UINT16_MAX ? 4 : 2;
}

/// Where an image stands in the binary chunk.
struct GlbImage {
  uint64_t at, size;
};

/// The binary chunk: the parts, then the images.
struct GlbLayout {
  std::vector<GlbPart> parts;
  std::vector<GlbImage> images;
  uint64_t size = 0;
};

/// Writes the document's text; the model's z axis is taken for mirrored. Materials are the model's own.
void writeGlbDocument(const Model& model, const GlbLayout& layout, const EmbeddedImages& images, Output& out);

struct ModernScene;

/// The same with the scene's looks, names and pictures. The binary chunk is a file where the scene names one.
void writeGlbDocument(const ModernScene& scene, const GlbLayout& layout, Output& out);

}  // namespace facet
