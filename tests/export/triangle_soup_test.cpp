#include <gmock/gmock.h>

#include "export/written.h"
#include "support/model_builder.h"

namespace facet {
namespace {

using testing::HasSubstr;

// The formats that write triangles one by one: SMD, STL and DXF.

constexpr std::string_view triangleSmd = R"(version 1
nodes
0 "root" -1
end
skeleton
time 0
0 0.000000 0.000000 0.000000 0.000000 0.000000 0.000000
end
triangles
stone
0 7.000000 10.000000 8.000000 0.000000 1.000000 0.000000 0.750000 0.000000
0 4.000000 6.000000 5.000000 1.000000 0.000000 0.000000 0.500000 0.750000
0 1.000000 3.000000 2.000000 0.000000 0.000000 1.000000 0.250000 0.875000
end
)";

constexpr std::string_view triangleStl = R"(solid Object0000
 facet normal 0.000000 1.000000 0.000000
  outer loop
   vertex 1.000000 2.000000 3.000000
   vertex 4.000000 5.000000 6.000000
   vertex 7.000000 8.000000 10.000000
  endloop
 endfacet
endsolid Object0000
)";

constexpr std::string_view triangleDxf = R"(  0
SECTION
  2
HEADER
  0
ENDSEC
  0
SECTION
  2
TABLES
  0
TABLE
  2
LAYER
  70
153
  0
LAYER
  2
Mesh00000
 70
0
 62
1
  6
CONTINUOUS
  0
ENDTAB
  0
ENDSEC
  0
SECTION
  2
ENTITIES
  0
3DFACE
  8
Mesh00000
 10
7.000000
 20
10.000000
 30
8.000000
 11
4.000000
 21
6.000000
 31
5.000000
 12
1.000000
 22
3.000000
 32
2.000000
 13
1.000000
 23
3.000000
 33
2.000000
  0
ENDSEC
  0
EOF
)";

/// Three vertices in a row, whose x are 0, 1 and 2.
const std::vector<BuiltVertex> row{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};

TEST(ExportSmd, WritesATriangle) {
  EXPECT_EQ(written(exportSmd, triangleModel()), triangleSmd);
}

TEST(ExportSmd, RepeatsTheMaterialForEachTriangle) {
  Model model = ModelBuilder().material("a").material("b\\c").mesh(1, row, {0, 1, 2, 2, 1, 0, 1}).build();
  const std::string text = written(exportSmd, std::move(model));
  const std::string head = "end\ntriangles\nb\\c\n0 2.000000 ";
  EXPECT_THAT(text, HasSubstr(head));
  EXPECT_THAT(text, HasSubstr("1.000000\nb\\c\n0 0.000000 "));
}

TEST(ExportSmd, WritesAnEmptyModelAndAMissingMaterial) {
  EXPECT_EQ(written(exportSmd, ModelBuilder().build()),
            "version 1\nnodes\n0 \"root\" -1\nend\nskeleton\ntime 0\n"
            "0 0.000000 0.000000 0.000000 0.000000 0.000000 0.000000\nend\ntriangles\nend\n");
  EXPECT_THAT(written(exportSmd, ModelBuilder().mesh(99, row, {0, 1, 2}).build()),
              HasSubstr("triangles\n\n0 "));
}

TEST(ExportStl, WritesATriangle) {
  EXPECT_EQ(written(exportStl, triangleModel()), triangleStl);
}

TEST(ExportStl, WritesZerosForAMissingVertexAndNoPartialTriangle) {
  EXPECT_EQ(written(exportStl, ModelBuilder().mesh(0, row, {1, 2, 3, 0, 1}).build()),
            "solid Object0000\n facet normal 0.000000 1.000000 0.000000\n  outer loop\n"
            "   vertex 1.000000 0.000000 0.000000\n   vertex 2.000000 0.000000 0.000000\n"
            "   vertex 0.000000 0.000000 0.000000\n  endloop\n endfacet\nendsolid Object0000\n");
  EXPECT_EQ(written(exportStl, ModelBuilder().build()), "solid Object0000\nendsolid Object0000\n");
}

TEST(ExportDxf, WritesATriangle) {
  EXPECT_EQ(written(exportDxf, triangleModel()), triangleDxf);
}

TEST(ExportDxf, ColoursLayersInTurn) {
  ModelBuilder builder;
  for (const uint32_t material : {0, 254, 255, 256}) builder.mesh(material, {}, {});
  const std::string text = written(exportDxf, builder.build());
  EXPECT_THAT(text, HasSubstr("Mesh00000\n 70\n0\n 62\n1\n"));
  EXPECT_THAT(text, HasSubstr("Mesh00001\n 70\n0\n 62\n255\n"));
  EXPECT_THAT(text, HasSubstr("Mesh00002\n 70\n0\n 62\n1\n"));
  EXPECT_THAT(text, HasSubstr("Mesh00003\n 70\n0\n 62\n1\n"));
}

}  // namespace
}  // namespace facet
