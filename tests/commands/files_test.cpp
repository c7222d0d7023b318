#include "commands/commands.h"

#include <gmock/gmock.h>

#include "commands/recorded_viewer.h"

namespace facet {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using namespace std::string_literals;

const std::string badBytes = "not a model";

TEST(Configuration, IsTakenByteForByteUpTo260) {
  const std::string first(200, 'a');
  const std::pair<std::string, BasePaths> cases[] = {
      {"C:\\game\\textures\\\0D:\\mods\\textures\\\0\0E:\\\0"s,
       {"C:\\game\\textures\\", "D:\\mods\\textures\\"}},
      {"tex\\\r\n\0\0"s, {"tex\\\r\n"}},
      {"tex", {"tex"}},
      {"", {}},
      {"\0tex\0\0"s, {}},
      {first + "\0"s + std::string(100, 'b'), {first, std::string(59, 'b')}},
  };
  for (const auto& [bytes, paths] : cases) EXPECT_EQ(parseConfiguration(bytes), paths) << bytes;
}

TEST(Configuration, IsLookedForBesideTheLastSeparatorOfTheCommandLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"\"C:\\tools\\vxmviewer.exe\"", "C:\\tools\\VXMViewer.cfg"},
      {"\"/usr/bin/vxmviewer\" /models/ship.vxm", "/models\\VXMViewer.cfg"},
      {"\"C:\\tools\\vxmviewer.exe\" D:\\my \"models\\ship.vxm", "D:\\my \"models\\VXMViewer.cfg"},
  };
  for (const auto& [line, place] : cases)
    EXPECT_THAT(configurationPlaces(line), ElementsAre(place, "VXMViewer.cfg"));
  for (const char* line : {"vxmviewer", ""})
    EXPECT_THAT(configurationPlaces(line), ElementsAre("VXMViewer.cfg"));
}

TEST(Configuration, ComesFromTheFirstPlaceThatOpens) {
  const TempFolder folder;
  const CurrentFolder here(folder.path());
  RecordingDesktop desktop;
  const std::string commandLine = "\"" + (folder / "bin/vxmviewer") + "\"";
  EXPECT_THAT(readConfiguration(commandLine), ElementsAre("gamedata\\textures\\"));
  EXPECT_THAT(desktop.boxes, ElementsAre(RecordingDesktop::Box{"VXMViewer.cfg", "Can't open file", 0x1030}));
  folder.write("vxmviewer.CFG", "here\\"s);
  EXPECT_THAT(readConfiguration(commandLine), ElementsAre("here\\"));
  folder.write("bin/VXMViewer.cfg", "beside\\\0more\\\0\0"s);
  EXPECT_THAT(readConfiguration(commandLine), ElementsAre("beside\\", "more\\"));
  EXPECT_EQ(desktop.boxes.size(), 1u);
}

TEST(Configuration, IsWrittenAsItIsReadOrNotAtAll) {
  const TempFolder folder;
  const std::string path = folder / "VXMViewer.cfg", longest(258, 'a');
  for (const BasePaths& bases : {BasePaths{"a/", "b\\c"}, {}, {longest}}) {
    EXPECT_EQ(writeConfiguration(path, bases), "");
    EXPECT_EQ(readConfigurationFile(path), bases);
    EXPECT_TRUE(readWholeFile(path).ends_with("\0\0"s));
  }
  EXPECT_THAT(writeConfiguration(path, {longest, ""}), HasSubstr("263"));
  EXPECT_EQ(readConfigurationFile(path), BasePaths{longest});
  EXPECT_EQ(writeConfiguration(path, {"", "b/"}), "");
  EXPECT_EQ(readConfigurationFile(path), (BasePaths{"./", "b/"}));
  EXPECT_THAT(writeConfiguration(folder / "none/VXMViewer.cfg", {}), HasSubstr("none/VXMViewer.cfg: "));
}

TEST(Configuration, IsWrittenWhereItWasReadElseBesideTheModelOrHere) {
  const TempFolder folder;
  const CurrentFolder here(folder.path());
  const std::string line = "\"" + (folder / "bin/vxmviewer") + "\" ";
  const auto place = [&](const std::string& model) { return configurationToWrite(line + model, model); };
  folder.write("models/ship.vxm", "");
  EXPECT_EQ(place("models\\ship.vxm"), fs::current_path() / "models/VXMViewer.cfg");
  for (const char* model : {"", "ship.vxm", "none/ship.vxm", "file:///models/ship.vxm"})
    EXPECT_EQ(place(model), fs::current_path() / "VXMViewer.cfg");
  const std::string read = folder.write("bin/vxmviewer.CFG", "");
  EXPECT_EQ(fs::canonical(place("")), fs::canonical(read));
}

TEST(OpenModel, TakesTheCommandLineOnceAndAsksAfterwards) {
  RecordedViewer recorded;
  Viewer& viewer = recorded.viewer;
  recorded.folder.write("ship.vxm", triangleFile());
  viewer.commandLine = "ship.vxm";
  openModelFile(viewer);
  ASSERT_TRUE(viewer.view.scene.model);
  EXPECT_EQ(viewer.view.scene.model->name, "ship.vxm");
  EXPECT_THAT(recorded.desktop.titles, ElementsAre(titleOf("ship.vxm")));
  EXPECT_THAT(recorded.desktop.windowCalls, ElementsAre("busy", "idle"));
  openModelFile(viewer);
  ASSERT_THAT(recorded.desktop.openRequests, SizeIs(1));
  const FileDialogRequest& request = recorded.desktop.openRequests[0];
  EXPECT_EQ(request.initialDirectory, fs::current_path().string());
  EXPECT_EQ(request.flags, 0x2006u);
  ASSERT_THAT(request.types, SizeIs(7));
  EXPECT_EQ(request.types[0].pattern, "*.object;*.vxm;*.msh;*.model;*.mesh;*.ds2md;*.dds");
  EXPECT_TRUE(viewer.view.scene.model) << "a cancelled dialog keeps the model";
  EXPECT_EQ(recorded.frames(), 1u);
}

TEST(OpenModel, TakesFoldersAndFileNamesOfTheCommandLine) {
  const std::pair<std::string, bool> cases[] = {{"@/my models", true},
                                                {"my models", true},
                                                {"file://@/my%20models/%E9.vxm", true},
                                                {"file://elsewhere@/my%20models", true},
                                                {"file://@/my%20models/%", false},
                                                {"file://", false}};
  for (auto [line, loads] : cases) {
    RecordedViewer recorded;
    const std::string model = recorded.folder.write("my models/\xE9.vxm", triangleFile());
    if (const size_t at = line.find('@'); at != line.npos) line.replace(at, 1, recorded.folder.path());
    recorded.viewer.commandLine = line;
    openModelFile(recorded.viewer);
    const auto& loaded = recorded.viewer.view.scene.model;
    EXPECT_EQ(loaded ? loaded->name : "", loads ? model : "") << line;
  }
}

TEST(OpenModel, FindsAPictureOfTheCurrentFolderWhateverTheBasePaths) {
  RecordedViewer recorded;
  recorded.folder.write("wall.dds", ddsFile(4, 4));
  recorded.viewer.view.scene.texturePath = {"elsewhere/"};
  recorded.viewer.searchNear = false;
  recorded.viewer.commandLine = "wall.dds";
  openModelFile(recorded.viewer);
  EXPECT_EQ(recorded.viewer.view.scene.model->texturesFound, 1u);
  EXPECT_THAT(recorded.desktop.titles, ElementsAre(titleOf("wall.dds")));
}

TEST(OpenModel, EntersTheFolderOfWhatIsChosenOrDroppedForRelativeBasePaths) {
  for (const char* dropped : {"models", "models/", "models/ship.vxm", ""}) {
    RecordedViewer recorded;
    const std::string file = recorded.folder.write("models/ship.vxm", triangleFile());
    recorded.folder.write("models/textures/stone.dds", ddsFile(4, 4));
    recorded.viewer.view.scene.texturePath = {"textures\\"};
    recorded.desktop.fileAnswers = {FileDialogResult{file}};
    const fs::path start = fs::current_path();
    *dropped ? openPath(recorded.viewer, recorded.folder / dropped) : openModelFile(recorded.viewer);
    ASSERT_TRUE(recorded.viewer.view.scene.model) << dropped;
    EXPECT_EQ(recorded.viewer.view.scene.model->materials[0].hasTexture, 1u) << dropped;
    EXPECT_EQ(recorded.viewer.lastOpenDirectory, (start / "models").string());
    EXPECT_EQ(fs::current_path(), start);
  }
}

TEST(Reload, FindsTexturesAnewAndKeepsTheRest) {
  RecordedViewer recorded;
  Viewer& viewer = recorded.viewer;
  const std::string file = recorded.folder.write("models/ship.vxm", triangleFile());
  recorded.folder.write("models/textures/stone.dds", ddsFile(4, 4));
  openPath(viewer, file);
  recorded.forget();
  const auto color = viewer.view.scene.model->materials[0].color;
  const std::tuple<const char*, bool, uint32_t> cases[] = {
      {"none/", false, 0},
      {"none/", true, 1},
      {"textures/", false, 1}};  // relative to the folder of the model
  for (const auto& [base, near, found] : cases) {
    viewer.view.scene.texturePath = {base};
    OnKeyDown(viewer, 'K');
    EXPECT_EQ(commandOfKey('K')->checked(viewer), near);
    EXPECT_EQ(viewer.view.scene.model->texturesFound, found) << base;
    EXPECT_EQ(viewer.view.scene.model->materials[0].color, color);
  }
  EXPECT_EQ(recorded.changes(), "searchNear 1 > 0");
  EXPECT_THAT(recorded.desktop.titles, IsEmpty());
  EXPECT_EQ(recorded.frames(), 3u);
  fs::remove(file);
  reloadModel(viewer);
  EXPECT_TRUE(viewer.view.scene.model);
  EXPECT_THAT(recorded.desktop.status.back(), HasSubstr("ship.vxm: "));
}

TEST(Browse, StepsThroughTheModelFilesInTheOrderOfTheirNames) {
  RecordedViewer recorded;
  const TempFolder& folder = recorded.folder;
  for (const char* name : {"b.vxm", "A.mesh", "_.object", "C.model.bak", "d.ds2md", "Ba.vxm", "E.msh"})
    folder.write(name, triangleFile());
  folder.write("UPPER.VXM", triangleFile());        // the extension counts with its case
  folder.write("0.vxm/inner.vxm", triangleFile());  // a folder is no file
  folder.write("e.dds", badBytes);
  const std::tuple<int32_t, const char*, int32_t> cases[] = {
      {0, "A.mesh", 0}, {1, "b.vxm", 1}, {2, "Ba.vxm", 2},   {3, "C.model.bak", 3}, {4, "d.ds2md", 4},
      {5, "E.msh", 6},  {6, "E.msh", 6}, {7, "_.object", 7}, {8, "_.object", 7},    {-1, "_.object", 7},
  };
  recorded.viewer.view.scene.modelPath = folder / "b.vxm";
  for (const auto& [target, loaded, fileIndex] : cases) {
    browseModelFile(recorded.viewer, target);
    EXPECT_EQ(recorded.viewer.view.scene.fileIndex, fileIndex) << target;
    EXPECT_EQ(recorded.desktop.titles.back(), titleOf(loaded)) << target;
    EXPECT_EQ(recorded.viewer.view.scene.model->name, folder / loaded) << target;
  }
}

TEST(Browse, FindsTheFolderOfAnyPath) {
  const std::pair<const char*, const char*> cases[] = {
      {"top.vxm", "top.vxm"},
      {"Models\\ship.vxm", "Models\\ship.vxm"},
      {"models/SHIP.vxm", "models/ship.vxm"},
      {"Models\\gone.vxm", "Models\\ship.vxm"},
  };
  for (const auto& [path, loaded] : cases) {
    RecordedViewer recorded;
    for (const char* name : {"top.vxm", "Models/ship.vxm"}) recorded.folder.write(name, triangleFile());
    recorded.viewer.view.scene.modelPath = path;
    browseModelFile(recorded.viewer, 0);
    ASSERT_TRUE(recorded.viewer.view.scene.model) << path;
    EXPECT_EQ(recorded.viewer.view.scene.model->name, loaded);
  }
}

TEST(Browse, PassesFilesThatDoNotLoadTriesEachOnceAndComesBackFromTheLast) {
  RecordedViewer recorded;
  for (const char* name : {"b.vxm", "d.vxm"}) recorded.folder.write(name, badBytes);
  recorded.loadFrom({"a.vxm", "c.vxm"}, 1);
  EXPECT_EQ(recorded.viewer.view.scene.fileIndex, 2);
  browseModelFile(recorded.viewer, 3);
  EXPECT_THAT(recorded.desktop.titles, ElementsAre(emptyTitle, titleOf("c.vxm")));
  EXPECT_EQ(recorded.viewer.view.scene.fileIndex, 2);
  for (const char* name : {"a.vxm", "c.vxm"}) recorded.folder.write(name, badBytes);
  recorded.forget();
  browseModelFile(recorded.viewer, 1);
  EXPECT_EQ(recorded.viewer.view.scene.model, nullptr);
  EXPECT_THAT(recorded.desktop.status, ElementsAre(HasSubstr("b.vxm: "), HasSubstr("c.vxm: "),
                                                   HasSubstr("d.vxm: "), HasSubstr("a.vxm: ")));
}

TEST(Browse, AFolderWithoutModelFilesKeepsTheModel) {
  RecordedViewer recorded;
  recorded.loadFrom({"a.vxm"}, 0);
  fs::rename(recorded.folder / "a.vxm", recorded.folder / "A.VXM");
  browseModelFile(recorded.viewer, 1);
  EXPECT_TRUE(recorded.viewer.view.scene.model);
  EXPECT_EQ(recorded.changes(), "");
  EXPECT_THAT(recorded.desktop.status, ElementsAre("No model files in this folder"));
}

TEST(SaveModel, AsksRemembersTheFolderAndClearsAnOlderError) {
  RecordedViewer recorded;
  saveModelFile(recorded.viewer);
  EXPECT_THAT(recorded.desktop.saveRequests, IsEmpty()) << "there is no model";
  recorded.loadFrom({"a.vxm"}, 0);
  const std::string path = recorded.folder.write("out/old", "");
  const fs::path start = fs::current_path();
  recorded.desktop.fileAnswers = {std::nullopt, FileDialogResult{"/gone/x.obj", 1},
                                  FileDialogResult{path, 1}};
  saveModelFile(recorded.viewer);
  EXPECT_EQ(recorded.viewer.lastSaveDirectory, "");
  const FileDialogRequest request = recorded.desktop.saveRequests.back();
  EXPECT_EQ(request.flags, 0x2006u);
  ASSERT_THAT(request.types, SizeIs(9));
  EXPECT_EQ(request.types[7].pattern, "*.ms3d");
  saveModelFile(recorded.viewer);
  EXPECT_THAT(recorded.desktop.boxes, IsEmpty()) << "a file that cannot be created shows no box";
  EXPECT_THAT(recorded.desktop.status.back(), HasSubstr("x.obj: "));
  saveModelFile(recorded.viewer);
  EXPECT_THAT(recorded.desktop.boxes,
              ElementsAre(RecordingDesktop::Box{"Wavefront OBJ file created.", path, 0x1040}));
  EXPECT_EQ(recorded.desktop.status.back(), "Ready");
  EXPECT_EQ(recorded.viewer.lastSaveDirectory, (start / "out").string());
  EXPECT_EQ(recorded.viewer.lastOpenDirectory, "");
  EXPECT_EQ(fs::current_path(), start);
}

TEST(ExportModel, WritesTheFileAnewAndKeepsTheModelAndItsFiles) {
  RecordedViewer recorded;
  Viewer& viewer = recorded.viewer;
  const std::string file = recorded.folder.write("models/ship.vxm", triangleFile());
  const std::string picture = recorded.folder.write("models/textures/stone.dds", ddsFile(4, 4));
  openPath(viewer, file);
  const Model* shown = viewer.view.scene.model.get();
  const float x = shown->meshes[0].vertices[1].x;
  const auto write = [&](const std::string& path) {
    exportModelFile(viewer, {findModernFormat("obj"), path, {}, 2});
    return recorded.desktop.status.back();
  };
  const std::string out = fs::canonical(recorded.folder.path()) / "models";
  EXPECT_EQ(write(out + "/ship.obj"), "ship.obj, ship.mtl and 1 picture written to " + out);
  EXPECT_EQ(viewer.failure, "");
  EXPECT_EQ(viewer.view.scene.model.get(), shown);
  EXPECT_EQ(shown->meshes[0].vertices[1].x, x);
  EXPECT_THAT(readWholeFile(out + "/ship.obj"), HasSubstr(formatted("\nv %f", 2 * x).substr(0, 6)));
  for (const std::string& own : {file, picture}) {
    const std::string bytes = readWholeFile(own);
    EXPECT_THAT(write(own), HasSubstr("belongs to the model"));
    EXPECT_EQ(readWholeFile(own), bytes);
    EXPECT_THAT(viewer.failure, HasSubstr("belongs to the model"));
  }
  EXPECT_THAT(write("/gone/ship.obj"), HasSubstr("ship.obj: "));
  EXPECT_EQ(viewer.lastSaveDirectory, "/gone");
  fs::resize_file(picture, 100);
  EXPECT_THAT(write(out + "/ship.obj"), HasSubstr("ship.obj, ship.mtl written to "));
  EXPECT_THAT(viewer.failure, HasSubstr("stone.dds")) << "a picture that is left out is told";
}

}  // namespace
}  // namespace facet
