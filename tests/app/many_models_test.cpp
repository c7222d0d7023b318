#include <fstream>

#include "app/window_test.h"
#include "device/software/software_device.h"

#if defined(__SANITIZE_ADDRESS__)
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace facet {
namespace {

class ManyModels : public WindowTest {
 protected:
  static constexpr size_t badModel = 9;

  /// One small file of each format, one cut off, one that is no model, and the textures that they name.
  std::vector<std::string> writeModels() const {
    const BuiltMesh mesh = builtTriangle();
    folder.write("textures/stone.dds", ddsFile(64, 64));
    folder.write("textures/stone_bump.dds", ddsFile(8, 8));
    const std::string packed = model4aMeshFile({mesh}, true).bytes();
    folder.write("parts/lod0.mesh", packed);
    return {
        folder.write("a.vxm", vxmHierarchy(4, {mesh, builtTriangle("gone", "models\\glass")}).bytes()),
        folder.write("b.vxm", vxmHierarchy(3, {mesh, mesh}).bytes()),
        folder.write("c.object", objectFile({objectMesh(mesh, "s")}, {{"s", "default", "stone"}}).bytes()),
        folder.write("d.mesh", packed),
        folder.write("e.msh", orionFile(mesh, "stone.dds").bytes()),
        folder.write("f.ds2md", ds2mdFile("0.7", {mesh, mesh}).bytes()),
        folder.write("g.ds2md", ds2mdFile("0.6", {mesh}).bytes()),
        folder.write("h.dds", ddsFile(32, 32)),
        folder.write("i.vxm", vxmVisual(4, builtGrid(40)).bytes().substr(0, 20'000)),
        folder.write("j.vxm", "bad"),
    };
  }
};

/// What the process holds: every byte where the sanitizer counts them, otherwise the pages in memory.
#if defined(__SANITIZE_ADDRESS__)
constexpr size_t slack = 1 << 16;
size_t memoryHeld() {
  return __sanitizer_get_current_allocated_bytes();
}
#else
#if defined(__SANITIZE_THREAD__)
constexpr size_t slack = 64 << 20;  // the sanitizer keeps what it knows of the threads that ended
#else
constexpr size_t slack = 2 << 20;  // an allocator's own; 2 KB a model would exceed it
#endif
size_t memoryHeld() {
  size_t pages = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * 4096;
}
#endif

TEST_F(ManyModels, LeaveTheMemoryAsItWas) {
  const std::vector<std::string> models = writeModels();
  // The software device where the test has no display, else OpenGL.
  ModalAnswers answers;
  ASSERT_TRUE(start("", DeviceChoice::hal));
  frame().resize(320, 240);
  const bool software = dynamic_cast<SoftwareDevice*>(view().system.p_device.get()) != nullptr;
  EXPECT_EQ(software, QGuiApplication::platformName() == "offscreen");
  const size_t count = software ? 1000 : 300;
  size_t early = 0;
  for (size_t i = 1; i <= count; ++i) {
    widget().openPath(models[i % models.size()]);
    EXPECT_EQ(view().scene.model != nullptr, i % models.size() != badModel) << models[i % models.size()];
    if (i % 7 == 0) key(Qt::Key_Tab);
    if (i % 50 == 0) frame().action(properties)->trigger();
    if (i % 3 == 0 || i % 100 == 0) key(Qt::Key_N, Qt::ControlModifier);  // else the next one replaces it
    QApplication::processEvents();
    if (i == 100) early = memoryHeld();
  }
  const size_t more = software ? slack : 16 * slack;  // OpenGL's driver compiles and keeps when it likes
  EXPECT_LT(memoryHeld(), early + more) << "after 100 models: " << early;
}

}  // namespace
}  // namespace facet
