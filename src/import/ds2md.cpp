#include <cmath>
#include <string_view>

#include "import/readers.h"
#include "model/model.h"

namespace facet {

namespace {

/// The name within a texture path: from after its last backslash to its last dot. The byte right after a
/// backslash is not looked at. A dot before the last backslash does not count.
std::string_view textureNameOf(std::string_view path) {
  size_t start = 0, end = path.size();
  for (size_t i = 0; i < path.size(); ++i) {
    if (path[i] == '.') end = i;
    if (path[i] == '\\') start = ++i;
  }
  if (end < start) end = path.size();
  return path.substr(start, end - start);
}

/// The text up to its first NUL, as whoever reads it in C would see it.
std::string_view upToNul(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

class Ds2mdReader {
 public:
  Ds2mdReader(ByteSource& file, Model& model) : file_(file), model_(model) {}

  void readFile();

 private:
  bool readHead();
  bool readRecord(Mesh& mesh, Material& material);
  bool readSeparateArrays(Mesh& mesh);
  bool readInterleaved(Mesh& mesh);
  bool findNextRecord();

  bool readText(std::string& text);
  bool skipTexts(int count);

  ByteSource& file_;
  Model& model_;
  /// Records that overlap could ask for many times the file's size: so much memory is given in all.
  uint64_t mostArrayBytes() const { return 4 * file_.size() + (64 << 20); }

  uint64_t arrayBytes_ = 0;
  bool interleaved_ = false;  // version 0.6
  uint8_t recordCount_ = 0;
};

void Ds2mdReader::readFile() {
  if (!readHead()) throw LoadError("cut off in its head: " + std::to_string(file_.size()) + " bytes");
  do {
    Mesh mesh;
    Material material;
    if (!readRecord(mesh, material)) break;
    arrayBytes_ +=
        mesh.vertexCount * uint64_t{sizeof(Vertex) + sizeof(Vector3)} + mesh.indexCount * uint64_t{2};
    if (arrayBytes_ > mostArrayBytes()) {
      model_.warnings.push_back("its records overlap; those after mesh " + std::to_string(model_.meshCount) +
                                " were left out");
      break;
    }
    mesh.materialIndex = model_.materialCount;
    growArray(model_.meshes, model_.meshCount) = std::move(mesh);
    growArray(model_.materials, model_.materialCount) = std::move(material);
    ++model_.meshCount;
    ++model_.materialCount;
  } while (model_.meshCount < recordCount_ && findNextRecord());
  if (model_.meshCount == 0)
    throw LoadError("cut off in its first mesh: " + std::to_string(file_.size()) + " bytes");
}

bool Ds2mdReader::readHead() {
  std::string version;
  file_.seek(16);
  if (!readText(version)) return false;
  interleaved_ = version.starts_with("0.6");
  if (!interleaved_) return skipTexts(1) && file_.read(recordCount_);
  file_.skip(4);
  if (!file_.read(recordCount_)) return false;
  file_.skip(1);
  return skipTexts(1);
}

bool Ds2mdReader::readRecord(Mesh& mesh, Material& material) {
  std::string path;
  if (!readText(material.shaderName) || !readText(path) || !skipTexts(4)) return false;
  material.shaderName = upToNul(material.shaderName);
  material.textureName = upToNul(textureNameOf(path));
  return interleaved_ ? readInterleaved(mesh) : readSeparateArrays(mesh);
}

bool Ds2mdReader::readSeparateArrays(Mesh& mesh) {
  Vector3 box[2];
  uint32_t indexCount;
  uint16_t vertexCount;
  if (!file_.read(box)) return false;
  file_.skip(9);
  if (!file_.read(indexCount) || file_.remaining() < indexCount * uint64_t{2}) return false;
  allocateIndices(mesh, indexCount);
  if (!readIndices(file_, mesh)) return false;
  if (!file_.read(vertexCount) || file_.remaining() < vertexCount * uint64_t{32}) return false;
  allocateVertices(mesh, vertexCount);
  if (!readScaledPositions(file_, mesh) || !readNormals(file_, mesh) || !readTextureCoordinates(file_, mesh))
    return false;

  for (Vector3& corner : box)
    corner = {fromHundredths(corner.x), fromHundredths(corner.y), fromHundredths(corner.z)};
  const auto& [low, high] = box;
  mesh.boundsMin = low;
  mesh.boundsMax = high;
  mesh.center = {(low.x + high.x) * 0.5f, (low.y + high.y) * 0.5f, (low.z + high.z) * 0.5f};
  const Vector3 size = {high.x - low.x, high.y - low.y, high.z - low.z};
  mesh.radius = std::sqrt((size.x * size.x + size.y * size.y) + size.z * size.z) * 0.5f;
  return true;
}

bool Ds2mdReader::readInterleaved(Mesh& mesh) {
  struct Record {
    Vector3 position, normal;
    float u, v;
  };
  uint32_t vertexCount, indexCount;
  file_.skip(4);
  if (!file_.read(vertexCount) || !file_.read(indexCount)) return false;
  file_.skip(1);
  if (file_.remaining() < vertexCount * uint64_t{sizeof(Record)} + indexCount * uint64_t{2}) return false;
  allocateVertices(mesh, vertexCount);
  const bool complete = file_.readRecords(
      vertexCount, sizeof(Record),
      [vertices = mesh.vertices.get(), normals = mesh.normals.get()](const std::byte* bytes, uint64_t i) {
        Record record;
        std::memcpy(&record, bytes, sizeof record);
        const auto& [x, y, z] = record.position;
        vertices[i] = {fromHundredths(x), fromHundredths(y), fromHundredths(z), record.u, record.v};
        normals[i] = record.normal;
      });
  allocateIndices(mesh, indexCount);
  if (!complete || !readIndices(file_, mesh)) return false;
  computeBounds(mesh);
  return true;
}

/// Goes to the record whose texts hold the next "note": back from there to a run of zero bytes, which ends
/// right before the record's first length. The run may lie within the record before, which is then read again
/// in part; at the file's start the way back ends.
bool Ds2mdReader::findNextRecord() {
  const auto note = findBytes(file_, file_.position(), "note");
  if (!note) return false;
  BackwardView bytes(file_);
  const auto isZero = [&](uint64_t x, uint64_t back) { return x >= back && bytes[x - back] == '\0'; };
  uint64_t x = *note;
  for (int zeros = 0; x > 0; --x) {
    if (isZero(x, 0)) zeros = isZero(x, 2) || isZero(x, 3) || isZero(x, 4) ? 4 : zeros + 1;
    if (zeros >= 3) {
      --x;
      break;
    }
  }
  file_.seek(x);
  return true;
}

/// A text of this format: a 16-bit length, then its bytes.
bool Ds2mdReader::readText(std::string& text) {
  uint16_t length;
  if (!file_.read(length) || file_.remaining() < length) return false;
  text.resize(length);
  return file_.read(text.data(), length);
}

bool Ds2mdReader::skipTexts(int count) {
  uint16_t length;
  for (int i = 0; i < count; ++i) {
    if (!file_.read(length)) return false;
    file_.skip(length);
  }
  return true;
}

}  // namespace

void readDs2md(ByteSource& file, const LoadContext&, Model& model) {
  Ds2mdReader(file, model).readFile();
}

}  // namespace facet
