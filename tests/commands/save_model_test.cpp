#include "commands/save_model.h"

#include <gmock/gmock.h>

#include "commands/recorded_viewer.h"
#include "export/export.h"

namespace facet {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(SaveModel, WithoutAModelAsksNothing) {
  RecordedViewer recorded;
  saveModelFile(recorded.viewer);
  EXPECT_THAT(recorded.desktop.saveRequests, IsEmpty());
}

TEST(SaveModel, AsksWithTheNineTypesAndRemembersTheFolder) {
  RecordedViewer recorded;
  recorded.loadFrom({"a.vxm"}, 0);
  const std::string path = recorded.folder.write("out/old", "");
  const fs::path start = fs::current_path();
  recorded.desktop.fileAnswers = {std::nullopt, FileDialogResult{path, 1},
                                  FileDialogResult{"/gone/x.obj", 1}};
  saveModelFile(recorded.viewer);
  EXPECT_EQ(recorded.viewer.lastSaveDirectory, "");
  const FileDialogRequest request = recorded.desktop.saveRequests.back();
  EXPECT_EQ(request.title, "Save model file");
  EXPECT_EQ(request.defaultExtension, "obj");
  EXPECT_EQ(request.initialDirectory, "");
  EXPECT_EQ(request.flags, 0x2006u);
  ASSERT_THAT(request.types, SizeIs(9));
  EXPECT_EQ(request.types[7].description, "MilkShape 3D (*.MS3D)");
  EXPECT_EQ(request.types[7].pattern, "*.ms3d");

  saveModelFile(recorded.viewer);
  EXPECT_EQ(recorded.viewer.lastSaveDirectory, (start / "out").string());
  EXPECT_EQ(fs::current_path(), start);
  EXPECT_THAT(recorded.desktop.boxes,
              ElementsAre(RecordingDesktop::Box{"Wavefront OBJ file created.", path, 0x1040}));
  saveModelFile(recorded.viewer);
  EXPECT_EQ(recorded.desktop.saveRequests.back().initialDirectory, (start / "out").string());
  EXPECT_THAT(recorded.desktop.boxes, SizeIs(1)) << "a file that cannot be created shows no box";
  EXPECT_EQ(recorded.viewer.lastOpenDirectory, "");
}

TEST(SaveModel, WritesTheTypeThatWasChosenUnderTheNameThatWasTyped) {
  RecordedViewer recorded;
  recorded.loadFrom({"a.vxm"}, 0);
  const uint32_t materials = recorded.viewer.view.model->materialCount;
  uint32_t index = 0;
  for (const ExportFormat& format : exportFormats()) {
    const std::string path = recorded.folder / (std::string(format.name) + ".typed");
    recorded.desktop.fileAnswers = {FileDialogResult{path, ++index}};
    saveModelFile(recorded.viewer);
    EXPECT_TRUE(fs::exists(path)) << format.name;
    EXPECT_EQ(recorded.desktop.boxes.back().text, format.successMessage);
  }
  for (const uint32_t outside : {0u, index + 1}) {
    recorded.desktop.fileAnswers = {FileDialogResult{recorded.folder / "none", outside}};
    saveModelFile(recorded.viewer);
  }
  EXPECT_FALSE(fs::exists(recorded.folder / "none"));
  EXPECT_THAT(recorded.desktop.boxes, SizeIs(9));
  EXPECT_EQ(recorded.viewer.view.model->materialCount, materials);
}

}  // namespace
}  // namespace facet
