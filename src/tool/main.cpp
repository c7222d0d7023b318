#include "platform/output.h"
#include "platform/system.h"
#include "tool/batch.h"

int main(int argc, char** argv) {
  facet::preferLargePages();
  facet::stopOnInterruption();
  const int status = facet::runTool(argc, argv);
  facet::endIfInterrupted();
  return status;
}
