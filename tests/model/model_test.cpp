#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "model/model.h"
#include "support/model_builder.h"
#include "support/recording_desktop.h"
#include "support/recording_device.h"

namespace facet {
namespace {

using testing::ElementsAre;

Vector3 normalOf(const Model& model, size_t vertex) {
  return model.meshes[0].normals[vertex];
}

Model finished(ModelBuilder& builder, uint32_t modelType) {
  Model model = builder.build();
  model.modelType = modelType;
  finishModel(model);
  return model;
}

TEST(GrowArray, KeepsWhatIsCounted) {
  std::vector<int> numbers = {1, 2, 3};
  EXPECT_EQ(growArray(numbers, 2), 3) << "a slot not counted yet stays as it is";
  growArray(numbers, 3) = 4;
  EXPECT_THAT(numbers, ElementsAre(1, 2, 3, 4));
  growArray(numbers, 0);
  EXPECT_THAT(numbers, ElementsAre(0));
}

TEST(GrowArray, SaysWhenMemoryRunsOut) {
  struct Unaffordable {
    Unaffordable() { throw std::bad_alloc(); }
  };
  const RecordingDesktop desktop;
  std::vector<Unaffordable> array;
  EXPECT_THROW(growArray(array, 0), LoadError);
  EXPECT_THAT(desktop.boxes, ElementsAre(RecordingDesktop::Box{"too many objects", "ASSERT", 0x1010}));
}

TEST(Finish, ComputesBoundsAndNormalsWhereTheFormatHasNone) {
  for (const uint32_t modelType : {modelTypeObject, modelType4a, modelTypeVxm4}) {
    ModelBuilder builder;
    builder.material("stone").mesh(0, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 1, 2});
    const Model model = finished(builder, modelType);
    const bool computed = modelType != modelTypeVxm4;
    for (size_t i = 0; i < 3; ++i)
      EXPECT_EQ(normalOf(model, i), (computed ? Vector3{0, 0, 1} : Vector3{0, 1, 0}));
    EXPECT_EQ(model.meshes[0].center, (Vector3{0.5F, 0.5F, 0}));
    EXPECT_FLOAT_EQ(model.meshes[0].radius, std::sqrt(2.0F) / 2);
  }
}

TEST(Finish, TheLastTriangleOfAVertexWins) {
  const std::vector<BuiltVertex> vertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 5}, {9, 9, 9}};
  const std::tuple<const char*, std::vector<uint16_t>, Vector3, Vector3> table[] = {
      {"two triangles on an edge", {0, 1, 2, 2, 0, 3}, {-1, 0, 0}, {-1, 0, 0}},
      {"no area", {0, 1, 2, 0, 0, 3}, {0, 0, 0}, {0, 0, 0}},
      {"an index out of range", {0, 1, 2, 0, 3, 5}, {0, 0, 1}, {0, 1, 0}},
      {"a partial triangle", {0, 1, 2, 0, 3}, {0, 0, 1}, {0, 1, 0}},
  };
  for (const auto& [name, indices, first, last] : table) {
    SCOPED_TRACE(name);
    ModelBuilder builder;
    builder.material("stone").mesh(0, vertices, indices);
    const Model model = finished(builder, modelTypeObject);
    EXPECT_EQ(normalOf(model, 0), first);
    EXPECT_EQ(normalOf(model, 3), last);
    EXPECT_EQ(normalOf(model, 4), (Vector3{0, 1, 0})) << "of no triangle: as it was";
  }
}

TEST(Finish, ComesThroughValuesThatAreNoNumbers) {
  const float nan = std::numeric_limits<float>::quiet_NaN(), most = std::numeric_limits<float>::max();
  ModelBuilder builder;
  builder.material("stone").mesh(0, {{nan, nan, nan}, {most, -most, most}, {0, 1, 0}}, {0, 1, 2});
  EXPECT_EQ(finished(builder, modelType4a).totalIndices, 3u);
}

TEST(Finish, NeverCullsGroundAndWater) {
  ModelBuilder builder;
  builder.material("terrain\\ground").material("x", "deepwater_1").material("Terrain", "Water");
  for (uint32_t i = 0; i < 3; ++i) builder.mesh(i, {{0, 0, 0}}, {});
  const Model model = finished(builder, modelTypeVxm4);
  std::vector<int> visibilities;
  for (const Mesh& mesh : model.meshes) visibilities.push_back(mesh.visibility);
  EXPECT_THAT(visibilities, ElementsAre(2, 2, 0));
}

TEST(Finish, MakesAnIndexBufferForEachMesh) {
  RecordingDevice device;
  device.creationsLeft = 1;
  Model model = ModelBuilder().material("stone").grid(0, 2).grid(0, 3).build();
  model.device = &device;
  finishModel(model);
  EXPECT_EQ(model.totalVertices, 9u + 16u);
  EXPECT_EQ(model.totalIndices, 24u + 54u);
  EXPECT_EQ(model.meshes[1].indexBuffer, nullptr);
  ASSERT_NE(model.meshes[0].indexBuffer, nullptr);
  const auto* indices = model.meshes[0].indices.get();
  EXPECT_THAT(static_cast<RecordedIndices&>(*model.meshes[0].indexBuffer).indices,
              testing::ElementsAreArray(indices, indices + 24));
}

}  // namespace
}  // namespace facet
