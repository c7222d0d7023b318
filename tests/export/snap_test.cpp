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

DistinctList distinct(std::vector<Vector3>& values) {
  SlotTable table;
  return uniqueVec3(
      {reinterpret_cast<float*>(values.data()), sizeof(Vector3), static_cast<uint32_t>(values.size())},
      table);
}

TEST(UniqueVec3, ListsValuesInOrderOfFirstAppearance) {
  std::vector<Vector3> values{{1, 2, 3},      {4, 5, 6}, {1.0000001F, 2, 3},
                              {-1e-7F, 0, 0}, {4, 5, 6}, {0, -0.0F, 0}};
  const DistinctList list = distinct(values);
  EXPECT_EQ(list.firsts, (std::vector<uint32_t>{0, 1, 3}));
  EXPECT_EQ(list.places, (std::vector<uint16_t>{0, 1, 0, 2, 1, 2}));
  EXPECT_EQ(values[2], values[0]) << "the array itself is snapped";
  EXPECT_FALSE(std::signbit(values[3].x));
}

TEST(UniqueVec3, TakesMoreValuesThanIndicesCanReach) {
  std::vector<Vector3> values(70'000);
  for (size_t i = 0; i < values.size(); ++i) values[i] = {static_cast<float>(i), 0, 0};
  const DistinctList list = distinct(values);
  EXPECT_EQ(list.size(), 70'000U);
  EXPECT_EQ(list.places.size(), 65'536U);
  EXPECT_EQ(placeOf(list, 65'535), 65'535U);
}

TEST(UniqueVec3, OfNothingIsEmptyAndItsPlaceIsZero) {
  std::vector<Vector3> none;
  const DistinctList list = distinct(none);
  EXPECT_EQ(list.size(), 0U);
  EXPECT_EQ(placeOf(list, 7), 0U);
}

TEST(CollectDistinct, ReadsEachKindFromItsPlaceInTheMesh) {
  // The second vertex has the first one's normal, the third its position and texture coordinates.
  Model model = ModelBuilder()
                    .mesh(0,
                          {{1, 2, 3, 0, 1, 0, 0.5F, 0.25F},
                           {4, 2, 3, 0, 1, 0, 0.5F, 0.75F},
                           {1, 2, 3, 0, 0, 1, 0.5F, 0.25F}},
                          {})
                    .build();
  const DistinctLists lists = collectDistinct(model.meshes[0]);
  EXPECT_EQ(lists.positions.places, (std::vector<uint16_t>{0, 1, 0}));
  EXPECT_EQ(lists.normals.places, (std::vector<uint16_t>{0, 0, 1}));
  EXPECT_EQ(lists.textureCoordinates.places, (std::vector<uint16_t>{0, 1, 0}));
}

}  // namespace
}  // namespace facet
