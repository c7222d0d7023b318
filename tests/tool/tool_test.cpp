#include "tool/tool.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "support/byte_writer.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
namespace fs = std::filesystem;

/// A VXM visual of one triangle.
std::string triangleVxm(std::string_view texture = "wall") {
  ByteWriter names, vertices, indices;
  names.text(texture).text("models\\model");
  vertices.write(0x112u, 3u);
  for (const float x : {0.0F, 1.0F, 2.0F})
    vertices.write(x, x * x, 0.5F).write(0.0F, 0.0F, 1.0F).write(x, 0.25F);
  indices.write(3u, uint16_t{0}, uint16_t{1}, uint16_t{2});
  return ByteWriter()
      .chunk(1, ByteWriter().zeros(44))
      .chunk(2, names)
      .chunk(3, vertices)
      .chunk(4, indices)
      .bytes();
}

/// A 1 x 1 BMP of one colour.
std::string onePixelBmp() {
  return ByteWriter()
      .raw("BM")
      .write(58u, 0u, 54u, 40u, 1, 1, uint16_t{1}, uint16_t{24}, 0u, 4u, 0u, 0u, 0u, 0u)
      .raw(std::string_view("\x10\x20\x30\0", 4))
      .bytes();
}

struct Said {
  int status;
  std::string out, error;
};

/// Runs the tool in a folder of its own.
class Tool : public testing::Test {
 protected:
  Said run(std::vector<const char*> words) {
    words.insert(words.begin(), "facetbench");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runTool(static_cast<int>(words.size()), words.data());
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
  }

  std::vector<std::string> files(const std::string& below = "") const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path() / below))
      if (entry.is_regular_file())
        names.push_back(entry.path().lexically_relative(folder.path()).generic_string());
    std::sort(names.begin(), names.end());
    return names;
  }

  TempFolder folder;
  CurrentFolder here{folder.path()};
};

TEST_F(Tool, EndsWithStatus2OnWrongUse) {
  folder.write("a.vxm", triangleVxm());
  folder.write("b.vxm", triangleVxm());
  const std::vector<std::vector<const char*>> uses = {
      {},
      {"fly"},
      {"info"},
      {"info", "--fast", "a.vxm"},
      {"convert", "a.vxm"},
      {"convert", "a.vxm", "-o", "a.xyz"},
      {"convert", "a.vxm", "-o", "obj"},
      {"convert", "a.vxm", "--to", "obj,xyz"},
      {"convert", "a.vxm", "b.vxm", "-o", "c.obj"},
      {"convert", "a.vxm", "--to", "obj", "--jobs", "0"},
  };
  for (const auto& use : uses) {
    const Said result = run(use);
    EXPECT_EQ(result.status, 2) << result.error;
    EXPECT_NE(result.error, "");
  }
  EXPECT_THAT(files(), ElementsAre("a.vxm", "b.vxm"));
  EXPECT_EQ(run({"--help"}).status, 0);
  EXPECT_THAT(run({"convert", "--help"}).out, HasSubstr("facetbench convert ship.vxm -o ship.obj"));
  EXPECT_THAT(run({"--version"}).out, StartsWith("facetbench 1."));
}

TEST_F(Tool, ConvertsOneModelToTheFormatOfItsExtension) {
  folder.write("ship.vxm", triangleVxm());
  const Said result = run({"convert", "SHIP.vxm", "-o", "Out.OBJ"});
  EXPECT_EQ(result.status, 0) << result.error;
  EXPECT_THAT(result.out, StartsWith("SHIP.vxm -> Out.OBJ ("));
  EXPECT_THAT(readWholeFile("Out.OBJ"), HasSubstr("mtllib Out.OBJ\n"));
  EXPECT_THAT(run({"convert", "-q", "ship.vxm", "-o", "b.obj"}).out, IsEmpty());
  const std::string piped = run({"convert", "ship.vxm", "--to", "obj", "-o", "-"}).out;
  EXPECT_THAT(piped, StartsWith("# This file uses meters"));
  EXPECT_THAT(piped, HasSubstr("mtllib ship.obj\n"));
  EXPECT_THAT(files(), ElementsAre("Out.OBJ", "b.obj", "ship.vxm"));
}

TEST_F(Tool, ConvertsFoldersAndKeepsTheirTree) {
  folder.write("in/ship.vxm", triangleVxm());
  folder.write("in/parts/mast.vxm", triangleVxm());
  folder.write("in/parts/mast.object", triangleVxm());  // the bytes decide, not the name
  folder.write("in/parts/broken.vxm", "no model at all");
  folder.write("in/wall.dds", "a texture, no model");
  const Said result = run({"convert", "in", "--to", "obj", "--out", "out", "--recursive", "--jobs", "3"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.error, StartsWith("facetbench: in/parts/broken.vxm: not a known model format"));
  EXPECT_THAT(result.out, HasSubstr("wrote 3 files, 3 triangles"));
  EXPECT_THAT(files("out"),
              ElementsAre("out/parts/mast.object.obj", "out/parts/mast.vxm.obj", "out/ship.obj"));

  EXPECT_EQ(run({"convert", "in", "--to", "obj"}).error,
            "facetbench: in: is a folder (--recursive takes its models)\n");
}

TEST_F(Tool, NeverWritesTwoResultsIntoOneFileNorOverAModel) {
  folder.write("a/ship.vxm", triangleVxm());
  folder.write("b/SHIP.vxm", triangleVxm());
  Said result =
      run({"convert", "a/ship.vxm", "b", "./a/../a/ship.vxm", "-r", "--to", "obj,obj", "--out", "o"});
  EXPECT_EQ(result.status, 0) << result.error;
  EXPECT_THAT(result.out, HasSubstr("wrote 2 files"));
  EXPECT_THAT(files("o"), ElementsAre("o/SHIP.vxm-2.obj", "o/ship.vxm.obj"));

  folder.write("in/ship.mesh", triangleVxm());
  folder.write("in/ship.vxm", triangleVxm());
  folder.write("in/ship.mesh.vxm", "another model");
  result = run({"convert", "in", "-r", "--to", "vxm,stl", "--out", "in"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.error,
              HasSubstr("in/ship.mesh.vxm: is one of the models; choose another name or folder"));
  EXPECT_EQ(readWholeFile("in/ship.mesh.vxm"), "another model");
  EXPECT_THAT(files("in"), ElementsAre("in/ship.mesh", "in/ship.mesh.stl", "in/ship.mesh.vxm", "in/ship.vxm",
                                       "in/ship.vxm.stl", "in/ship.vxm.vxm"));
}

TEST_F(Tool, GivesAModelTheSameColoursInABatchAsAlone) {
  std::vector<const char*> words = {"convert", "--to", "glb", "--out", "many", "--jobs", "4"};
  for (const char* name : {"a.vxm", "b.vxm", "c.vxm", "d.vxm"}) {
    folder.write(name, triangleVxm());
    words.push_back(name);
  }
  EXPECT_EQ(run({"convert", "a.vxm", "-o", "alone.glb"}).status, 0);
  EXPECT_EQ(run(words).status, 0);
  for (const char* name : {"many/a.glb", "many/b.glb", "many/c.glb", "many/d.glb"})
    EXPECT_EQ(readWholeFile(name), readWholeFile("alone.glb")) << name;
}

TEST_F(Tool, LeavesNoHalfWrittenOutput) {
  folder.write("ship.vxm", triangleVxm());
  folder.write("taken/ship.obj/x", "");
  Said result = run({"convert", "ship.vxm", "--to", "obj", "--out", "taken"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "facetbench: taken/ship.obj: cannot create: is a folder\n");
  result = run({"convert", "ship.vxm", "--to", "obj", "--out", "ship.vxm"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.error, StartsWith("facetbench: ship.vxm/ship.obj: cannot create"));
  if (fs::exists("/dev/full")) {
    result = run({"convert", "ship.vxm", "--to", "obj", "-o", "/dev/full"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.error, StartsWith("facetbench: /dev/full: cannot write"));
  }
  EXPECT_THAT(files(), ElementsAre("ship.vxm", "taken/ship.obj/x"));
}

TEST_F(Tool, TellsModelsAsJson) {
  folder.write("ship.vxm", triangleVxm("w\xE4nde\\wall"));
  folder.write("textures/W\xE4nde/Wall.bmp", onePixelBmp());
  folder.write("bad.vxm", "?");
  const Said result = run({"info", "--json", "--details", "ship.vxm", "bad.vxm", "--textures", "nowhere",
                           "--textures", "textures"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "facetbench: bad.vxm: too short for a model: 1 bytes, expected at least 8\n");
  const size_t lineEnd = result.out.find('\n');
  const auto ship = nlohmann::json::parse(result.out.substr(0, lineEnd));
  const auto bad = nlohmann::json::parse(result.out.substr(lineEnd + 1));
  EXPECT_EQ(ship["path"], "ship.vxm");
  EXPECT_EQ(ship["modelType"], "0x4444");
  EXPECT_EQ(ship["totalIndices"], 3);
  EXPECT_EQ(ship["meshes"][0]["firstIndices"], nlohmann::json({0, 1, 2}));
  EXPECT_EQ(ship["meshes"][0]["firstVertices"][2], nlohmann::json({2.0, 4.0, 0.5, 2.0, 0.25}));
  EXPECT_EQ(ship["materials"][0]["texture"], "w\u00E4nde\\wall");
  EXPECT_EQ(ship["materials"][0]["hasTexture"], 1);
  EXPECT_EQ(ship["materials"][0]["file"], "textures/W\u00E4nde/Wall.bmp");
  EXPECT_EQ(ship["skyMaterials"].size(), 6u);
  EXPECT_EQ(ship["status"].back(), "Loading complete");
  EXPECT_EQ(bad["path"], "bad.vxm");
  EXPECT_TRUE(bad.contains("error"));
}

TEST_F(Tool, TakesBasePathsFromTheConfigurationOfTheCurrentFolder) {
  folder.write("ship.vxm", triangleVxm());
  folder.write("elsewhere/wall.bmp", onePixelBmp());
  EXPECT_THAT(run({"info", "ship.vxm"}).out, HasSubstr("'wall' 'models\\model': not found"));
  folder.write("VXMViewer.cfg", "elsewhere\\");
  EXPECT_THAT(run({"info", "ship.vxm"}).out, HasSubstr("'wall' 'models\\model': elsewhere/wall.bmp"));
  EXPECT_THAT(run({"log", "ship.vxm"}).out, HasSubstr("base path to textures 'elsewhere\\'\n"));
}

TEST_F(Tool, WritesLogAndPicture) {
  folder.write("ship.vxm", triangleVxm());
  folder.write("wall.bmp", onePixelBmp());
  EXPECT_EQ(run({"log", "ship.vxm", "-o", "object.log"}).status, 0);
  EXPECT_EQ(readWholeFile("object.log"), run({"log", "ship.vxm"}).out);
  EXPECT_THAT(readWholeFile("object.log"), HasSubstr("model name 'ship.vxm'\n"));

  EXPECT_EQ(run({"texture", "wall.bmp", "-o", "wall.png"}).out, "wall.bmp: 1 x 1, X8R8G8B8, 1 level\n");
  const auto told = nlohmann::json::parse(run({"texture", "--json", "wall.png"}).out);
  EXPECT_EQ(told["width"], 1);
  EXPECT_EQ(told["mipCount"], 1);
  const Said failed = run({"texture", "ship.vxm", "missing.dds"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_THAT(failed.error, HasSubstr("facetbench: missing.dds: "));
}

}  // namespace
}  // namespace facet
