#include "commands/reports.h"
#include "tool/batch.h"
#include "tool/command.h"
#include "tool/console.h"

namespace facet {

namespace {

int runLog(const BatchOptions& options) {
  Batch batch(options);
  if (!options.output.empty()) batch.plan(std::vector<std::string_view>{"log"});
  if (const std::string refusal = batch.refusal(); !refusal.empty()) return usageError("log", refusal);
  batch.run([&] {
    return [&](const Job& job) {
      const std::unique_ptr<Model> model = batch.load(job, {});
      if (!model) return;
      const std::string log = statisticsLog(*model, batch.basePaths());
      const std::string path = job.outputs.empty() ? std::string(standardOutput) : job.outputs.front();
      if (batch.wouldOverwrite(*model, path)) return;
      const std::string reason = writeBytes(log, path);
      if (!reason.empty()) batch.fail(path, reason);
    };
  });
  return batch.exitStatus();
}

}  // namespace

RunCommand setUpLog(CLI::App& app) {
  const auto options = std::make_shared<BatchOptions>();
  options->models.resize(1);
  app.add_option("model", options->models.front(), "model file")->required()->type_name("MODEL");
  app.add_option("-o,--output", options->output, "file for the log (default: standard output)")
      ->type_name("FILE");
  addTextures(app, options->textures);
  return [options] { return runLog(*options); };
}

}  // namespace facet
