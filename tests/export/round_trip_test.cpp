#include <gtest/gtest.h>

#include <cstring>

#include "export/written.h"
#include "import/load.h"
#include "support/model_builder.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

Model sceneOfSeveralMeshes() {
  return ModelBuilder()
      .material("terrain\\grass", "default")
      .material("wall", "models\\model")
      .grid(1, 20)
      .mesh(0, {{1, 2, 3, 0, 1, 0, 0.25F, 0.125F}, {-4, 1e-9F, 6}, {7, 8, 1e7F}}, {0, 1, 2, 2, 1, 0})
      .grid(0, 3)
      .build();
}

/// Writes VXM and reads it back.
std::unique_ptr<Model> throughVxm(Model model, const TempFolder& folder) {
  const std::string path = folder / "model.vxm";
  EXPECT_EQ(exportModel(*findExportFormat("vxm"), path, model).error, "");
  LoadResult loaded = loadModel(path, {}, nullptr);
  EXPECT_EQ(loaded.error, "");
  return std::move(loaded.model);
}

TEST(RoundTrip, EveryFormatIsTheSameAfterVxm) {
  const TempFolder folder;
  for (const auto& build : {triangleModel, sceneOfSeveralMeshes}) {
    for (const ExportFormat& format : saveDialogFormats()) {
      // Materials are found again in the order in which meshes use them: a second way keeps their numbers.
      std::unique_ptr<Model> once = throughVxm(build(), folder);
      ASSERT_NE(once, nullptr);
      std::unique_ptr<Model> twice = throughVxm(std::move(*once), folder);
      ASSERT_NE(twice, nullptr);
      once = throughVxm(build(), folder);
      EXPECT_EQ(written(*format.write, std::move(*twice)), written(*format.write, std::move(*once)))
          << format.name;
    }
  }
}

TEST(RoundTrip, VxmKeepsMeshesBitForBit) {
  const TempFolder folder;
  const Model before = sceneOfSeveralMeshes();
  const std::unique_ptr<Model> after = throughVxm(sceneOfSeveralMeshes(), folder);
  ASSERT_EQ(after->meshCount, before.meshCount);
  for (uint32_t m = 0; m < before.meshCount; ++m) {
    const Mesh &a = before.meshes[m], &b = after->meshes[m];
    ASSERT_EQ(a.vertexCount, b.vertexCount);
    ASSERT_EQ(a.indexCount, b.indexCount);
    EXPECT_EQ(std::memcmp(a.vertices.get(), b.vertices.get(), a.vertexCount * sizeof(Vertex)), 0);
    EXPECT_EQ(std::memcmp(a.normals.get(), b.normals.get(), a.vertexCount * sizeof(Vector3)), 0);
    EXPECT_EQ(std::memcmp(a.indices.get(), b.indices.get(), a.indexCount * sizeof(uint16_t)), 0);
    EXPECT_EQ(a.boundsMin, b.boundsMin);
    EXPECT_EQ(a.radius, b.radius);
    EXPECT_EQ(before.materials[a.materialIndex].textureName, after->materials[b.materialIndex].textureName);
    EXPECT_EQ(before.materials[a.materialIndex].shaderName, after->materials[b.materialIndex].shaderName);
  }
}

}  // namespace
}  // namespace facet
