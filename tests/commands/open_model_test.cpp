#include "commands/open_model.h"

#include <gmock/gmock.h>

#include "commands/recorded_viewer.h"

namespace facet {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const std::string noModelTitle = "r_dx9::Facet Bench [x64] 1.0.5@.201312xx";
const std::string badBytes = "not a model";

std::string titleOf(const std::string& name) {
  return noModelTitle + " - [" + name + "]";
}

/// Keeps the folder that was current when the last status text came.
class WatchingDesktop : public RecordingDesktop {
 public:
  void setStatusText(std::string_view text) override {
    RecordingDesktop::setStatusText(text);
    folder = fs::current_path();
  }
  fs::path folder;
};

TEST(OpenModel, TakesTheCommandLineOnceAndAsksAfterwards) {
  RecordedViewer recorded;
  Viewer& viewer = recorded.viewer;
  recorded.folder.write("ship.vxm", modelBytes());
  viewer.commandLine = "ship.vxm";
  openModelFile(viewer);
  ASSERT_TRUE(viewer.view.model);
  EXPECT_EQ(viewer.view.model->name, "ship.vxm");
  EXPECT_THAT(recorded.desktop.titles, ElementsAre(titleOf("ship.vxm")));
  EXPECT_THAT(recorded.desktop.status, testing::Contains("Loading complete"));
  EXPECT_THAT(recorded.desktop.windowCalls, ElementsAre("busy", "idle"));
  EXPECT_EQ(recorded.frames(), 1u);
  EXPECT_THAT(recorded.desktop.openRequests, IsEmpty());

  openModelFile(viewer);
  ASSERT_THAT(recorded.desktop.openRequests, SizeIs(1));
  const FileDialogRequest& request = recorded.desktop.openRequests[0];
  EXPECT_EQ(request.title, "Load model file");
  EXPECT_EQ(request.defaultExtension, "vxm");
  EXPECT_EQ(request.initialDirectory, fs::current_path().string());
  EXPECT_EQ(request.flags, 0x2006u);
  ASSERT_THAT(request.types, SizeIs(7));
  EXPECT_EQ(request.types[0].pattern, "*.object;*.vxm;*.msh;*.model;*.mesh;*.ds2md;*.dds");
  EXPECT_EQ(request.types[6].description, "All Files (*.*)");
  EXPECT_TRUE(viewer.view.model) << "a cancelled dialog keeps the model";
  EXPECT_EQ(recorded.frames(), 1u);
}

TEST(OpenModel, LoadsInTheFolderOfTheChosenFileAndRemembersIt) {
  RecordedViewer recorded;
  WatchingDesktop desktop;
  const std::string path = recorded.folder.write("models/ship.vxm", modelBytes());
  const fs::path start = fs::current_path();
  desktop.fileAnswers = {FileDialogResult{path}};
  openModelFile(recorded.viewer);
  EXPECT_EQ(desktop.folder, start / "models");
  EXPECT_EQ(fs::current_path(), start);
  EXPECT_THAT(desktop.titles, ElementsAre(titleOf(path)));
  openModelFile(recorded.viewer);
  EXPECT_EQ(desktop.openRequests.back().initialDirectory, (start / "models").string());
}

TEST(OpenModel, EntersWhatIsDroppedForRelativeBasePaths) {
  for (const char* dropped : {"models", "models/", "models/ship.vxm"}) {
    RecordedViewer recorded;
    WatchingDesktop desktop;
    recorded.folder.write("models/ship.vxm", modelBytes());
    recorded.folder.write("models/textures/stone.dds", ddsFile(4, 4).bytes());
    recorded.viewer.view.texturePath = {"textures\\"};
    const fs::path start = fs::current_path();
    openPath(recorded.viewer, recorded.folder / dropped);
    ASSERT_TRUE(recorded.viewer.view.model) << dropped;
    EXPECT_EQ(recorded.viewer.view.model->materials[0].hasTexture, 1u) << dropped;
    EXPECT_EQ(recorded.viewer.lastOpenDirectory, (start / "models").string());
    EXPECT_EQ(fs::current_path(), start);
  }
}

TEST(OpenModel, AFailedOpenLeavesTheViewEmptyAndTellsWhy) {
  RecordedViewer recorded;
  const std::string good = recorded.folder.write("good.vxm", modelBytes());
  const std::string bad = recorded.folder.write("bad.vxm", badBytes);
  recorded.desktop.fileAnswers = {FileDialogResult{good}, FileDialogResult{bad},
                                  FileDialogResult{recorded.folder / "gone/gone.vxm"}};
  openModelFile(recorded.viewer);
  openModelFile(recorded.viewer);
  EXPECT_EQ(recorded.viewer.view.model, nullptr);
  EXPECT_EQ(recorded.desktop.titles.back(), noModelTitle);
  EXPECT_THAT(recorded.desktop.status.back(), HasSubstr("bad.vxm: not a known model format"));
  EXPECT_EQ(recorded.device().liveObjects(), 0);
  openModelFile(recorded.viewer);
  EXPECT_EQ(recorded.desktop.status.back(), "gone.vxm: cannot open the file: no such file");
  EXPECT_THAT(recorded.desktop.boxes, IsEmpty());
  EXPECT_EQ(fs::current_path(), recorded.folder.path());

  recorded.viewer.commandLine = recorded.folder.path().string() + "/";
  recorded.viewer.commandLineUsed = false;
  openModelFile(recorded.viewer);
  EXPECT_EQ(recorded.desktop.status.back(), recorded.viewer.commandLine + ": cannot open the file: is a folder");
}

TEST(Browse, StepsThroughTheModelFilesInTheOrderOfTheirNames) {
  RecordedViewer recorded;
  const TempFolder& folder = recorded.folder;
  for (const char* name : {"b.vxm", "A.mesh", "_.object", "C.model.bak", "d.ds2md", "Ba.vxm"})
    folder.write(name, modelBytes());
  folder.write("UPPER.VXM", modelBytes());  // the extension counts with its case
  folder.write("notes.txt", "");
  folder.write("0.vxm/inner.vxm", modelBytes());  // a folder is no file
  folder.write("e.dds", badBytes);
  folder.write("E.msh", modelBytes());

  struct Case {
    int32_t target;
    const char* loaded;
    int32_t fileIndex;
  };
  const Case cases[] = {
      {0, "A.mesh", 0}, {1, "b.vxm", 1}, {2, "Ba.vxm", 2},   {3, "C.model.bak", 3}, {4, "d.ds2md", 4},
      {5, "E.msh", 6},  {6, "E.msh", 6}, {7, "_.object", 7}, {8, "_.object", 7},    {-1, "_.object", 7},
  };
  recorded.viewer.view.modelPath = folder / "b.vxm";
  for (const Case& test : cases) {
    recorded.forget();
    browseModelFile(recorded.viewer, test.target);
    EXPECT_EQ(recorded.viewer.view.fileIndex, test.fileIndex) << test.target;
    EXPECT_EQ(recorded.desktop.titles.back(), titleOf(test.loaded)) << test.target;
    EXPECT_EQ(recorded.viewer.view.model->name, folder / test.loaded) << test.target;
  }
  fs::remove(folder / "_.object");  // by somebody else
  browseModelFile(recorded.viewer, -1);
  EXPECT_EQ(recorded.desktop.titles.back(), titleOf("E.msh"));
}

TEST(Browse, FindsTheFolderOfAnyPath) {
  struct Case {
    const char* path;
    const char* loaded;
  };
  const Case cases[] = {
      {"top.vxm", "top.vxm"},
      {"Models\\ship.vxm", "Models\\ship.vxm"},
      {"models/SHIP.vxm", "models/ship.vxm"},
      {"Models\\gone.vxm", "Models\\ship.vxm"},
  };
  for (const Case& test : cases) {
    RecordedViewer recorded;
    recorded.folder.write("top.vxm", modelBytes());
    recorded.folder.write("Models/ship.vxm", modelBytes());
    recorded.viewer.view.modelPath = test.path;
    browseModelFile(recorded.viewer, 0);
    ASSERT_TRUE(recorded.viewer.view.model) << test.path;
    EXPECT_EQ(recorded.viewer.view.model->name, test.loaded);
  }
}

TEST(Browse, PassesFilesThatDoNotLoadAndComesBackFromTheLast) {
  RecordedViewer recorded;
  for (const char* name : {"a.vxm", "c.vxm"}) recorded.folder.write(name, modelBytes());
  for (const char* name : {"b.vxm", "d.vxm", "e.vxm"}) recorded.folder.write(name, badBytes);
  recorded.viewer.view.modelPath = recorded.folder / "a.vxm";
  browseModelFile(recorded.viewer, 1);
  EXPECT_EQ(recorded.desktop.titles.back(), titleOf("c.vxm"));
  EXPECT_EQ(recorded.viewer.view.fileIndex, 2);
  recorded.forget();
  browseModelFile(recorded.viewer, 3);
  EXPECT_THAT(recorded.desktop.titles, ElementsAre(noModelTitle, titleOf("c.vxm")));
  EXPECT_EQ(recorded.viewer.view.fileIndex, 2);
}

TEST(Browse, TriesEachFileOnceWhenNoneLoads) {
  RecordedViewer recorded;
  recorded.loadFrom({"b.vxm"}, 0);
  for (const char* name : {"a.vxm", "b.vxm", "c.vxm"}) recorded.folder.write(name, badBytes);
  browseModelFile(recorded.viewer, 1);
  EXPECT_EQ(recorded.viewer.view.model, nullptr);
  EXPECT_THAT(recorded.desktop.titles, ElementsAre(noModelTitle));
  EXPECT_THAT(recorded.desktop.status,
              ElementsAre(HasSubstr("b.vxm: "), HasSubstr("c.vxm: "), HasSubstr("a.vxm: ")));
  EXPECT_EQ(recorded.device().liveObjects(), 0);
}

TEST(Browse, AFolderWithoutModelFilesKeepsTheModel) {
  RecordedViewer recorded;
  recorded.loadFrom({"a.vxm"}, 0);
  fs::rename(recorded.folder / "a.vxm", recorded.folder / "A.VXM");
  browseModelFile(recorded.viewer, 1);
  EXPECT_TRUE(recorded.viewer.view.model);
  EXPECT_EQ(recorded.changes(), "");
  EXPECT_THAT(recorded.desktop.status, ElementsAre("No model files in this folder"));
  EXPECT_EQ(recorded.frames(), 0u);
}

}  // namespace
}  // namespace facet
