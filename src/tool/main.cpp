#include "tool/tool.h"

int main(int argc, char** argv) {
  return facet::runTool(argc, argv);
}
