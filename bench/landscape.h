#pragma once

#include <cstdint>
#include <string>

namespace facet {

/// A hilly square in `tiles` x `tiles` meshes of `cells` x `cells` cells, two triangles each.
struct Landscape {
  const char* name;
  uint32_t tiles, cells;

  uint32_t triangles() const { return tiles * tiles * cells * cells * 2; }
};

/// As a VXM model whose one texture is "ground".
void writeLandscapeVxm(const Landscape& landscape, const std::string& path);

/// The same triangles and normals as a binary PLY file, all in one mesh.
void writeLandscapePly(const Landscape& landscape, const std::string& path);

/// A texture of 1024 x 1024 pixels as a TGA file.
void writeGroundTexture(const std::string& path);

}  // namespace facet
