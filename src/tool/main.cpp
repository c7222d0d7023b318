#include "platform/large_pages.h"
#include "tool/tool.h"

int main(int argc, char** argv) {
  facet::preferLargePages();
  return facet::runTool(argc, argv);
}
