#include <cstdio>

#include "app/viewer_app.h"

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv, argv + argc);
  if (!arguments.empty()) arguments.front() = facet::programPath(arguments.front());
  const facet::CommandLine line = facet::parseCommandLine(arguments);
  if (line.exitStatus) {
    std::fputs(line.answer.c_str(), *line.exitStatus == 0 ? stdout : stderr);
    return *line.exitStatus;
  }
  int qtArguments = 1;  // Qt's own options are not this program's
  facet::ViewerApp app(qtArguments, argv);
  return app.start(line) ? facet::ViewerApp::exec() : 1;
}
