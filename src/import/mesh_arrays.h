#pragma once

#include "model/model.h"
#include "platform/byte_source.h"

// Parts of a mesh as several formats store them, read into arrays that are already allocated. False when the
// file does not hold them.

namespace facet {

/// vertexCount times x, y, z, in hundredths of a model unit.
bool readScaledPositions(ByteSource& file, Mesh& mesh);

/// vertexCount times x, y, z.
bool readNormals(ByteSource& file, Mesh& mesh);

/// vertexCount times u, v.
bool readTextureCoordinates(ByteSource& file, Mesh& mesh);

/// indexCount 16-bit indices.
bool readIndices(ByteSource& file, Mesh& mesh);

/// For formats without normals: finishing sets those of triangles, the others stay 0, 0, 0.
void clearNormals(Mesh& mesh);

/// A length in hundredths of a model unit, in model units.
inline float fromHundredths(float value) {
  return value / 100.0f;
}

}  // namespace facet
