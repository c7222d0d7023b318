#include <gmock/gmock.h>

#include "export/written.h"
#include "support/model_builder.h"

namespace facet {
namespace {

using testing::HasSubstr;

constexpr std::string_view triangleDae = R"(<?xml version="1.0" encoding="utf-8"?>
<COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" version="1.4.1">
<asset>
<contributor>
<author>facetbench</author>
<authoring_tool>facetbench</authoring_tool>
</contributor>
<unit meter="1.00" name="meter"/>
<up_axis>Y_UP</up_axis>
</asset>
<library_images>
<image id="file0-image" name="file0">
<init_from>stone</init_from>
</image>
</library_images>
<library_materials>
<material id="__default_ID" name="__default_">
<instance_effect url="#__default_-effect"/>
</material>
</library_materials>
<library_effects>
<effect id="__default_-effect" name="__default_-effect">
<profile_COMMON>
<technique sid="COMMON">
<phong>
<emission><color>0.000000 0.000000 0.000000 1</color></emission>
<ambient><color>0.000000 0.000000 0.000000 1</color></ambient>
<diffuse><color>0.700000 0.700000 0.700000 1</color></diffuse>
<specular><color>0.330000 0.330000 0.330000 1</color></specular>
<shininess><float>20.000000</float></shininess>
<reflectivity><float>0.100000</float></reflectivity>
<transparent><color>1 1 1 1</color></transparent>
<transparency><float>0.000000</float></transparency>
</phong>
</technique>
</profile_COMMON>
</effect>
</library_effects>
<library_geometries>
<geometry id="mesh0-geometry" name="mesh0-geometry">
<mesh>
<source id="mesh0-positions" name="position">
<float_array id="mesh0-positions-array" count="9">1.000000 2.000000 3.000000 4.000000 5.000000 6.000000 7.000000 8.000000 10.000000 </float_array>
<technique_common>
<accessor source="#mesh0-positions-array" count="3" stride="3">
<param name="X" type="float"/>
<param name="Y" type="float"/>
<param name="Z" type="float"/>
</accessor>
</technique_common>
</source>
<source id="mesh0-normals" name="normal">
<float_array id="mesh0-normals-array" count="9">0.000000 1.000000 0.000000 1.000000 0.000000 0.000000 0.000000 0.000000 1.000000 </float_array>
<technique_common>
<accessor source="#mesh0-normals-array" count="3" stride="3">
<param name="X" type="float"/>
<param name="Y" type="float"/>
<param name="Z" type="float"/>
</accessor>
</technique_common>
</source>
<source id="mesh0-uv" name="uv">
<float_array id="mesh0-uv-array" count="6">0.250000 0.125000 0.500000 0.250000 0.750000 1.000000 </float_array>
<technique_common>
<accessor source="#mesh0-uv-array" count="3" stride="2">
<param name="S" type="float"/>
<param name="T" type="float"/>
</accessor>
</technique_common>
</source>
<vertices id="mesh0-vertices">
<input semantic="POSITION" source="#mesh0-positions"/>
</vertices>
<triangles material="__default_" count="1">
<input semantic="VERTEX" source="#mesh0-vertices" offset="0"/>
<input semantic="NORMAL" source="#mesh0-normals" offset="1"/>
<input semantic="TEXCOORD" source="#mesh0-uv" offset="2" set="0"/>
<p>0 0 0 1 1 1 2 2 2 </p>
</triangles>
</mesh>
</geometry>
</library_geometries>
<library_nodes>
<node id="Group_0" name="Group_0">
<node id="mesh0" name="mesh0">
<instance_geometry url="#mesh0-geometry">
<bind_material>
<technique_common>
<instance_material symbol="__default_" target="#__default_ID"><bind_vertex_input semantic="UVSET0" input_semantic="TEXCOORD" input_set="0"/>
</instance_material>
</technique_common>
</bind_material>
</instance_geometry>
</node>
</node>
</library_nodes>
<library_visual_scenes>
<visual_scene id="defScene" name="defScene">
<node id="Model" name="Model">
<node id="Group_0" name="Group_0">
<node id="mesh0" name="mesh0">
<instance_geometry url="#mesh0-geometry">
<bind_material>
<technique_common>
<instance_material symbol="__default_" target="#__default_ID"/><bind_vertex_input semantic="UVSET0" input_semantic="TEXCOORD" input_set="0"/>
</technique_common>
</bind_material>
</instance_geometry>
</node>
</node>
</node>
</visual_scene>
</library_visual_scenes>
<scene>
<instance_visual_scene url="#defScene"/>
</scene>
</COLLADA>
)";

TEST(ExportDae, WritesATriangle) {
  EXPECT_EQ(written(exportDae, triangleModel()), triangleDae);
}

TEST(ExportDae, RunsIndexListsOverPartialTriangles) {
  Model model = ModelBuilder().material("a&b").mesh(0, {{0, 0, 0}, {1, 0, 0}}, {0, 1, 0, 1}).build();
  const std::string text = written(exportDae, std::move(model));
  EXPECT_THAT(text, HasSubstr("<triangles material=\"__default_\" count=\"1\">"));
  EXPECT_THAT(text, HasSubstr("<p>0 0 0 1 1 1 0 0 0 1 1 1 </p>"));
  EXPECT_THAT(text, HasSubstr("<init_from>a&b</init_from>"));
}

TEST(ExportDae, WritesEveryMeshInAllThreePlaces) {
  Model model = ModelBuilder().mesh(0, {}, {}).mesh(0, {}, {}).build();
  const std::string text = written(exportDae, std::move(model));
  EXPECT_THAT(text, HasSubstr("</p>\n</triangles>\n</mesh>\n</geometry>\n<geometry id=\"mesh1-geometry\""));
  EXPECT_THAT(text,
              HasSubstr("</node>\n</node>\n<node id=\"Group_1\" name=\"Group_1\">\n<node id=\"mesh1\""));
  EXPECT_THAT(text, HasSubstr("</node>\n</node>\n</node>\n</visual_scene>"));
}

TEST(ExportDae, LeavesLibrariesOfAnEmptyModelEmpty) {
  const std::string text = written(exportDae, ModelBuilder().build());
  EXPECT_THAT(text,
              HasSubstr("<library_geometries>\n</library_geometries>\n<library_nodes>\n</library_nodes>\n"));
  EXPECT_THAT(text, HasSubstr("<node id=\"Model\" name=\"Model\">\n</node>\n"));
}

}  // namespace
}  // namespace facet
