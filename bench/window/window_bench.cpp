// window_bench: how soon the window shows the sample, against f3d's window on the same display, and how long
// a key press takes with the software device at 1280 x 720. Starts an X server of its own.

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <iomanip>
#include <memory>
#include <set>

#include "app/view_widget.h"
#include "app/viewer_app.h"
#include "bench.h"

// X's headers define macros of everyday words, so they come last.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace facet {
namespace {

constexpr int width = 1280, height = 720;

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

/// Starts a program that shows a model, and ends it: milliseconds to the model's picture, which is known of
/// this program alone, or to the window.
double startTime(const Server& server, const QString& program, const QStringList& arguments, bool toPicture) {
  QProcess process;
  process.setStandardErrorFile(QProcess::nullDevice());
  process.setStandardOutputFile(QProcess::nullDevice());
  const Stopwatch watch;
  process.start(program, arguments);
  const auto isThere = [&] { return !server.windows().empty() && (!toPicture || server.showsModel()); };
  while (watch.passed() < 20'000 && !isThere()) QThread::msleep(2);  // asking keeps the server from its work
  const double time = watch.passed();
  process.kill();
  process.waitForFinished();
  while (!server.windows().empty()) QThread::msleep(5);
  return time;
}

/// Start to first picture of each, in turn, best of some.
void measureStart(const Server& server, const QString& viewer) {
  const bool compares = hasCommand("f3d");
  double f3d = INFINITY, ref = INFINITY, hal = INFINITY;
  for (int i = 0; i < 7; ++i) {
    if (compares) f3d = std::min(f3d, startTime(server, "f3d", {"lighthouse.glb"}, false));
    ref = std::min(ref, startTime(server, viewer, {"--device", "ref", "lighthouse.vxm"}, true));
    hal = std::min(hal, startTime(server, viewer, {"--device", "hal", "lighthouse.vxm"}, true));
  }
  printHead("start", "ms", "of f3d's window");
  if (compares) printRow("f3d, to its window", f3d, 1.0);
  printRow("vxmviewer --device ref, to the picture", ref, ref / f3d);
  printRow("vxmviewer --device hal, to the picture", hal, hal / f3d);
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
  printHead("key press", "in the middle, ms", "at most, ms");
  for (const char* mode : {"wireframe", "lit", "textured"}) {
    std::vector<double> times;
    for (int i = 0; i < 60; ++i) {
      const Stopwatch watch;
      QTest::keyClick(&frame.view(), i % 2 ? Qt::Key_Left : Qt::Key_Right);
      QApplication::processEvents();
      XSync(server.display(), False);
      times.push_back(watch.passed());
    }
    std::ranges::sort(times);
    printRow(mode, times[30], times.back());
    QTest::keyClick(&frame.view(), Qt::Key_Tab);
  }
}

}  // namespace
}  // namespace facet

int main(int argc, char** argv) {
  using namespace facet;
  const QString programs = QFileInfo(argv[0]).absolutePath();
  const QTemporaryDir folder;
  QDir::setCurrent(folder.path());
  const QStringList toGlb{"convert", "lighthouse.vxm", "-o", "lighthouse.glb", "-q"};
  if (QProcess::execute(programs + "/make_sample", {"."}) != 0) return 1;
  if (QProcess::execute(programs + "/facetbench", toGlb) != 0) return 1;
  XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });  // windows go away while they are asked about
  const Server server;
  if (!server.display()) {
    std::cerr << "window_bench: Xvfb does not start\n";
    return 1;
  }
  qputenv("DISPLAY", server.name());
  qputenv("QT_QPA_PLATFORM", "xcb");
  std::cout << std::fixed << std::setprecision(2);
  measureStart(server, programs + "/vxmviewer");
  ViewerApp app(argc, argv);
  measureKeys(app, server);
  app.stop();
  return 0;
}
