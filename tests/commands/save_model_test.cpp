#include "commands/save_model.h"

#include <gmock/gmock.h>

#include "commands/recorded_viewer.h"

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
                                  FileDialogResult{"/gone/x.obj", 1}, FileDialogResult{path, 1}};
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
  EXPECT_THAT(recorded.desktop.status.back(), testing::StartsWith("x.obj: "));
  saveModelFile(recorded.viewer);
  EXPECT_EQ(recorded.desktop.status.back(), "Ready") << "a save that went well clears the error";
  EXPECT_EQ(recorded.viewer.lastOpenDirectory, "");
}

}  // namespace
}  // namespace facet
