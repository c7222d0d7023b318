#include "export/text.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

#include "export/mesh_text.h"
#include "platform/text.h"
#include "support/model_builder.h"

namespace facet {
namespace {

/// The text is that of printf, and snapping is the way through that text and back.
void expectPrintedAndSnapped(float value) {
  std::array<char, maxFloatText> text;
  const std::string expected = formatted("%f", static_cast<double>(value));
  ASSERT_EQ(std::string(text.data(), formatFloat(text.data(), value)), expected) << std::hexfloat << value;
  float snapped = value;
  snapComponent(snapped);
  const float back = expected == "-0.000000" ? 0.0F : static_cast<float>(std::atof(expected.c_str()));
  ASSERT_EQ(std::bit_cast<uint32_t>(snapped), std::bit_cast<uint32_t>(back)) << std::hexfloat << value;
}

TEST(Floats, ArePrintedAsByPrintfAndSnappedToTheirTexts) {
  std::mt19937 random(1);
  for (int i = 0; i < 400'000; ++i)
    expectPrintedAndSnapped(std::bit_cast<float>(static_cast<uint32_t>(random())));
  for (const float range : {0.00001F, 1.0F, 99.0F, 20'000.0F, 1e7F}) {
    std::uniform_real_distribution<float> values(-range, range);
    for (int i = 0; i < 60'000; ++i) expectPrintedAndSnapped(values(random));
  }
  // Multiples of 1/128 have a seventh decimal of 5 and nothing behind it: ties go to even.
  for (int i = 0; i < 20'000; ++i) expectPrintedAndSnapped(static_cast<float>(i) / 128.0F);
  std::vector<float> edges{0.0F, FLT_MIN, FLT_TRUE_MIN, FLT_MAX,    INFINITY,
                           NAN,  4e-7F,   0.5F / 1e6F,  1.5F / 1e6F};
  edges.push_back(std::bit_cast<float>(0x7FA00001U));  // another NaN
  for (float power = 1e-8F; power < 1e12F; power *= 10) edges.push_back(power);
  for (int exponent = -30; exponent < 64; ++exponent) edges.push_back(std::ldexp(1.0F, exponent));
  for (const float edge : edges)
    for (const float value : {edge, std::nextafter(edge, 0.0F), std::nextafter(edge, INFINITY)})
      for (const float sign : {1.0F, -1.0F}) expectPrintedAndSnapped(std::copysign(value, sign));
}

TEST(TextBuffer, WritesIntegersOfEveryLengthPadsUpToTheWidthOnlyAndGrows) {
  TextBuffer text;
  std::string expected;
  for (int64_t power = 1; power <= 1'000'000'000'000; power *= 10) {
    for (const int64_t value : {power - 1, power, -power}) {
      text.put(value, ' ');
      expected += std::to_string(value) + ' ';
    }
  }
  text.put(UINT32_MAX, ' ', uint16_t{65535});
  EXPECT_EQ(text.view(), expected + "4294967295 65535");
  text.clear();
  text.put(Padded{0, 5}, ' ', Padded{42, 5}, ' ', Padded{12345, 5}, ' ', Padded{1234567, 5}, ' ',
           Padded{7, 3});
  EXPECT_EQ(text.view(), "00000 00042 12345 1234567 007");
  text.put(std::string(100'000, 'x'));
  EXPECT_EQ(text.view(), "00000 00042 12345 1234567 007" + std::string(100'000, 'x'));
}

/// The values as the normals of a mesh.
DistinctList distinct(std::vector<Vector3>& values) {
  Model model = ModelBuilder().mesh(0, std::vector<BuiltVertex>(values.size()), {}).build();
  Vector3* normals = model.meshes[0].normals.get();
  std::ranges::copy(values, normals);
  DistinctList list = collectDistinct(model.meshes[0]).normals;
  std::copy_n(normals, values.size(), values.begin());
  return list;
}

TEST(DistinctLists, HoldSnappedValuesInTheOrderOfFirstAppearance) {
  std::vector<Vector3> values{{1, 2, 3},      {4, 5, 6}, {1.0000001F, 2, 3},
                              {-1e-7F, 0, 0}, {4, 5, 6}, {0, -0.0F, 0}};
  const DistinctList list = distinct(values);
  EXPECT_EQ(list.firsts, (std::vector<uint32_t>{0, 1, 3}));
  EXPECT_EQ(list.places, (std::vector<uint16_t>{0, 1, 0, 2, 1, 2}));
  EXPECT_EQ(values[2], values[0]) << "the array itself is snapped";
  EXPECT_FALSE(std::signbit(values[3].x));
}

TEST(DistinctLists, TakeMoreValuesThanIndicesReachAndNone) {
  std::vector<Vector3> values(70'000);
  for (size_t i = 0; i < values.size(); ++i) values[i] = {static_cast<float>(i), 0, 0};
  const DistinctList list = distinct(values);
  EXPECT_EQ(list.size(), 70'000U);
  EXPECT_EQ(list.places.size(), 65'536U);
  EXPECT_EQ(placeOf(list, 65'535), 65'535U);
  values.clear();
  const DistinctList none = distinct(values);
  EXPECT_EQ(none.size(), 0U);
  EXPECT_EQ(placeOf(none, 7), 0U);
}

TEST(DistinctLists, AreReadFromTheirPlacesInTheMesh) {
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

class FailingOutput : public Output {
  std::string writeSome(std::string_view) override { return "disk full"; }
};

TEST(WritePieces, StopsWhenTheOutputFails) {
  FailingOutput out;
  int given = 0;
  writePieces(3, out, [&]() -> MakeText {
    ++given;
    return [](TextBuffer& text) { text.put("piece"); };
  });
  EXPECT_EQ(out.error(), "disk full");
  EXPECT_LT(given, 10);
}

TEST(WriteMeshSections, WritesEachHeadOnceAndEveryItemInOrder) {
  // Large enough for several threads, with meshes below and above a piece.
  ModelBuilder builder;
  for (uint32_t cells = 0; cells < 80; ++cells) builder.grid(0, cells);
  const Model model = builder.build();
  constexpr std::array<MeshSection, 3> sections{{
      {[](const MeshRef& mesh, TextBuffer& text) { text.put("mesh ", mesh.number, '\n'); }, nullptr, nullptr},
      {[](const MeshRef&, TextBuffer& text) { text.put("vertices\n"); }, vertexCount,
       [](const MeshRef&, uint32_t first, uint32_t end, TextBuffer& text) {
         for (uint32_t i = first; i < end; ++i) text.put(i, '\n');
       }},
      {nullptr, triangleCount,
       [](const MeshRef&, uint32_t first, uint32_t end, TextBuffer& text) {
         for (uint32_t i = first; i < end; ++i) text.put("t", i, '\n');
       }},
  }};
  OutputString out;
  writeMeshSections(model, out, sections);
  std::string expected;
  for (uint32_t m = 0; m < model.meshCount; ++m) {
    expected += "mesh " + std::to_string(m) + "\nvertices\n";
    for (uint32_t i = 0; i < model.meshes[m].vertexCount; ++i) expected += std::to_string(i) + '\n';
    for (uint32_t i = 0; i < model.meshes[m].indexCount / 3; ++i) expected += 't' + std::to_string(i) + '\n';
  }
  EXPECT_EQ(out.text(), expected);
}

}  // namespace
}  // namespace facet
