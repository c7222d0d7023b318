#pragma once

#include <filesystem>

#include "scene.h"

namespace facet::sample {

/// One writer for each input format. All throw std::runtime_error when a file cannot be written.

/// The scene as a hierarchy, one visual for each mesh; the children use every vertex format in turn.
void writeVxm4(const Scene& scene, const std::filesystem::path& path);
void writeVxm3(const Scene& scene, const std::filesystem::path& path);

/// One object mesh for each group of the scene, one surface for each mesh of the group.
void writeObject(const Scene& scene, const std::filesystem::path& path);

/// `folder`/lighthouse.model and the mesh files it names, one for each group, under `folder`/lighthouse. The
/// folder has to be called "dynamic". Meshes that fit into the packed range are packed.
void write4a(const Scene& scene, const std::filesystem::path& folder);

/// One mesh with one texture is all that this format holds.
void writeOrion(const Scene& scene, const SampleMesh& mesh, const std::filesystem::path& path);

/// The older layout, and the one of version 0.6.
void writeDs2md(const Scene& scene, const std::filesystem::path& path);
void writeDs2md06(const Scene& scene, const std::filesystem::path& path);

}  // namespace facet::sample
