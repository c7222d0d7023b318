#include "tool/log.h"

#include "commands/statistics_log.h"
#include "platform/output.h"
#include "tool/console.h"
#include "tool/load_model.h"

namespace facet {

int runLog(const LogOptions& options) {
  const BasePaths basePaths = toolBasePaths(options.textures);
  const ToolLoad load = loadForTool(options.model, basePaths);
  if (!load.model) {
    reportFailure(options.model, load.error);
    return exitFailure;
  }
  const std::string log = statisticsLog(*load.model, basePaths);
  if (options.output.empty()) {
    printOut(log);
    return exitSuccess;
  }
  OutputFile file(options.output);
  file.write(log);
  if (file.commit()) return exitSuccess;
  reportFailure(options.output, file.error());
  return exitFailure;
}

}  // namespace facet
