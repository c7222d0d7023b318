#include "tool/batch.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <map>
#include <nlohmann/json.hpp>

#include "export/export.h"
#include "platform/output.h"
#include "support/format_builders.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
namespace fs = std::filesystem;

const std::string onePixel = BmpFile{.height = 1, .data = {"\x10\x20\x30\0", 4}};

struct Said {
  int status;
  std::string out, error;
};

/// Runs the tool in a folder of its own that holds a triangle with the texture "wall".
class Tool : public testing::Test {
 protected:
  Tool() { folder.write("ship.vxm", triangle); }

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

  const std::string triangle = triangleFile("wall", "models\\model");
  TempFolder folder;
  CurrentFolder here{folder.path()};
};

TEST_F(Tool, EndsWithStatus2OnWrongUseAndNamesTheWord) {
  const std::pair<std::vector<const char*>, const char*> uses[] = {
      {{"convrt", "x"}, "facetbench: unknown command convrt; did you mean convert?\n"},
      {{"fly"}, "facetbench: unknown command fly; the commands are convert info texture log render\n"},
      {{"info"}, "models"},
      {{"info", "--fast", "ship.vxm"}, "--fast"},
      {{"convert", "ship.vxm"}, "give -o FILE or --to FORMAT"},
      {{"convert", "ship.vxm", "-o", "a.xyz"}, "'xyz' (formats: obj, smd"},
      {{"convert", "ship.vxm", "-o", "obj"}, "obj has no extension"},
      {{"convert", "ship.vxm", "--to", "obj,xyz"}, "'xyz'"},
      {{"convert", "ship.vxm", "b.vxm", "-o", "c.obj"}, "-o takes one model"},
      {{"convert", "ship.vxm", "-o", "a.gltf"}, "--style modern has it"},
      {{"convert", "ship.vxm", "-o", "a.obj", "--up", "z"}, "go with --style modern"},
      {{"convert", "ship.vxm", "-o", "a.stl", "--style", "modern", "--scale", "-1"}, "--scale"},
      {{"convert", "ship.vxm", "-o", "-", "--style", "modern", "--to", "dae"}, "dae is more than one file"},
      {{"convert", "ship.vxm", "--to", "obj", "--jobs", "0"}, "--jobs"},
      {{"texture", "a.png", "b.png", "-o", "c.png"}, "-o takes one picture"},
      {{"texture", "a.png", "-o", "c.jpg"}, "PNG"},
  };
  for (const auto& [use, part] : uses) {
    const Said result = run(use);
    EXPECT_EQ(result.status, 2) << part;
    EXPECT_THAT(result.error, HasSubstr(part));
  }
  EXPECT_THAT(files(), ElementsAre("ship.vxm"));
  EXPECT_EQ(run({}).status, 2);
  EXPECT_EQ(run({}).out, run({"--help"}).out);
  EXPECT_EQ(run({"--help"}).status, 0);
  EXPECT_THAT(run({"convert", "--help"}).out, HasSubstr("facetbench convert ship.vxm -o ship.obj"));
  EXPECT_THAT(run({"--version"}).out, StartsWith("facetbench 1."));
}

TEST_F(Tool, ConvertsOneModelToTheFormatOfItsExtension) {
  const Said result = run({"convert", "SHIP.vxm", "-o", "Out.OBJ"});
  EXPECT_EQ(result.status, 0) << result.error;
  EXPECT_THAT(result.out, StartsWith("SHIP.vxm -> Out.OBJ ("));
  EXPECT_THAT(readWholeFile("Out.OBJ"), HasSubstr("mtllib Out.OBJ\n"));
  EXPECT_THAT(run({"convert", "-q", "ship.vxm", "-o", "b.obj"}).out, testing::IsEmpty());
  const std::string piped = run({"convert", "ship.vxm", "--to", "obj", "-o", "-"}).out;
  EXPECT_THAT(piped, StartsWith("# This file uses meters"));
  EXPECT_THAT(piped, HasSubstr("mtllib ship.obj\n"));
  EXPECT_THAT(files(), ElementsAre("Out.OBJ", "b.obj", "ship.vxm"));
}

TEST_F(Tool, ConvertsFoldersAndKeepsTheirTree) {
  folder.write("in/ship.vxm", triangle);
  folder.write("in/parts/mast.vxm", triangle);
  folder.write("in/parts/mast.object", triangle);  // the bytes decide, not the name
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

TEST_F(Tool, NeverWritesTwoResultsIntoOneFile) {
  folder.write("a/ship.vxm", triangle);
  folder.write("b/SHIP.vxm", triangle);
  const Said result =
      run({"convert", "a/ship.vxm", "b", "./a/../a/ship.vxm", "-r", "--to", "obj,OBJ", "--out", "o"});
  EXPECT_EQ(result.status, 0) << result.error;
  EXPECT_THAT(result.out, HasSubstr("wrote 2 files"));
  EXPECT_THAT(files("o"), ElementsAre("o/SHIP.vxm-2.obj", "o/ship.vxm.obj"));
}

TEST_F(Tool, OverwritesNothingOfTheUsers) {
  folder.write("sub/wall.png.vxm", triangle);
  folder.write("a.bmp", onePixel);
  folder.write("VXMViewer.cfg", "textures/");
  folder.write("textures/wall.png", onePixel);
  fs::create_symlink("ship.vxm", "link.obj");
  fs::create_hard_link("ship.vxm", "hard.obj");
  fs::create_symlink(".", "here");
  fs::create_directory(folder / "out");
  fs::create_symlink("../textures/wall.png", "out/ship.png");
  const std::vector<std::vector<const char*>> uses = {
      {"log", "ship.vxm", "-o", "ship.vxm"},
      {"log", "ship.vxm", "-o", "./sub/../here/ship.vxm"},
      {"log", "ship.vxm", "-o", "VXMViewer.cfg"},
      {"texture", "a.bmp", "-o", "hard/../a.bmp"},
      {"texture", "a.bmp", "-o", "here/a.bmp"},
      {"convert", "ship.vxm", "-o", "ship.vxm"},
      {"convert", "ship.vxm", "-o", "link.obj"},
      {"convert", "ship.vxm", "-o", "hard.obj"},
      {"convert", "ship.vxm", "--to", "obj,vxm"},
      {"convert", ".", "-r", "--to", "obj", "-o", "two.obj"},
      {"convert", "ship.vxm", "--to", "obj", "-o", "VXMViewer.cfg"},
      {"render", "ship.vxm", "-o", "ship.vxm"},
      {"render", "ship.vxm", "sub/wall.png.vxm", "--out", "out"},
  };
  const auto before = files();
  std::map<std::string, std::string> bytes;
  for (const std::string& file : before) bytes[file] = readWholeFile(file);
  for (const auto& use : uses) {
    const Said result = run(use);
    EXPECT_EQ(result.status, 2) << testing::PrintToString(use);
    EXPECT_NE(result.error, "");
  }
  EXPECT_EQ(run({"render", "ship.vxm", "-o", "textures/wall.png"}).status, 1) << "the model's own texture";
  EXPECT_EQ(files(), before);
  for (const auto& [file, held] : bytes) EXPECT_EQ(readWholeFile(file), held) << file;
  EXPECT_EQ(run({"convert", "ship.vxm", "--to", "obj", "-o", "/dev/null"}).status, 0);
}

TEST_F(Tool, WritesFormatsThatSnapTheModelLast) {
  BuiltMesh mesh = builtTriangle();
  mesh.vertices[2].v = 1.0F / 3;
  folder.write("m.vxm", vxmVisual(4, mesh).bytes());
  ASSERT_EQ(run({"convert", "m.vxm", "--to", "vxm", "--out", "alone"}).status, 0);
  ASSERT_EQ(run({"convert", "m.vxm", "--to", "obj,pov,vxm", "--out", "all"}).status, 0);
  EXPECT_EQ(readWholeFile("all/m.vxm"), readWholeFile("alone/m.vxm"));
}

/// Runs a conversion after Ctrl-C has been pressed, and ends the process: 20 when nothing was written.
[[noreturn]] void convertInterrupted() {
  stopOnInterruption();
  std::raise(SIGINT);
  const char* words[] = {"facetbench", "convert", "ship.vxm", "gone.vxm", "--to", "obj", "-q"};
  runTool(static_cast<int>(std::size(words)), words);
  std::_Exit(fs::exists("ship.obj") ? 10 : 20);
}

TEST_F(Tool, BeginsNoJobOnceInterrupted) {
  EXPECT_EXIT(convertInterrupted(), testing::ExitedWithCode(20), "^$") << "nor tells of the missing model";
}

TEST_F(Tool, TellsOfFoldersThatCannotBeEntered) {
  folder.write("in/ship.vxm", triangle);
  folder.write("in/locked/mast.vxm", triangle);
  fs::permissions("in/locked", fs::perms::none);
  const bool wasRoot = geteuid() == 0 && seteuid(65534) == 0;  // to whom no folder is closed
  const Said result = run({"convert", "in", "-r", "--to", "obj", "-o", "-"});
  ASSERT_EQ(wasRoot ? seteuid(0) : 0, 0);
  fs::permissions("in/locked", fs::perms::all);
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.error, StartsWith("facetbench: in/locked: cannot be entered: Permission denied\n"));
  EXPECT_THAT(result.out, StartsWith("# This file uses meters"));
}

TEST_F(Tool, WarnsOfCutFilesAndFailsWhereOutputIsLost) {
  folder.write("ship.vxm", triangle.substr(0, triangle.size() - 4));
  const std::string warning =
      "cut off: " + std::to_string(triangle.size() - 4) + " of " + std::to_string(triangle.size()) + " bytes";
  const Said result = run({"info", "--json", "ship.vxm"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.error, AllOf(StartsWith("facetbench: ship.vxm: " + warning + "\n"),
                                  HasSubstr("\nfacetbench: ship.vxm: 1 of 1 texture missing: wall;")));
  const auto json = nlohmann::json::parse(result.out);
  EXPECT_EQ(json["warnings"], nlohmann::json({warning}));
  EXPECT_EQ(json["missingTextures"], nlohmann::json({{{"texture", "wall"}, {"reason", "not found"}}}));
  EXPECT_EQ(json["texturePlaces"][0], (folder / "gamedata/textures/"));

  const int terminal = dup(STDOUT_FILENO), full = open("/dev/full", O_WRONLY);
  ASSERT_GE(full, 0);
  std::fflush(stdout);
  dup2(full, STDOUT_FILENO);
  const char* words[] = {"facetbench", "info", "ship.vxm"};
  const int status = runTool(3, words);
  dup2(terminal, STDOUT_FILENO);
  close(full);
  close(terminal);
  EXPECT_EQ(status, 1);
}

TEST_F(Tool, DecodesTexturesOnlyForFormatsThatHoldThem) {
  ASSERT_EQ(run({"convert", "ship.vxm", "--to", "all", "--out", "without"}).status, 0);
  folder.write("gamedata/textures/wall.bmp", onePixel);
  ASSERT_EQ(run({"convert", "ship.vxm", "--to", "all", "--out", "with"}).status, 0);
  folder.write("gamedata/textures/wall.bmp", "no picture");
  ASSERT_EQ(run({"convert", "ship.vxm", "--to", "all", "--out", "broken"}).status, 0);
  for (const ExportFormat& format : exportFormats()) {
    const std::string name = "/ship." + std::string(format.name);
    const std::string without = readWholeFile("without" + name);
    EXPECT_EQ(readWholeFile("broken" + name), without) << name;
    EXPECT_EQ(readWholeFile("with" + name) != without, format.holdsPictures) << name;
  }
}

TEST_F(Tool, WritesModernFilesWithTheirTexturesOnce) {
  folder.write("in/models/a.vxm", triangle);
  folder.write("in/models/deep/b.vxm", triangle);
  folder.write("in/textures/Wall.BMP", onePixel);
  const Said result = run({"convert", "in", "-r", "--style", "modern", "--to", "all", "--out", "out"});
  EXPECT_EQ(result.status, 0) << result.error;
  EXPECT_THAT(result.out, HasSubstr("wrote 15 files, "));
  EXPECT_THAT(files("out"),
              ElementsAre("out/models/a.bin", "out/models/a.dae", "out/models/a.glb", "out/models/a.gltf",
                          "out/models/a.mtl", "out/models/a.obj", "out/models/a.stl", "out/models/deep/b.bin",
                          "out/models/deep/b.dae", "out/models/deep/b.glb", "out/models/deep/b.gltf",
                          "out/models/deep/b.mtl", "out/models/deep/b.obj", "out/models/deep/b.stl",
                          "out/textures/Wall.png"));
  EXPECT_THAT(readWholeFile("out/models/deep/b.mtl"), HasSubstr("map_Kd ../../textures/Wall.png\n"));

  EXPECT_EQ(run({"convert", "in/models/a.vxm", "--style", "modern", "-o", "one/a.obj", "--scale", "10",
                 "--up", "z"})
                .status,
            0);
  EXPECT_THAT(files("one"), ElementsAre("one/a.mtl", "one/a.obj", "one/textures/Wall.png"));
  EXPECT_THAT(run({"convert", "ship.vxm", "-o", "exact.obj"}).out, testing::Not(HasSubstr("--style modern")));
  EXPECT_THAT(run({"convert", "in/models/a.vxm", "-o", "exact.obj"}).out, HasSubstr("--style modern"));
  folder.write("ship.bin", triangle);
  EXPECT_EQ(run({"convert", "ship.bin", "--style", "modern", "-o", "ship.gltf"}).status, 2)
      << "ship.bin is its companion";
}

TEST_F(Tool, GivesAModelTheSameColoursInABatchAsAlone) {
  std::vector<const char*> words = {"convert", "--to", "glb", "--out", "many", "--jobs", "4"};
  for (const char* name : {"a.vxm", "b.vxm", "c.vxm", "d.vxm"}) {
    folder.write(name, triangle);
    words.push_back(name);
  }
  EXPECT_EQ(run({"convert", "a.vxm", "-o", "alone.glb"}).status, 0);
  EXPECT_EQ(run(words).status, 0);
  for (const char* name : {"many/a.glb", "many/b.glb", "many/c.glb", "many/d.glb"})
    EXPECT_EQ(readWholeFile(name), readWholeFile("alone.glb")) << name;
}

TEST_F(Tool, LeavesNoHalfWrittenOutput) {
  folder.write("taken/ship.obj/x", "");
  const std::tuple<const char*, const char*, std::string> outputs[] = {
      {"--out", "taken", "taken/ship.obj: cannot create: is a folder\n"},
      {"--out", "ship.vxm", "ship.vxm/ship.obj: cannot create"},
      {"-o", "/dev/full", "/dev/full: cannot write"}};
  for (const auto& [option, output, error] : outputs) {
    const Said result = run({"convert", "ship.vxm", "--to", "obj", option, output});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.error, HasSubstr("\nfacetbench: " + error));
  }
  EXPECT_TRUE(fs::exists("/dev/full"));
  EXPECT_THAT(files(), ElementsAre("ship.vxm", "taken/ship.obj/x"));
}

TEST_F(Tool, TellsModelsAsJson) {
  folder.write("ship.vxm", triangleFile("w\xE4nde\\wall"));
  folder.write("textures/W\xE4nde/Wall.bmp", onePixel);
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
  EXPECT_EQ(ship["meshes"][0]["firstVertices"][2], nlohmann::json({7.0, 8.0, 10.0, 0.75, 1.0}));
  EXPECT_EQ(ship["materials"][0]["texture"], "w\u00E4nde\\wall");
  EXPECT_EQ(ship["materials"][0]["hasTexture"], 1);
  EXPECT_EQ(ship["materials"][0]["file"], "textures/W\u00E4nde/Wall.bmp");
  EXPECT_EQ(ship["skyMaterials"].size(), 6u);
  EXPECT_EQ(ship["status"].back(), "Loading complete");
  EXPECT_EQ(bad["path"], "bad.vxm");
  EXPECT_TRUE(bad.contains("error"));
}

TEST_F(Tool, TakesBasePathsFromTheConfigurationOfTheCurrentFolder) {
  folder.write("elsewhere/wall.bmp", onePixel);
  EXPECT_THAT(run({"info", "ship.vxm"}).out, HasSubstr("'wall' 'models\\model': not found"));
  folder.write("VXMViewer.cfg", "elsewhere\\");
  EXPECT_THAT(run({"info", "ship.vxm"}).out, HasSubstr("'wall' 'models\\model': elsewhere/wall.bmp"));
  EXPECT_THAT(run({"log", "ship.vxm"}).out, HasSubstr("base path to textures 'elsewhere\\'\n"));
}

TEST_F(Tool, WritesLogAndPicture) {
  folder.write("wall.bmp", onePixel);
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
