#include <algorithm>
#include <iterator>

#include "import/readers.h"
#include "model/model.h"

namespace facet {

namespace {

constexpr Vertex quadVertices[] = {{-1, -1, 0, 0, 1}, {1, -1, 0, 1, 1}, {1, 1, 0, 1, 0}, {-1, 1, 0, 0, 0}};
constexpr uint16_t quadIndices[] = {0, 3, 1, 1, 3, 2};
constexpr size_t extensionLength = 4;

/// A square of side 2, flattened on the shorter side of the picture.
void fillQuad(Mesh& mesh, uint32_t width, uint32_t height) {
  allocateVertices(mesh, std::size(quadVertices));
  std::copy(std::begin(quadVertices), std::end(quadVertices), mesh.vertices.get());
  std::fill_n(mesh.normals.get(), mesh.vertexCount, Vector3{0, 0, -1});
  allocateIndices(mesh, std::size(quadIndices));
  std::copy(std::begin(quadIndices), std::end(quadIndices), mesh.indices.get());

  const auto w = static_cast<float>(width), h = static_cast<float>(height);
  for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
    if (height < width) mesh.vertices[i].y *= h / w;
    if (width < height) mesh.vertices[i].x *= w / h;
  }
  computeBounds(mesh);
}

}  // namespace

void readDdsPreview(ByteSource& file, const LoadContext& context, Model& model) {
  struct {
    uint32_t unused[3];
    uint32_t height, width;
  } header;
  file.seek(0);
  if (!file.read(header))
    throw LoadError("too short for a DDS picture: " + std::to_string(file.size()) +
                    " bytes, expected at least " + std::to_string(sizeof header));
  fillQuad(growArray(model.meshes, model.meshCount), header.width, header.height);
  Material& material = growArray(model.materials, model.materialCount);
  material.textureName =
      context.path.substr(0, context.path.size() - std::min(context.path.size(), extensionLength));
  material.shaderName = "default";
  ++model.meshCount;
  ++model.materialCount;
}

}  // namespace facet
