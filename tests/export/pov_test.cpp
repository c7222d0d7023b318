#include <gmock/gmock.h>

#include "export/written.h"
#include "support/model_builder.h"

namespace facet {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

constexpr std::string_view trianglePov = R"(// This file uses meters as units for non-parametric coordinates.
#version 3.6;
#include "colors.inc"
#include "functions.inc"
#include "logo.inc"
global_settings { assumed_gamma 2.0 }
camera {location <0,5,-10> direction y sky z up z right (4/3)*x look_at <0, 0, 0> angle 90 }
background {color rgb < 0.30, 0.30, 0.30 >}
light_source {<1000,3000,0> rgb <1.0, 0.8, 0.4>}
// materials : 1
#declare Material_00000 = texture { // stone 
   pigment { rgb 0.5 }
   finish { phong 1 ambient 0.3 diffuse 0.7 specular 1.0 }
}
// meshes : 1
// vertices : 3, was 3
#declare Mesh_00000=
mesh2{
  vertex_vectors{
   3
   <1.000000,2.000000,-3.000000>,
   <4.000000,5.000000,-6.000000>,
   <7.000000,8.000000,-10.000000>,
}
// normales : 3, was 3
  normal_vectors{
   3
   <0.000000,1.000000,-0.000000>,
   <1.000000,0.000000,-0.000000>,
   <0.000000,0.000000,-1.000000>,
}
// uv's : 3, was 3
  uv_vectors{
   3
   <0.250000,0.875000>,
   <0.500000,0.750000>,
   <0.750000,0.000000>,
}
// faces : 1
// indices : 3
  face_indices{
   1
   <0,2,1>,
  }
  normal_indices{
   1
   <0,2,1>,
  }
  uv_indices{
   1
   <0,2,1>,
  }
  uv_mapping
  texture { Material_00000 }
}
object {
  Mesh_00000
  translate <0,0,0>
  rotate <0,clock,0>
}
)";

TEST(ExportPov, WritesATriangle) {
  EXPECT_EQ(written(exportPov, triangleModel()), trianglePov);
}

TEST(ExportPov, NumbersEveryMeshAfresh) {
  const std::vector<BuiltVertex> vertices{{0, 0, 0}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  Model model = ModelBuilder().mesh(0, vertices, {0, 2, 3}).mesh(3, vertices, {1, 2, 3, 0}).build();
  const std::string text = written(exportPov, std::move(model));
  EXPECT_THAT(text.substr(text.find("Mesh_00001")),
              HasSubstr("  face_indices{\n   1\n   <0,2,1>,\n  }\n"
                        "  normal_indices{\n   1\n   <0,0,0>,\n  }\n"
                        "  uv_indices{\n   1\n   <0,0,0>,\n  }\n"
                        "  uv_mapping\n  texture { Material_00003 }\n}\n"));
}

TEST(ExportPov, KeepsIndicesInsideTheLists) {
  EXPECT_THAT(written(exportPov, ModelBuilder().mesh(0, {{1, 1, 1}, {2, 2, 2}}, {0, 1, 9}).build()),
              HasSubstr("   <0,0,1>,\n"));
  EXPECT_THAT(written(exportPov, ModelBuilder().mesh(0, {}, {0, 1, 2}).build()),
              HasSubstr("// faces : 0\n// indices : 3\n  face_indices{\n   0\n  }\n"));
}

TEST(ExportPov, WritesTheHeadOfAnEmptyModel) {
  EXPECT_THAT(written(exportPov, ModelBuilder().build()), EndsWith("// materials : 0\n// meshes : 0\n"));
}

}  // namespace
}  // namespace facet
