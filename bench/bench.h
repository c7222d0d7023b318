#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace facet {

/// Seconds of the fastest of `runs` runs.
template <class Run>
double bestOf(int runs, Run run) {
  double best = INFINITY;
  for (int i = 0; i < runs; ++i) {
    const auto start = std::chrono::steady_clock::now();
    run();
    best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  return best;
}

/// Runs a command of the shell. Throws std::runtime_error when it fails.
inline void runCommand(const std::string& command) {
  if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

/// A folder for the files of the measurements, gone afterwards.
class BenchFolder {
 public:
  BenchFolder() { std::filesystem::create_directories(path_); }
  ~BenchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  BenchFolder(const BenchFolder&) = delete;
  BenchFolder& operator=(const BenchFolder&) = delete;
  std::string operator/(const char* name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_ = std::filesystem::temp_directory_path() / "facet_bench";
};

}  // namespace facet
