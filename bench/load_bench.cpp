#include "load_bench.h"

#include <sys/resource.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <ostream>
#include <stdexcept>

#include "bench.h"
#include "import/load.h"

namespace facet {

namespace {

constexpr uint32_t columns = 256, rows = 255;  // vertices of a mesh, near the limit of 16-bit indices
constexpr uint32_t vertexCount = columns * rows, indexCount = (columns - 1) * (rows - 1) * 6;

/// Chunks of a VXM file, written as they come.
class ChunkFile {
 public:
  explicit ChunkFile(const std::string& path) : file_(path, std::ios::binary) {}

  void chunk(uint32_t id, uint32_t size) { put(id), put(size); }
  void put(uint32_t value) { file_.write(reinterpret_cast<const char*>(&value), sizeof value); }
  void write(const std::string& bytes) {
    file_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }

 private:
  std::ofstream file_;
};

std::string vertexRecords(uint32_t stride) {
  std::string bytes(size_t{vertexCount} * stride, '\0');
  for (uint32_t i = 0; i < vertexCount; ++i) {
    const float position[] = {static_cast<float>(i % columns), 0.5F, static_cast<float>(i / columns)};
    std::memcpy(&bytes[size_t{i} * stride], position, sizeof position);
  }
  return bytes;
}

std::string indexWords() {
  std::string bytes;
  for (uint32_t row = 0; row + 1 < rows; ++row) {
    for (uint32_t column = 0; column + 1 < columns; ++column) {
      const uint32_t a = row * columns + column;
      for (const uint32_t corner : {a, a + columns, a + 1, a + 1, a + columns, a + columns + 1}) {
        bytes += static_cast<char>(corner);
        bytes += static_cast<char>(corner >> 8);
      }
    }
  }
  return bytes;
}

/// A hierarchy of `meshes` grids in the given vertex format; returns the size of the model's own arrays.
uint64_t writeHierarchy(const std::string& path, uint32_t meshes, uint32_t format, uint32_t stride) {
  const std::string header(44, '\0'), names("bench\\grid\0default\0", 19);
  const std::string vertices = vertexRecords(stride), indices = indexWords();
  const auto verticesSize = static_cast<uint32_t>(8 + vertices.size());
  const auto indicesSize = static_cast<uint32_t>(4 + indices.size());
  const auto childSize =
      static_cast<uint32_t>(4 * 8 + header.size() + names.size()) + verticesSize + indicesSize;
  ChunkFile file(path);
  file.chunk(1, 44), file.write(header);
  file.chunk(9, meshes * (childSize + 8));
  for (uint32_t m = 0; m < meshes; ++m) {
    file.chunk(m, childSize);
    file.chunk(1, 44), file.write(header);
    file.chunk(2, static_cast<uint32_t>(names.size())), file.write(names);
    file.chunk(3, verticesSize), file.put(format), file.put(vertexCount), file.write(vertices);
    file.chunk(4, indicesSize), file.put(indexCount), file.write(indices);
  }
  return meshes *
         (uint64_t{vertexCount} * (sizeof(Vertex) + sizeof(Vector3)) + indexCount * sizeof(uint16_t));
}

/// Seconds to copy `size` bytes into memory that was just taken.
double copyTime(uint64_t size) {
  const auto source = std::make_unique<char[]>(size);
  std::memset(source.get(), 1, size);
  return bestOf(5, [&] {
    const auto copy = std::make_unique_for_overwrite<char[]>(size);
    std::memcpy(copy.get(), source.get(), size);
    if (copy[size / 2] != 1) throw std::runtime_error("copied wrongly");
  });
}

/// Peak memory in bytes of the largest child process so far.
uint64_t childPeak() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  return uint64_t(usage.ru_maxrss) * 1024;
}

struct Hierarchy {
  const char* name;
  uint32_t meshes, format, stride;
  std::string path = {};
  double peak = 0;  ///< memory of the whole process, in sizes of the model's own arrays
};

void benchHierarchy(std::ostream& out, const BenchFolder& folder, const std::string& tool) {
  out << "| VXM hierarchy, loaded from the page cache | time | copying the same bytes | ratio | peak memory "
         "/ own "
         "arrays |\n|---|---|---|---|---|\n";
  Hierarchy cases[] = {{"400 MB, 60-byte vertices", 85, 1, 60}, {"400 MB, 32-byte vertices", 140, 0x112, 32}};
  // A process started later would inherit the peak of this one, so these come before anything large.
  for (Hierarchy& row : cases) {
    row.path = folder / row.name;
    const uint64_t arrays = writeHierarchy(row.path, row.meshes, row.format, row.stride);
    runCommand("'" + tool + "' info '" + row.path + "' > /dev/null");
    row.peak = static_cast<double>(childPeak()) / static_cast<double>(arrays);
  }
  for (const Hierarchy& row : cases) {
    const double copy = copyTime(std::filesystem::file_size(row.path));
    const double load = bestOf(5, [&] {
      if (loadModel(row.path, {}, nullptr).model->meshCount != row.meshes)
        throw std::runtime_error("loaded wrongly");
    });
    out << "| " << row.name << " | " << load * 1e3 << " ms | " << copy * 1e3 << " ms | " << load / copy
        << " | " << row.peak << " |\n";
  }
}

void benchSmallFile(std::ostream& out, const BenchFolder& folder, const std::string& tool) {
  const std::string path = folder / "small.vxm";
  std::ofstream(path, std::ios::binary) << std::string("\1\0\0\0\4\0\0\0\0\0\0\0", 12);
  const double empty = bestOf(20, [] { runCommand("true"); });
  const double convert =
      bestOf(20, [&] { runCommand("'" + tool + "' convert -q '" + path + "' -o '" + path + ".obj'"); });
  out << "\n| whole process | time |\n|---|---|\n| empty | " << empty * 1e3
      << " ms |\n| convert of one small file | " << convert * 1e3 << " ms |\n";
}

}  // namespace

void benchLoad(std::ostream& out, const std::string& tool) {
  const BenchFolder folder;
  benchHierarchy(out, folder, tool);
  benchSmallFile(out, folder, tool);
}

}  // namespace facet
