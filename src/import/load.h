#pragma once

#include <memory>
#include <string>
#include <vector>

#include "model/model.h"
#include "platform/byte_source.h"
#include "platform/files.h"

namespace facet {

/// What a reader may know besides the open file.
struct LoadContext {
  const std::string& path;  ///< as it was given to the load
  FileFinder& files;
};

/// A model, or none and the reason: one line without the path.
struct LoadResult {
  std::unique_ptr<Model> model;
  std::string error;
};

/// Texture base paths, each glued in front of a texture name without a separator.
using BasePaths = std::vector<std::string>;

/// Opens a model file, recognises its format by its first eight bytes, reads it, finishes it and runs the
/// material pass. Progress goes to the status line. Without a device the model gets no buffers and no texture
/// objects, but everything else, hasTexture included.
LoadResult loadModel(const std::string& path, const BasePaths& basePaths, IDirect3DDevice9* device);

}  // namespace facet
