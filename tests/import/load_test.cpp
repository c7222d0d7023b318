#include "import/load.h"

#include <sys/stat.h>

#include "reading.h"
#include "support/recording_device.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

TEST(Load, RecognisesFilesByTheirFirstWords) {
  const BuiltMesh mesh = builtTriangle();
  const std::pair<std::string, uint32_t> table[] = {
      {vxmVisual(4, mesh).bytes(), 0x4444},
      {vxmVisual(3, mesh).bytes(), 0x3333},
      {objectFile({objectMesh(mesh, "skin")}, {}).bytes(), 0x7777},
      {model4aMeshFile({mesh}).bytes(), 0x4AE0},
      {model4aMeshFile({mesh}).bytes().substr(72), 0x4AE0},  // without its header: chunk 9 comes first
      {orionFile(mesh, "", 257).bytes(), 257},
      {orionFile(mesh, "", 258).bytes(), 258},
      {ds2mdFile("0.6", {mesh}).bytes(), 0x5344000E},
      {ddsFile(4, 4), 0x20534444},
  };
  const TempFolder folder;
  for (const auto& [bytes, modelType] : table) {
    const LoadResult result = loadModel(folder.write("wrong.png", bytes), {}, nullptr);
    ASSERT_NE(result.model, nullptr) << result.error;
    EXPECT_EQ(result.model->modelType, modelType);
    EXPECT_EQ(result.model->meshCount, 1u);
    EXPECT_EQ(result.model->materialCount, 1 + skyMaterialCount);
  }
}

TEST(Load, TellsHowFarItIsAndEndsWhereItIsCancelled) {
  struct CancellingDesktop : RecordingDesktop {
    void setStatusText(std::string_view text) override {
      if (text.starts_with("Loading material #2")) progress.cancel();
    }
    Progress progress;
  } desktop;
  const TempFolder folder;
  const std::vector<BuiltMesh> meshes = {builtTriangle("a"), builtTriangle("b"), builtTriangle("c")};
  const std::string file = folder.write("a.vxm", vxmHierarchy(4, meshes).bytes());
  LoadOptions options;
  options.progress = &desktop.progress;
  for (int i = 0; i < 2; ++i) {  // the second time before the first byte
    const LoadResult result = loadModel(file, {}, options);
    EXPECT_TRUE(result.cancelled);
    EXPECT_FALSE(result.model);
    EXPECT_FLOAT_EQ(desktop.progress.done(), readingShare + (1 - readingShare) / 3);
  }
}

TEST(Load, TellsWhyThereIsNoModel) {
  const TempFolder folder;
  const RecordingDesktop desktop;
  fs::create_symlink("loop", folder.path() / "loop");
  fs::create_symlink("gone", folder.path() / "dangling");
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  const std::pair<const char*, const char*> table[] = {
      {"missing.vxm", "no such file"},
      {"a/b.vxm", "no such file"},
      {"", "is a folder"},
      {"dangling", "a link to nothing"},
      {"loop", "its links lead in a circle"},
      {"pipe", "is a pipe, not a file"},
  };
  for (const auto& [name, reason] : table)
    EXPECT_EQ(loadModel(folder / name, {}, nullptr).error, std::string("cannot open the file: ") + reason);
  EXPECT_THAT(loadModel(folder.write("short", "1234567"), {}, nullptr).error, HasSubstr("7 bytes"));
  for (const uint32_t id : {0u, 2u, 10u, 256u, 259u, 0x7776u, 0x7778u, 0x20534445u, 0xFFFFFFFFu}) {
    const std::string bytes = ByteWriter().write(id, 44u).zeros(100).bytes();
    EXPECT_THAT(loadModel(folder.write("unknown", bytes), {}, nullptr).error, HasSubstr("not a known"));
  }
  EXPECT_TRUE(desktop.boxes.empty());
  EXPECT_TRUE(desktop.status.empty());
}

TEST(Load, WarnsWhereAFileIsCutOff) {
  const BuiltMesh mesh = builtTriangle();
  const TempFolder folder;
  for (const ByteWriter& file : {vxmVisual(4, mesh), vxmHierarchy(3, {mesh, mesh}), model4aMeshFile({mesh}),
                                 objectFile({objectMesh(mesh, "skin")}, {{"skin", "s", "t"}})}) {
    const std::string bytes = file.bytes(), all = std::to_string(bytes.size());
    EXPECT_THAT(loadModel(folder.write("m", bytes), {}, nullptr).model->warnings, testing::IsEmpty());
    const std::string cut = bytes.substr(0, bytes.size() - 5), left = std::to_string(cut.size());
    EXPECT_THAT(loadModel(folder.write("m", cut), {}, nullptr).model->warnings,
                ElementsAre("cut off: " + left + " of " + all + " bytes"));
  }
}

TEST(Load, AnUnknownHeaderIsAnEmptyModel) {
  const TempFolder folder;
  const RecordingDesktop desktop;
  const LoadResult result =
      loadModel(folder.write("m", ByteWriter().chunk(1, filler(8)).bytes()), {}, nullptr);
  ASSERT_NE(result.model, nullptr);
  EXPECT_EQ(result.model->modelType, 0u);
  EXPECT_EQ(result.model->meshCount, 0u);
  EXPECT_EQ(result.model->materialCount, 6u);
  EXPECT_THAT(desktop.status, ElementsAre("Loading complete"));
}

TEST(Load, GivesMeshesWithoutMaterialsOne) {
  const TempFolder folder;
  const std::string bytes = objectFile({objectMesh(builtTriangle(), "skin")}, {}).bytes();
  const LoadResult result = loadModel(folder.write("m.object", bytes), {}, nullptr);
  ASSERT_EQ(ownMaterials(*result.model).size(), 1u);
  EXPECT_EQ(result.model->materials[0].textureName, "");
  EXPECT_EQ(result.model->materials[0].shaderName, "default");
}

TEST(Load, FinishesOnTheDeviceAndReleasesEverything) {
  const TempFolder folder;
  folder.write("t/stone.dds", ddsFile(4, 4));
  RecordingDevice device;
  const ByteWriter file = vxmHierarchy(4, {builtTriangle("stone", "a"), builtTriangle("stone", "b")});
  const LoadResult result = loadModel(folder.write("m.vxm", file.bytes()), {folder / "t/"}, &device);
  EXPECT_EQ(result.model->totalVertices, 6u);
  EXPECT_EQ(device.liveObjects(), 3) << "two index buffers and one shared texture";
  releaseModel(*result.model);
  EXPECT_EQ(device.liveObjects(), 0);
}

}  // namespace
}  // namespace facet
