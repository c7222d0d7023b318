#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "export/mesh_text.h"
#include "export/modern.h"

// A model as the modern writers see it: the same looks, names and pictures in every format.

namespace facet {

/// How a material looks.
struct Look {
  enum Alpha : uint8_t { opaque, test, blend };

  std::string name;                        ///< UTF-8, without blanks; no other look has it in any letter case
  std::array<float, 4> color{1, 1, 1, 1};  ///< of what has no picture
  std::optional<uint32_t> picture;         ///< number in ModernScene::pictures
  Alpha alpha = opaque;
  double cutoff = 0;  ///< a test passes from this alpha on
  bool twoSided = false, unlit = false;

  /// It adds light to what is behind. As emission with alpha it shows so in every program that was tried; as
  /// an unlit material it is a white plate in some.
  bool glows() const { return unlit && alpha == blend; }
};

/// A picture of an output: a file beside it, or bytes that go into it.
struct ScenePicture {
  std::string name;   ///< of its file, or of the one it was made of
  std::string path;   ///< from the output's folder, with forward slashes; empty for one that is embedded
  uint64_t size = 0;  ///< of one that is embedded
  bool opaque = false;
};

struct ModernScene {
  Model& model;
  std::string companion;  ///< name of the second file
  UpAxis up = UpAxis::y;
  std::vector<Look> looks;  ///< of the own materials; one more where a mesh has none of them
  std::vector<ScenePicture> pictures;
  std::FILE* embedded = nullptr;  ///< the bytes of embedded pictures, one after another

  uint32_t lookNumber(const Mesh& mesh) const {
    return std::min(mesh.materialIndex, static_cast<uint32_t>(looks.size()) - 1);
  }
  const Look& lookOf(const Mesh& mesh) const { return looks[lookNumber(mesh)]; }
  const ScenePicture* pictureOf(const Look& look) const {
    return look.picture ? &pictures[*look.picture] : nullptr;
  }
};

/// The model's left-handed axes turned into right-handed ones; numbers that are not finite become 0.
template <UpAxis up>
Vector3 turned(float x, float y, float z) {
  const float mirrored = up == UpAxis::y ? 0.0F - finite(z) : finite(z);
  return up == UpAxis::y ? Vector3{finite(x), finite(y), mirrored} : Vector3{finite(x), mirrored, finite(y)};
}

/// A path as a URI holds it.
std::string percentEncoded(std::string_view path);

}  // namespace facet
