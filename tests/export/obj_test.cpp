#include <gmock/gmock.h>

#include "export/written.h"
#include "support/model_builder.h"

namespace facet {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr std::string_view triangleObj = R"(# This file uses meters as units for non-parametric coordinates.
# materials : 1
newmtl material0
 Ka 0.5000 0.5000 0.5000
 Kd 1.0000 1.0000 1.0000
 illum 1
 map_Ka stone
 map_Kd stone

mtllib ship.obj
# meshes : 1
g Group00000
usemtl material0
o Mesh00000
# vertices : 3, was 3
v 1.000000 2.000000 -3.000000
v 4.000000 5.000000 -6.000000
v 7.000000 8.000000 -10.000000
# normales : 3, was 3
vn 0.000000 1.000000 -0.000000
vn 1.000000 0.000000 -0.000000
vn 0.000000 0.000000 -1.000000
# uv's : 3, was 3
vt 0.250000 0.875000
vt 0.500000 0.750000
vt 0.750000 0.000000
# faces : 1
# indices : 3
f 1/1/1 3/3/3 2/2/2
)";

TEST(ExportObj, WritesATriangle) {
  EXPECT_EQ(written(exportObj, triangleModel(), "ship.obj"), triangleObj);
}

TEST(ExportObj, CountsThroughTheFileAndMergesEqualValues) {
  // Five vertices, of which the first two print alike; the second mesh shares the material.
  Model model = ModelBuilder()
                    .material("a")
                    .mesh(0, {{0, 0, 0}, {1e-8F, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 2, 3, 1, 3, 2})
                    .mesh(0, {{5, 0, 0, 0, 0, 1}, {6, 0, 0, 0, 0, 1}, {7, 0, 0, 0, 0, 1}}, {0, 1, 2, 0})
                    .build();
  const std::string text = written(exportObj, std::move(model));
  EXPECT_THAT(text, HasSubstr("# vertices : 3, was 4\n"));
  EXPECT_THAT(text, HasSubstr("# normales : 1, was 4\n"));
  EXPECT_THAT(
      text,
      HasSubstr("f 1/1/1 3/1/1 2/1/1\nf 1/1/1 2/1/1 3/1/1\ng Group00000\nusemtl material0\no Mesh00001\n"));
  EXPECT_THAT(text, HasSubstr("# faces : 1\n# indices : 4\nf 4/2/2 6/2/2 5/2/2\n"));
  EXPECT_THAT(text, Not(HasSubstr("sky")));
}

TEST(ExportObj, LeavesTheModelSnapped) {
  Model model = ModelBuilder().mesh(0, {{1.0000001F, -1e-9F, 3}}, {}).build();
  OutputString out;
  exportObj(model, "a.obj", out);
  EXPECT_EQ(model.meshes[0].vertices[0].x, 1.0F);
  EXPECT_FALSE(std::signbit(model.meshes[0].vertices[0].y));
  OutputString again;
  exportObj(model, "a.obj", again);
  EXPECT_EQ(again.text(), out.text());
}

TEST(ExportObj, KeepsFaceNumbersInsideTheLists) {
  Model outside = ModelBuilder().mesh(0, {{1, 1, 1}, {2, 2, 2}}, {0, 1, 9}).build();
  EXPECT_THAT(written(exportObj, std::move(outside)), HasSubstr("f 1/1/1 1/1/1 2/1/1\n"));
  Model empty = ModelBuilder().mesh(0, {}, {0, 1, 2}).build();
  EXPECT_THAT(written(exportObj, std::move(empty)), HasSubstr("# faces : 0\n# indices : 3\n"));
}

TEST(ExportObj, WritesTheHeadOfAnEmptyModel) {
  EXPECT_EQ(written(exportObj, ModelBuilder().build(), "e.obj"),
            "# This file uses meters as units for non-parametric coordinates.\n"
            "# materials : 0\nmtllib e.obj\n# meshes : 0\n");
}

TEST(ExportObj, PassesListNumbersOnBetweenThreads) {
  ModelBuilder builder;
  for (int i = 0; i < 40; ++i) builder.grid(0, 40);
  const std::string text = written(exportObj, builder.build());
  // The last mesh stands behind 39 lists of 41 x 41 entries.
  EXPECT_THAT(text.substr(text.rfind("g Group")),
              HasSubstr("f 65560/65560/65560 65561/65561/65561 65601/65601/65601\n"));
}

}  // namespace
}  // namespace facet
