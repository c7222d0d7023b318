#pragma once

#include <memory>
#include <string>

#include "model/model.h"

namespace facet {

/// A hilly ground of `columns` x `rows` meshes of `cells` x `cells` cells (at most 254), two triangles each.
/// All of its vertices differ. Its one texture is "ground".
struct Landscape {
  const char* name;
  uint32_t columns, rows, cells;

  uint32_t meshes() const { return columns * rows; }
  uint32_t triangles() const { return meshes() * cells * cells * 2; }
};

inline constexpr Landscape landscape10k{"10 thousand triangles", 1, 1, 71};
inline constexpr Landscape landscape100k{"100 thousand triangles", 1, 1, 224};
inline constexpr Landscape landscape2M{"2 million triangles", 4, 4, 250};
inline constexpr Landscape landscape10M{"10 million triangles", 9, 9, 248};

/// As a VXM model in a vertex format, a mesh at a time: memory does not grow with it.
void writeVxm(const Landscape& landscape, const std::string& path, uint32_t format = 0x112);

/// The same triangles and normals as a binary PLY file, all in one mesh.
void writePly(const Landscape& landscape, const std::string& path);

/// A texture of 1024 x 1024 pixels as a TGA file.
void writeGroundTexture(const std::string& path);

/// Loads a model file, without textures. Throws std::runtime_error when that fails.
std::unique_ptr<Model> loaded(const std::string& path);

}  // namespace facet
