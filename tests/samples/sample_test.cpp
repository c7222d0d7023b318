#include "sample.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "import/load.h"
#include "support/recording_desktop.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

using testing::IsSupersetOf;

/// The models of the sample on disk.
class Sample : public testing::Test {
 protected:
  Sample() { sample::writeSampleModels(folder_.path()); }

  std::unique_ptr<Model> load(const std::string& file) {
    RecordingDesktop desktop;
    CurrentFolder current(folder_.path());
    BasePaths bases;
    for (const char* folder : {"", "terrain\\", "build\\", "nature\\", "props\\", "effects\\"})
      bases.push_back(std::string("gamedata\\textures\\") + folder);
    return loadModel(file, bases, nullptr).model;
  }

  TempFolder folder_;
};

uint32_t triangleCount(const Model& model) {
  return model.totalIndices / 3;
}

TEST_F(Sample, HoldsTheSameSceneInEveryFormat) {
  auto scene = load("lighthouse.vxm");
  ASSERT_TRUE(scene);
  EXPECT_GE(scene->meshCount, 20u);
  for (const char* file :
       {"lighthouse_v3.vxm", "lighthouse.object", "lighthouse.ds2md", "meshes/dynamic/lighthouse.model"}) {
    SCOPED_TRACE(file);
    auto other = load(file);
    ASSERT_TRUE(other);
    ASSERT_EQ(other->meshCount, scene->meshCount);
    EXPECT_EQ(triangleCount(*other), triangleCount(*scene));
    for (uint32_t i = 0; i < scene->meshCount; ++i) {
      const Mesh &mesh = scene->meshes[i], &same = other->meshes[i];
      ASSERT_EQ(same.indexCount, mesh.indexCount) << i;
      for (uint32_t k = 0; k < mesh.indexCount; ++k) {
        const Vertex &a = mesh.vertices[mesh.indices[k]], &b = same.vertices[same.indices[k]];
        ASSERT_NEAR(a.x, b.x, 0.001) << i;
        ASSERT_NEAR(a.y, b.y, 0.001) << i;
        ASSERT_NEAR(a.u, b.u, 0.001) << i;
      }
    }
  }
}

TEST_F(Sample, FindsEveryTextureAndUsesEveryKindOfMaterial) {
  sample::writeSampleTextures(folder_.path());
  for (const char* file :
       {"lighthouse.vxm", "lighthouse_v3.vxm", "lighthouse.object", "lighthouse.msh", "lighthouse.ds2md",
        "boats_06.ds2md", "meshes/dynamic/lighthouse.model", "meshes/dynamic/lighthouse/harbour.mesh"}) {
    auto model = load(file);
    ASSERT_TRUE(model) << file;
    EXPECT_GT(model->meshCount, 0u) << file;
    for (const Material& material : model->materials)
      EXPECT_EQ(material.hasTexture, 1u) << file << ": " << material.textureName;
  }
  std::set<int> flags;
  auto scene = load("lighthouse.vxm");
  for (const Material& material : ownMaterials(*scene)) flags.insert(material.renderFlags);
  EXPECT_THAT(flags, IsSupersetOf({0, 1, 2, 3, 4, 5, 7, 8, 13, 15}));
}

TEST_F(Sample, NeverCullsGroundAndSea) {
  auto scene = load("lighthouse.vxm");
  ASSERT_TRUE(scene);
  auto first = scene->meshes.begin();
  EXPECT_EQ(std::count_if(first, scene->meshes.end(), [](const Mesh& mesh) { return mesh.visibility == 2; }),
            3);
}

// Nothing in the scene may be inside out, or it would vanish where back faces are culled.
TEST_F(Sample, NormalsPointToTheFrontOfTheirTriangles) {
  auto scene = load("lighthouse.vxm");
  ASSERT_TRUE(scene);
  for (const Mesh& mesh : scene->meshes) {
    const std::string& shader = scene->materials[mesh.materialIndex].shaderName;
    if (shader == "details\\foliage" || shader == "details\\set")
      continue;  // lit like a ball or like the ground
    uint32_t wrong = 0;
    for (uint32_t k = 0; k + 2 < mesh.indexCount; k += 3) {
      const uint16_t* corner = &mesh.indices[k];
      const Vertex &a = mesh.vertices[corner[0]], &b = mesh.vertices[corner[1]],
                   &c = mesh.vertices[corner[2]];
      float ux = b.x - a.x, uy = b.y - a.y, uz = b.z - a.z, vx = c.x - a.x, vy = c.y - a.y, vz = c.z - a.z;
      float x = 0, y = 0, z = 0;
      for (int i = 0; i < 3; ++i) {
        const Vector3& normal = mesh.normals[corner[i]];
        x += normal.x;
        y += normal.y;
        z += normal.z;
      }
      wrong += (uy * vz - uz * vy) * x + (uz * vx - ux * vz) * y + (ux * vy - uy * vx) * z <= 0;
    }
    EXPECT_EQ(wrong, 0u) << scene->materials[mesh.materialIndex].textureName;
  }
}

}  // namespace
}  // namespace facet
