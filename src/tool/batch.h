#pragma once

#include <CLI/CLI.hpp>
#include <atomic>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "import/load.h"
#include "tool/console.h"

// The subcommands of facetbench, and the one engine of every subcommand that takes models: which files are
// meant, which files are written, that nothing of the user's is overwritten, and the work itself on all
// cores.

namespace facet {

/// The subcommands of facetbench. Each sets its options up on a parser of its own and returns what runs once
/// they are parsed; what that returns is the exit status.
using RunCommand = std::function<int()>;
RunCommand setUpConvert(CLI::App&app), setUpInfo(CLI::App&app), setUpLog(CLI::App&app),
    setUpRender(CLI::App&app), setUpTexture(CLI::App&app);

/// Where a run looks for textures: --textures and --no-search.
struct TextureOptions {
  std::vector<std::string> textures;
  bool noSearch = false;
};
void addTextures(CLI::App& app, TextureOptions& options);

/// One line about wrong usage; returns the exit status for it.
int usageError(std::string_view command, std::string_view reason);

/// The program `facetbench`. Exit status: 0 all well, 1 some input failed, 2 wrong usage.
int runTool(int argc, const char* const* argv);

inline constexpr std::string_view standardOutput = "-";

/// What such subcommands share on the command line.
struct BatchOptions : TextureOptions {
  std::vector<std::string> models;  ///< files, and folders with `recursive`
  std::string output;               ///< -o: a file, or "-" for standard output; empty without
  std::string folder;               ///< --out: where results go, empty for the current directory
  bool recursive = false;
  bool quiet = false;
  unsigned jobs = 0;  ///< models at a time, 0 for one per core
};
void addBatch(CLI::App& app, BatchOptions& options);

/// One model of a run.
struct Job {
  std::string model;
  std::string subfolder;             ///< "" or a relative folder: a folder of the command line keeps its tree
  std::vector<std::string> outputs;  ///< the files made of it
};

/// Base paths as the command line gives them: a folder gets its separator. Without any, the configuration
/// file of the current directory, else the default.
BasePaths toolBasePaths(const std::vector<std::string>& given);

/// One model of the command line, and what its load said.
struct ToolLoad {
  std::unique_ptr<Model> model;  ///< its name is the path as it was given
  std::string error;
  Transcript transcript;
};
/// Warnings and missing textures go to standard error. The model's display colours depend on the seed alone.
ToolLoad loadForTool(const std::string& path, const BasePaths& basePaths, const LoadOptions& options,
                     uint32_t seed = 0);

/// A run over models.
class Batch {
 public:
  explicit Batch(const BatchOptions& options);

  /// Gives every model its outputs: the file of -o for the first extension (it stands beside it for others,
  /// which are those of companions), or a name per extension under the folder: its own
  /// with the extension. Where models would meet in one file, they get their whole name before that
  /// ("ship.mesh.obj"), and where they meet still, a number ("ship.vxm-2.obj"). With `count` above 1 each
  /// becomes that many, "ship-01.png" ...
  void plan(std::span<const std::string_view> extensions, unsigned count = 1);

  /// The reason why the run may not begin, or an empty text: an output that is an input of the run, or
  /// another output of it, under whatever name. Told before anything is written.
  std::string refusal() const;

  /// Does the jobs, up to options.jobs at a time. `makeWorker` is called once on each thread that takes part;
  /// what it returns is called with that thread's jobs. Ends early when the program is interrupted. A job
  /// that runs out of memory fails, and the run goes on.
  using Worker = std::function<void(const Job&)>;
  void run(const std::function<Worker()>& makeWorker);

  /// Loads the job's model; none after a failure that was told.
  std::unique_ptr<Model> load(const Job& job, LoadOptions options, uint32_t seed = 0);

  /// True where the file at `path` belongs to the model: a texture or a listed mesh file. Such an output is a
  /// failure, and told.
  bool wouldOverwrite(const Model& model, const std::string& path);

  /// Tells of a failure, which counts.
  void fail(std::string_view path, std::string_view reason);

  /// Tells of a result, unless that is unwanted.
  void tell(const std::string& line);

  const std::vector<Job>& jobs() const { return jobs_; }
  const BasePaths& basePaths() const { return basePaths_; }
  int exitStatus() const;

 private:
  void collect();
  void collectFolder(const std::string& folder);

  const BatchOptions& options_;
  const BasePaths basePaths_;
  const std::shared_ptr<ImageCache> images_ = std::make_shared<ImageCache>();
  const std::shared_ptr<TextureSearch> textures_;
  std::vector<Job> jobs_;
  bool bar_ = false;
  std::atomic<size_t> failures_ = 0, done_ = 0;
};

/// The first of `outputs` that is one of `inputs` or an earlier output, through links and other spellings
/// too, with the reason: "ship.vxm: is an input of this run". Empty when there is none.
std::string overwritten(std::span<const std::string> inputs, std::span<const std::string> outputs);

/// Writes bytes to a file, whose folder is made, or to standard output; the reason where that fails.
std::string writeBytes(std::string_view bytes, const std::string& path);

/// The same for R, G, B, A pixels as a PNG.
std::string writePng(std::span<const uint8_t> pixels, uint32_t width, uint32_t height,
                     const std::string& path);

/// The reason why a picture may not have this name, or an empty text: only a name that promises something
/// else than PNG is refused, as file managers name thumbnails anyhow.
std::string pictureNameRefusal(const std::string& path);

}  // namespace facet
