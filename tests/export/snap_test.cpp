#include "export/snap.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

#include "support/model_builder.h"

namespace facet {
namespace {

/// The definition: through the text and back.
float snappedByText(float value) {
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%f", value);
  if (std::strcmp(text.data(), "-0.000000") == 0) return 0.0F;
  return static_cast<float>(std::atof(text.data()));
}

void expectSnapped(float value) {
  float snapped = value;
  snapComponent(snapped);
  const float expected = snappedByText(value);
  ASSERT_EQ(std::bit_cast<uint32_t>(snapped), std::bit_cast<uint32_t>(expected)) << std::hexfloat << value;
}

TEST(SnapComponent, EqualsTheWayThroughTheText) {
  std::mt19937 random(3);
  for (int i = 0; i < 300'000; ++i) expectSnapped(std::bit_cast<float>(static_cast<uint32_t>(random())));
  std::uniform_real_distribution<float> values(-300, 300);
  for (int i = 0; i < 100'000; ++i) expectSnapped(values(random));
  for (const float value : {0.0F, -0.0F, 4e-7F, -4e-7F, 5e-7F, -5e-7F, 0x1p24F, 0x1.fffffep23F, 3e38F,
                            INFINITY, -INFINITY, NAN, -NAN, std::bit_cast<float>(0x7FA00001U)})
    expectSnapped(value);
}

TEST(UniqueVec3, ListsValuesInOrderOfFirstAppearance) {
  std::vector<Vector3> values{{1, 2, 3},      {4, 5, 6}, {1.0000001F, 2, 3},
                              {-1e-7F, 0, 0}, {4, 5, 6}, {0, -0.0F, 0}};
  const auto list = uniqueVec3({&values[0].x, sizeof(Vector3), 6});
  EXPECT_EQ(list.values, (std::vector<Vector3>{{1, 2, 3}, {4, 5, 6}, {0, 0, 0}}));
  EXPECT_EQ(list.places, (std::vector<uint16_t>{0, 1, 0, 2, 1, 2}));
  EXPECT_FALSE(std::signbit(values[3].x)) << "the array itself is snapped";
}

TEST(UniqueVec2, ReadsTextureCoordinatesOutOfVertices) {
  Model model =
      ModelBuilder().mesh(0, {{1, 2, 3, 0, 0, 0, 0.5F, 0.25F}, {4, 5, 6, 0, 0, 0, 0.5F, 0.25F}}, {}).build();
  const auto list = uniqueVec2(textureCoordinatesOf(model.meshes[0]));
  EXPECT_EQ(list.values, (std::vector<Vector2>{{0.5F, 0.25F}}));
  EXPECT_EQ(list.places, (std::vector<uint16_t>{0, 0}));
}

TEST(UniqueVec3, TakesMoreValuesThanIndicesCanReach) {
  std::vector<Vector3> values(70'000);
  for (size_t i = 0; i < values.size(); ++i) values[i] = {static_cast<float>(i), 0, 0};
  const auto list = uniqueVec3({&values[0].x, sizeof(Vector3), 70'000});
  EXPECT_EQ(list.values.size(), 70'000U);
  EXPECT_EQ(list.places.size(), 65'536U);
  EXPECT_EQ(placeOf(list, 65'535), 65'535U);
}

TEST(UniqueVec3, OfNothingIsEmptyAndItsPlaceIsZero) {
  const auto list = uniqueVec3({nullptr, sizeof(Vector3), 0});
  EXPECT_TRUE(list.values.empty());
  EXPECT_EQ(placeOf(list, 7), 0U);
}

}  // namespace
}  // namespace facet
