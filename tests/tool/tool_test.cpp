#include "tool/batch.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <map>
#include <nlohmann/json.hpp>

#include "export/export.h"
#include "platform/output.h"

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

TEST_F(Tool, EndsWithStatus2OnWrongUseAndNamesTheWord) {
  folder.write("a.vxm", triangleVxm());
  folder.write("b.vxm", triangleVxm());
  const std::pair<std::vector<const char*>, const char*> uses[] = {
      {{"convrt", "x"}, "facetbench: unknown command convrt; did you mean convert?\n"},
      {{"fly"}, "facetbench: unknown command fly; the commands are convert info texture log render\n"},
      {{"info"}, "models"},
      {{"info", "--fast", "a.vxm"}, "--fast"},
      {{"convert", "a.vxm"}, "give -o FILE or --to FORMAT"},
      {{"convert", "a.vxm", "-o", "a.xyz"}, "'xyz' (formats: obj, smd"},
      {{"convert", "a.vxm", "-o", "obj"}, "obj has no extension"},
      {{"convert", "a.vxm", "--to", "obj,xyz"}, "'xyz'"},
      {{"convert", "a.vxm", "b.vxm", "-o", "c.obj"}, "-o takes one model"},
      {{"convert", "a.vxm", "--to", "obj", "--jobs", "0"}, "--jobs"},
      {{"texture", "a.png", "b.png", "-o", "c.png"}, "-o takes one picture"},
      {{"texture", "a.png", "-o", "c.jpg"}, "PNG"},
  };
  for (const auto& [use, part] : uses) {
    const Said result = run(use);
    EXPECT_EQ(result.status, 2) << part;
    EXPECT_THAT(result.error, HasSubstr(part));
  }
  EXPECT_THAT(files(), ElementsAre("a.vxm", "b.vxm"));
  EXPECT_EQ(run({}).status, 2);
  EXPECT_EQ(run({}).out, run({"--help"}).out);
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

TEST_F(Tool, NeverWritesTwoResultsIntoOneFile) {
  folder.write("a/ship.vxm", triangleVxm());
  folder.write("b/SHIP.vxm", triangleVxm());
  const Said result =
      run({"convert", "a/ship.vxm", "b", "./a/../a/ship.vxm", "-r", "--to", "obj,OBJ", "--out", "o"});
  EXPECT_EQ(result.status, 0) << result.error;
  EXPECT_THAT(result.out, HasSubstr("wrote 2 files"));
  EXPECT_THAT(files("o"), ElementsAre("o/SHIP.vxm-2.obj", "o/ship.vxm.obj"));
}

TEST_F(Tool, OverwritesNothingOfTheUsers) {
  folder.write("m.vxm", triangleVxm());
  folder.write("sub/wall.png.vxm", triangleVxm());
  folder.write("a.bmp", onePixelBmp());
  folder.write("VXMViewer.cfg", "textures/");
  folder.write("textures/wall.bmp", onePixelBmp());
  fs::create_symlink("m.vxm", "link.obj");
  fs::create_hard_link("m.vxm", "hard.obj");
  fs::create_symlink(".", "here");
  fs::copy(folder / "textures/wall.bmp", folder / "textures/wall.png");
  fs::remove(folder / "textures/wall.bmp");
  fs::create_directory(folder / "out");
  fs::create_symlink("../textures/wall.png", "out/m.png");
  const std::vector<std::vector<const char*>> uses = {
      {"log", "m.vxm", "-o", "m.vxm"},
      {"log", "m.vxm", "-o", "./sub/../here/m.vxm"},
      {"log", "m.vxm", "-o", "VXMViewer.cfg"},
      {"texture", "a.bmp", "-o", "hard/../a.bmp"},
      {"texture", "a.bmp", "-o", "here/a.bmp"},
      {"convert", "m.vxm", "-o", "m.vxm"},
      {"convert", "m.vxm", "-o", "link.obj"},
      {"convert", "m.vxm", "-o", "hard.obj"},
      {"convert", "m.vxm", "--to", "obj,vxm"},
      {"convert", ".", "-r", "--to", "obj", "-o", "two.obj"},
      {"convert", "m.vxm", "--to", "obj", "-o", "VXMViewer.cfg"},
      {"render", "m.vxm", "-o", "m.vxm"},
      {"render", "m.vxm", "sub/wall.png.vxm", "--out", "out"},
  };
  const auto before = files();
  std::map<std::string, std::string> bytes;
  for (const std::string& file : before) bytes[file] = readWholeFile(file);
  for (const auto& use : uses) {
    const Said result = run(use);
    EXPECT_EQ(result.status, 2) << testing::PrintToString(use);
    EXPECT_NE(result.error, "");
  }
  EXPECT_EQ(run({"render", "m.vxm", "-o", "textures/wall.png"}).status, 1) << "the model's own texture";
  EXPECT_EQ(files(), before);
  for (const auto& [file, held] : bytes) EXPECT_EQ(readWholeFile(file), held) << file;
  EXPECT_EQ(run({"convert", "m.vxm", "--to", "obj", "-o", "/dev/null"}).status, 0);
}

TEST_F(Tool, WritesFormatsThatSnapTheModelLast) {
  folder.write("m.vxm", ByteWriter().raw(triangleVxm()).bytes());
  std::string bytes = triangleVxm();
  const float third = 1.0F / 3;
  bytes.replace(bytes.size() - 8 - 6 - 4 - 8, 4, reinterpret_cast<const char*>(&third), 4);  // a last v
  folder.write("m.vxm", bytes);
  ASSERT_EQ(run({"convert", "m.vxm", "--to", "vxm", "--out", "alone"}).status, 0);
  ASSERT_EQ(run({"convert", "m.vxm", "--to", "obj,pov,vxm", "--out", "all"}).status, 0);
  EXPECT_EQ(readWholeFile("all/m.vxm"), readWholeFile("alone/m.vxm"));
}

/// Runs a conversion after Ctrl-C has been pressed, and ends the process: 20 when nothing was written.
[[noreturn]] void convertInterrupted() {
  stopOnInterruption();
  std::raise(SIGINT);
  const char* words[] = {"facetbench", "convert", "a.vxm", "gone.vxm", "--to", "obj", "-q"};
  runTool(static_cast<int>(std::size(words)), words);
  std::_Exit(fs::exists("a.obj") ? 10 : 20);
}

TEST_F(Tool, BeginsNoJobOnceInterrupted) {
  folder.write("a.vxm", triangleVxm());
  EXPECT_EXIT(convertInterrupted(), testing::ExitedWithCode(20), "^$") << "nor tells of the missing model";
}

TEST_F(Tool, TellsOfFoldersThatCannotBeEntered) {
  folder.write("in/ship.vxm", triangleVxm());
  folder.write("in/locked/mast.vxm", triangleVxm());
  fs::permissions("in/locked", fs::perms::none);
  const bool wasRoot = geteuid() == 0 && seteuid(65534) == 0;  // to whom no folder is closed
  const Said result = run({"convert", "in", "-r", "--to", "obj", "-o", "-"});
  ASSERT_EQ(wasRoot ? seteuid(0) : 0, 0);
  fs::permissions("in/locked", fs::perms::all);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "facetbench: in/locked: cannot be entered: Permission denied\n");
  EXPECT_THAT(result.out, StartsWith("# This file uses meters"));
}

TEST_F(Tool, WarnsOfCutFilesAndFailsWhereOutputIsLost) {
  const std::string whole = triangleVxm();
  folder.write("ship.vxm", whole.substr(0, whole.size() - 4));
  const std::string warning =
      "cut off: " + std::to_string(whole.size() - 4) + " of " + std::to_string(whole.size()) + " bytes";
  const Said result = run({"info", "--json", "ship.vxm"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error, "facetbench: ship.vxm: " + warning + "\n");
  EXPECT_EQ(nlohmann::json::parse(result.out)["warnings"], nlohmann::json({warning}));

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
  folder.write("ship.vxm", triangleVxm());
  ASSERT_EQ(run({"convert", "ship.vxm", "--to", "all", "--out", "without"}).status, 0);
  folder.write("gamedata/textures/wall.bmp", onePixelBmp());
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
