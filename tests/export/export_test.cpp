#include "export/export.h"

#include <gmock/gmock.h>

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

TEST(ExportModel, TellsWhyItWroteNothingAndKeepsWhatStoodThere) {
  const TempFolder folder;
  const std::string ship = folder.write("ship.xyz", "what stood here");
  const std::tuple<WriteModel*, std::string (*)(const Model&), std::string, const char*> cases[] = {
      {exportFormats()[0].write, nullptr, folder / "missing/ship.obj", "cannot create: "},
      {exportFormats()[0].write, [](const Model&) { return std::string("too odd"); }, ship, "too odd"},
      {[](Model&, std::string_view, Output& out) { out.write("half of it"), throw std::bad_alloc(); },
       nullptr, ship, "out of memory"},
      {[](Model&, std::string_view, Output&) { throw std::runtime_error("too much"); }, nullptr, ship,
       "too much"},
  };
  Model model = triangleModel();
  for (const auto& [write, refusal, path, error] : cases) {
    const ExportResult result = exportModel({"xyz", "", "", "", write, refusal}, path, model);
    EXPECT_THAT(result.error, StartsWith(error));
    EXPECT_FALSE(result.created);
    EXPECT_EQ(readWholeFile(ship), "what stood here");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
  }
}

/// Saves a triangle, and keeps what the user was shown.
struct Saved : RecordingDesktop {
  Saved(uint32_t index, const std::string& path) {
    Model model = triangleModel();
    saveModelAs(index, path, model);
  }
};

TEST(SaveModelAs, WritesTheFormatOfEachRowAndSaysSoOnce) {
  const TempFolder folder;
  for (const ExportFormat& format : saveDialogFormats()) {
    Model model = triangleModel();
    OutputString expected;
    const ExportResult result = exportModel(format, "typed.abc", model, expected);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.bytes, expected.text().size());
    const auto index = static_cast<uint32_t>(&format - exportFormats().data()) + 1;
    const Saved saved(index, folder / "typed.abc");
    EXPECT_EQ(readWholeFile(folder / "typed.abc"), expected.text()) << format.name;
    EXPECT_THAT(saved.boxes, ElementsAre(RecordingDesktop::Box{std::string(format.successMessage),
                                                               folder / "typed.abc", 0x1040}));
    EXPECT_THAT(saved.status, IsEmpty());
  }
  Saved(1, folder / "C:\\out\\ship.obj");
  EXPECT_THAT(readWholeFile(folder / "C:\\out\\ship.obj"), HasSubstr("mtllib ship.obj\n"));
}

TEST(SaveModelAs, TellsOnTheStatusLineWhatItCouldNotWrite) {
  const TempFolder folder;
  const Saved missing(1, folder / "missing/ship.obj");
  EXPECT_THAT(missing.boxes, IsEmpty());
  EXPECT_THAT(missing.status, ElementsAre(HasSubstr("ship.obj: cannot create: ")));
  for (const uint32_t index : {0U, 10U}) {  // no rows of the list
    const Saved none(index, folder / "ship.obj");
    EXPECT_FALSE(std::filesystem::exists(folder / "ship.obj"));
    EXPECT_THAT(none.boxes, IsEmpty());
    EXPECT_THAT(none.status, IsEmpty());
  }
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
  const Saved full(1, "/dev/full");
  EXPECT_EQ(full.boxes.size(), 1U);
  EXPECT_THAT(full.status, ElementsAre(StartsWith("full: cannot write: ")));
}

}  // namespace
}  // namespace facet
