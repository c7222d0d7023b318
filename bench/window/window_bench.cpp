// window_bench: how soon the window shows the sample, against f3d's window on the same display, and how long
// a key press takes with the software device at 1280 x 720. Starts an X server of its own.

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <set>

#include "app/text.h"
#include "app/view_widget.h"
#include "app/viewer_app.h"

// X's headers define macros of everyday words, so they come last.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace facet {
namespace {

constexpr int width = 1280, height = 720;
constexpr int runs = 7;

/// The display of a server of its own, which ends with it.
class Server {
 public:
  Server() {
    const QString size = QString("%1x%2x24").arg(width).arg(height);
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.start("Xvfb", {"-displayfd", "1", "-screen", "0", size, "-noreset"});
    process_.waitForReadyRead(10'000);
    name_ = ':' + process_.readLine().trimmed();
    display_.reset(XOpenDisplay(name_.constData()));
  }
  ~Server() {
    display_.reset();
    process_.terminate();
    process_.waitForFinished();
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  Display* display() const { return display_.get(); }
  const QByteArray& name() const { return name_; }

  /// The windows of programs that can be seen and are larger than a box.
  std::vector<Window> windows() const {
    Window root, parent, *children = nullptr;
    unsigned count = 0;
    XQueryTree(display(), DefaultRootWindow(display()), &root, &parent, &children, &count);
    std::vector<Window> seen;
    for (unsigned i = 0; i < count; ++i) {
      XWindowAttributes about;
      if (XGetWindowAttributes(display(), children[i], &about) && about.map_state == IsViewable &&
          about.width > 300)
        seen.push_back(children[i]);
    }
    if (children) XFree(children);
    return seen;
  }

  /// True when the line in the middle of the screen shows the view's background and edges of a model on it.
  bool showsModel() const {
    XImage* line =
        XGetImage(display(), DefaultRootWindow(display()), 0, height / 2, width, 1, AllPlanes, ZPixmap);
    std::set<unsigned long> found;
    for (int x = 0; line && x < width; ++x) found.insert(XGetPixel(line, x, 0));
    if (line) XDestroyImage(line);
    constexpr unsigned long background = 0x7F7F7F;
    return found.contains(background) && found.size() > 1;
  }

 private:
  struct Close {
    void operator()(Display* display) const { XCloseDisplay(display); }
  };
  QProcess process_;
  QByteArray name_;
  std::unique_ptr<Display, Close> display_;
};

struct StartTimes {
  double window = 1e9, picture = 1e9;  ///< ms from the start of the process to its window, its picture
};

/// Starts a program that shows a model, and ends it. Only this program's picture is known when it is seen.
StartTimes timeStart(const Server& server, const QString& program, const QStringList& arguments,
                     const QString& folder, bool ours) {
  QProcess process;
  process.setWorkingDirectory(folder);
  process.setStandardErrorFile(QProcess::nullDevice());
  process.setStandardOutputFile(QProcess::nullDevice());
  StartTimes times;
  QElapsedTimer clock;
  clock.start();
  process.start(program, arguments);
  const auto passed = [&] { return static_cast<double>(clock.nsecsElapsed()) / 1e6; };
  while (passed() < 20'000 && times.picture > 1e8) {
    if (times.window > 1e8 && !server.windows().empty()) times.window = passed();
    if (times.window < 1e8 && (!ours || server.showsModel())) times.picture = passed();
    QThread::msleep(2);  // asking keeps the server from what it is asked about
  }
  process.kill();
  process.waitForFinished();
  while (!server.windows().empty()) QThread::msleep(5);
  return times;
}

void keepBest(StartTimes& best, const StartTimes& times) {
  best.window = std::min(best.window, times.window);
  best.picture = std::min(best.picture, times.picture);
}

/// Start to first picture of each, in turn, best of some.
void measureStart(const Server& server, const QString& programs, const QString& sample) {
  const QString viewer = programs + "/vxmviewer";
  const bool reference = QProcess::execute("sh", {"-c", "command -v f3d >/dev/null"}) == 0;
  StartTimes ref, hal, f3d;
  for (int i = 0; i < runs; ++i) {
    keepBest(ref, timeStart(server, viewer, {"--device", "ref", "lighthouse.vxm"}, sample, true));
    keepBest(hal, timeStart(server, viewer, {"--device", "hal", "lighthouse.vxm"}, sample, true));
    if (reference) keepBest(f3d, timeStart(server, "f3d", {"lighthouse.glb"}, sample, false));
  }
  const auto print = [&](const char* name, const StartTimes& times) {
    std::printf("start, %-24s window %6.0f ms, picture %6.0f ms", name, times.window, times.picture);
    if (reference) std::printf(", of f3d's window %.2f", times.picture / f3d.window);
    std::printf("\n");
  };
  print("vxmviewer --device ref", ref);
  print("vxmviewer --device hal", hal);
  if (reference)
    std::printf("start, %-24s window %6.0f ms\n", "f3d", f3d.window);
  else
    std::printf("f3d is not installed: nothing to compare the start with\n");
}

/// From a key press until the window's picture is with the X server, in each drawing mode.
void measureKeys(ViewerApp& app, const Server& server) {
  CommandLine line;
  line.model = "lighthouse.vxm";
  line.whole = "\"window_bench\" " + line.model;
  line.device = DeviceChoice::ref;
  if (!app.start(line)) return;
  CMainFrame& frame = app.frame();
  frame.resize(width, height);
  (void)QTest::qWaitForWindowExposed(&frame);
  const char* modes[] = {"wireframe", "lit", "textured"};
  for (const char* mode : modes) {
    std::vector<double> times;
    for (int i = 0; i < 60; ++i) {
      QElapsedTimer clock;
      clock.start();
      QTest::keyClick(&frame.view(), i % 2 ? Qt::Key_Left : Qt::Key_Right);
      QApplication::processEvents();
      XSync(server.display(), False);
      times.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }
    std::ranges::sort(times);
    std::printf("key press, %-13s %5.1f ms in the middle, %5.1f ms at most\n", mode, times[30], times.back());
    QTest::keyClick(&frame.view(), Qt::Key_Tab);
  }
}

}  // namespace
}  // namespace facet

int main(int argc, char** argv) {
  using namespace facet;
  const QString programs = QFileInfo(argv[0]).absolutePath();
  const QTemporaryDir folder;
  const QString sample = folder.path() + "/sample";
  if (QProcess::execute(programs + "/make_sample", {sample}) != 0) return 1;
  QDir::setCurrent(sample);
  if (QProcess::execute(programs + "/facetbench",
                        {"convert", "lighthouse.vxm", "-o", "lighthouse.glb", "-q"}) != 0)
    return 1;
  XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });  // windows go away while they are asked about
  const Server server;
  if (!server.display()) {
    std::fprintf(stderr, "window_bench: Xvfb does not start\n");
    return 1;
  }
  qputenv("DISPLAY", server.name());
  qputenv("QT_QPA_PLATFORM", "xcb");
  measureStart(server, programs, sample);
  ViewerApp app(argc, argv);
  measureKeys(app, server);
  app.stop();
  return 0;
}
