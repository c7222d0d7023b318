#include <algorithm>
#include <string_view>

#include "import/readers.h"

namespace facet {

namespace {

constexpr uint32_t childrenId = 9, prefixedContainerId = 15, nameListId = 16;
constexpr uint32_t containerPrefix = 16;

class Model4aReader {
 public:
  explicit Model4aReader(Model& model) : model_(model), materials_(model) {}

  /// Adds the meshes of one file; returns the text of its list of mesh files, empty when it has none.
  std::string readFile(ByteSource& file);

 private:
  using ChunkReader = void (Model4aReader::*)(ByteSource& file, const ChunkHeader& chunk);
  struct ChunkRow {
    uint32_t id;
    ChunkReader read;
  };
  static const ChunkRow chunkTable[];

  void readChunks(ByteSource& file, uint64_t start, uint64_t size);
  void readChildren(ByteSource& file);
  void readMaterial(ByteSource& file, const ChunkHeader& chunk);
  void readPlainVertices(ByteSource& file, const ChunkHeader& chunk);
  void readPackedVertices(ByteSource& file, const ChunkHeader& chunk);
  void readIndexList(ByteSource& file, const ChunkHeader& chunk);

  /// The mesh that the last material chunk opened, none before the first.
  Mesh* currentMesh() { return model_.meshCount == 0 ? nullptr : &model_.meshes[model_.meshCount - 1]; }

  Model& model_;
  MaterialTable materials_;
};

const Model4aReader::ChunkRow Model4aReader::chunkTable[] = {
    {2, &Model4aReader::readMaterial},
    {3, &Model4aReader::readPlainVertices},
    {4, &Model4aReader::readIndexList},
    {5, &Model4aReader::readPackedVertices},
};

std::string Model4aReader::readFile(ByteSource& file) {
  file.seek(0);
  ChunkHeader chunk;
  while (readChunkHeader(file, chunk)) {
    switch (chunk.id) {
      case nameListId:
        file.claim(chunk.end());
        file.skip(4);
        return file.readText(chunk.end());
      case childrenId:
        file.claim(chunk.end());
        readChildren(file);
        return {};
      case prefixedContainerId:
        file.seek(chunk.data + containerPrefix);
        break;
      default:
        readChunks(file, chunk.start(), chunk.end() - chunk.start());
        file.seek(chunk.end());
    }
  }
  return {};
}

void Model4aReader::readChildren(ByteSource& file) {
  ChunkHeader chunk;
  for (uint32_t child = 0; readChunkHeader(file, chunk) && chunk.id == child; ++child) {
    readChunks(file, chunk.data, chunk.size);
    file.seek(chunk.end());
  }
}

void Model4aReader::readChunks(ByteSource& file, uint64_t start, uint64_t size) {
  forEachChunk(file, start, size, [&](const ChunkHeader& chunk) {
    for (const ChunkRow& row : chunkTable)
      if (row.id == chunk.id) (this->*row.read)(file, chunk);
  });
}

void Model4aReader::readMaterial(ByteSource& file, const ChunkHeader& chunk) {
  const std::string texture = file.readText(chunk.end());
  const std::string shader = file.readText(chunk.end());
  growArray(model_.meshes, model_.meshCount).materialIndex = materials_.findOrAdd(texture, shader).index;
  ++model_.meshCount;
}

void Model4aReader::readPlainVertices(ByteSource& file, const ChunkHeader& chunk) {
  struct Record {
    Vector3 position;
    uint32_t unused[3];
    float u, v;
  };
  struct {
    uint32_t unused, count;
  } head;
  Mesh* mesh = currentMesh();
  if (mesh == nullptr || chunk.size < sizeof head || !file.read(head)) return;
  const uint32_t fits = (chunk.size - uint32_t{sizeof head}) / uint32_t{sizeof(Record)};
  allocateVertices(*mesh, std::min(head.count, fits));
  clearNormals(*mesh);
  file.readRecords(mesh->vertexCount, sizeof(Record),
                   [vertices = mesh->vertices.get()](const std::byte* bytes, uint64_t i) {
                     Record record;
                     std::memcpy(&record, bytes, sizeof record);
                     const auto& [x, y, z] = record.position;
                     vertices[i] = {x, y, z, record.u, record.v};
                   });
}

void Model4aReader::readPackedVertices(ByteSource& file, const ChunkHeader& chunk) {
  struct Record {
    int16_t x, y, z;
    uint8_t unused[22];
    int16_t u, v;
  };
  static_assert(sizeof(Record) == 32);
  constexpr uint32_t leadRecord = 61;
  constexpr float perUnit = 2720.0f, textureScale = 1.0f / 2048;
  uint8_t leadCount;
  uint32_t count;
  Mesh* mesh = currentMesh();
  if (mesh == nullptr || chunk.size < sizeof leadCount || !file.read(leadCount)) return;
  const uint32_t records = leadRecord * leadCount, lead = sizeof leadCount + records + sizeof count;
  file.skip(records);
  if (chunk.size < lead || !file.read(count)) return;
  allocateVertices(*mesh, std::min(count, (chunk.size - lead) / uint32_t{sizeof(Record)}));
  clearNormals(*mesh);
  file.readRecords(mesh->vertexCount, sizeof(Record),
                   [vertices = mesh->vertices.get()](const std::byte* bytes, uint64_t i) {
                     Record record;
                     std::memcpy(&record, bytes, sizeof record);
                     vertices[i] = {record.x / perUnit, record.y / perUnit, record.z / perUnit,
                                    record.u * textureScale, record.v * textureScale};
                   });
}

/// The chunk's size tells how many indices there are; a lead above 65535 holds a triangle count in its lower
/// half, and only that many are kept.
void Model4aReader::readIndexList(ByteSource& file, const ChunkHeader& chunk) {
  uint32_t lead;
  Mesh* mesh = currentMesh();
  if (mesh == nullptr || chunk.size < sizeof lead || !file.read(lead)) return;
  uint32_t count = (chunk.size - uint32_t{sizeof lead}) / uint32_t{sizeof(uint16_t)};
  if (lead > 0xFFFF) count = std::min(count, (lead & 0xFFFF) * 3);
  allocateIndices(*mesh, count);
  readIndices(file, *mesh);
}

/// What the names of a model's list are relative to: the folder that holds the first "dynamic" folder of its
/// path. None when there is no such folder.
std::optional<std::string_view> meshFolderOf(std::string_view path) {
  const size_t dynamic = std::min(path.find("dynamic\\"), path.find("dynamic/"));
  if (dynamic == std::string_view::npos) return {};
  return path.substr(0, dynamic);
}

/// A name that keeps to one line wherever it is shown.
std::string printable(std::string name) {
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
  return name;
}

std::unique_ptr<ByteSource> openMeshFile(const std::string& fileName, const LoadContext& context,
                                         Model& model) {
  const auto folder = meshFolderOf(context.path);
  if (!folder)
    throw LoadError("cannot open the mesh file " + printable(fileName) +
                    ": the model does not stand under a folder named \"dynamic\"");
  const std::string path = std::string(*folder) + fileName;
  std::string whyNot;
  const std::filesystem::path found = context.files.find(path).value_or(path);
  std::unique_ptr<ByteSource> file = openFile(found, &whyNot);
  if (!file) throw LoadError("cannot open the mesh file " + printable(fileName) + ": " + whyNot);
  model.listedFiles.push_back(found.string());
  return file;
}

}  // namespace

void readModel4a(ByteSource& file, const LoadContext& context, Model& model) {
  Model4aReader reader(model);
  const std::string list = reader.readFile(file);
  const auto names = static_cast<float>(std::ranges::count(list, ',') + 1);
  float read = 0;
  std::string_view rest = list;
  while (!rest.empty()) {
    const size_t comma = rest.find(',');
    const std::string_view name = rest.substr(0, comma);
    // A list within a listed file is not followed, so that files naming each other come to an end.
    if (!name.empty()) {
      const std::string fileName = std::string(name) + ".mesh";
      const auto listed = openMeshFile(fileName, context, model);
      listed->watch(context.progress, readingShare * read / names, readingShare * (read + 1) / names);
      reader.readFile(*listed);
      warnWhereCutOff(*listed, printable(fileName) + ": ", model);
    }
    ++read;
    rest.remove_prefix(comma == std::string_view::npos ? rest.size() : comma + 1);
  }
}

}  // namespace facet
