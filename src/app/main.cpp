#include <cstdio>

#include "app/viewer_app.h"

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv, argv + argc);
  if (!arguments.empty()) arguments.front() = facet::programPath(arguments.front());
  const facet::CommandLine line = facet::parseCommandLine(arguments);
  if (line.help) return std::fputs(facet::commandLineHelp().c_str(), stdout) < 0;
  if (line.version) return std::puts("vxmviewer " FACET_VERSION) < 0;
  if (!line.error.empty()) {
    std::fprintf(stderr, "vxmviewer: %s\nTry vxmviewer --help\n", line.error.c_str());
    return 2;
  }
  int qtArguments = 1;  // Qt's own options are not this program's
  facet::ViewerApp app(qtArguments, argv);
  return app.start(line) ? facet::ViewerApp::exec() : 1;
}
