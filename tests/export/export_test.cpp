#include "export/export.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <new>
#include <stdexcept>

#include "support/model_builder.h"
#include "support/recording_desktop.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

TEST(ExportFormats, StandInTheOrderOfTheDialog) {
  std::vector<std::string_view> names;
  for (const ExportFormat& format : saveDialogFormats()) names.push_back(format.name);
  EXPECT_THAT(names, ElementsAre("obj", "smd", "ase", "pov", "dae", "dxf", "stl", "ms3d", "vxm"));
  EXPECT_EQ(findExportFormat("DXF"), &exportFormats()[5]);
  EXPECT_EQ(findExportFormat("xyz"), nullptr);
}

TEST(ExportModel, NamesTheFileAfterItsLastSeparator) {
  const TempFolder folder;
  for (const std::string_view name : {"ship.obj", "C:\\out\\ship.obj"}) {
    Model model = triangleModel();
    const ExportResult result = exportModel(saveDialogFormats()[0], folder / name, model);
    EXPECT_EQ(result.error, "");
    const std::string text = readWholeFile(folder / name);
    EXPECT_EQ(result.bytes, text.size());
    EXPECT_THAT(text, HasSubstr("mtllib ship.obj\n"));
  }
}

TEST(ExportModel, TellsWhyAFileCannotBeCreated) {
  const TempFolder folder;
  Model model = triangleModel();
  const ExportResult result = exportModel(saveDialogFormats()[0], folder / "missing/ship.obj", model);
  EXPECT_THAT(result.error, StartsWith("cannot create: "));
  EXPECT_FALSE(result.created);
}

TEST(ExportModel, RefusesBeforeItTouchesTheFile) {
  const TempFolder folder;
  const std::string path = folder.write("ship.vxm", "what stood here");
  Model model = ModelBuilder().build();
  const ExportResult result = exportModel(*findExportFormat("vxm"), path, model);
  EXPECT_EQ(result.error, "nothing to write: the model has no meshes");
  EXPECT_FALSE(result.created);
  EXPECT_EQ(readWholeFile(path), "what stood here");
}

TEST(ExportModel, KeepsTheOldFileWhenTheWriterGivesUp) {
  const TempFolder folder;
  const std::string path = folder.write("ship.xyz", "what stood here");
  Model model = triangleModel();
  WriteModel* const writers[] = {
      [](Model&, std::string_view, Output& out) {
        out.write("half of it");
        throw std::bad_alloc();
      },
      [](Model&, std::string_view, Output&) { throw std::runtime_error("too much"); },
  };
  const std::string_view reasons[] = {"out of memory", "too much"};
  for (size_t i = 0; i < std::size(writers); ++i) {
    const ExportFormat format{"xyz", "", "", "", writers[i], nullptr};
    const ExportResult result = exportModel(format, path, model);
    EXPECT_EQ(result.error, reasons[i]);
    EXPECT_FALSE(result.created);
    EXPECT_EQ(readWholeFile(path), "what stood here");
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(SaveModelAs, ShowsTheWritersMessageWithThePathAsCaption) {
  const TempFolder folder;
  RecordingDesktop desktop;
  Model model = triangleModel();
  saveModelAs(1, folder / "typed.stl", model);
  EXPECT_THAT(readWholeFile(folder / "typed.stl"), HasSubstr("mtllib typed.stl"));
  EXPECT_THAT(desktop.boxes, ElementsAre(RecordingDesktop::Box{"Wavefront OBJ file created.",
                                                               folder / "typed.stl", 0x1040}));
  EXPECT_THAT(desktop.status, IsEmpty());
  EXPECT_EQ(model.materialCount, 7U);
}

TEST(SaveModelAs, WritesTheFormatOfEachRow) {
  const TempFolder folder;
  RecordingDesktop desktop;
  Model model = triangleModel();
  constexpr std::array<std::string_view, 9> beginnings{
      "# This file",  "version 1", "*3DSMAX",
      "// This file", "<?xml",     "  0\nSECTION",
      "solid",        "MS3D",      std::string_view("\1\0\0\0,", 5)};
  for (uint32_t index = 1; index <= 9; ++index) {
    saveModelAs(index, folder / "model", model);
    EXPECT_THAT(readWholeFile(folder / "model"), StartsWith(std::string(beginnings[index - 1])));
  }
  EXPECT_EQ(desktop.boxes.size(), 9U);
}

TEST(SaveModelAs, ShowsNoBoxWithoutAFile) {
  const TempFolder folder;
  RecordingDesktop desktop;
  Model model = triangleModel();
  saveModelAs(1, folder / "missing/ship.obj", model);
  EXPECT_THAT(desktop.boxes, IsEmpty());
  EXPECT_THAT(desktop.status, ElementsAre(HasSubstr("ship.obj: cannot create: ")));
}

TEST(SaveModelAs, IgnoresIndexesOutsideTheList) {
  const TempFolder folder;
  RecordingDesktop desktop;
  Model model = triangleModel();
  for (const uint32_t index : {0U, 10U}) saveModelAs(index, folder / "ship.obj", model);
  EXPECT_FALSE(std::filesystem::exists(folder / "ship.obj"));
  EXPECT_THAT(desktop.boxes, IsEmpty());
  EXPECT_THAT(desktop.status, IsEmpty());
}

#ifdef __linux__
TEST(SaveModelAs, TellsOfAFullDiskBesidesTheBox) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
  RecordingDesktop desktop;
  Model model = triangleModel();
  saveModelAs(1, "/dev/full", model);
  EXPECT_EQ(desktop.boxes.size(), 1U);
  EXPECT_THAT(desktop.status, ElementsAre(StartsWith("full: cannot write: ")));
}
#endif

}  // namespace
}  // namespace facet
