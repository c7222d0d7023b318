#pragma once

#include "import/readers.h"
#include "model/model.h"

namespace facet {

/// Adds up every value of the model's arrays, so that the sanitizers see each one read.
inline float sumOfArrays(const Model& model) {
  float sum = 0;
  for (const Mesh& mesh : model.meshes) {
    for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
      const Vertex& v = mesh.vertices[i];
      const Vector3& n = mesh.normals[i];
      sum += v.x + v.y + v.z + v.u + v.v + n.x + n.y + n.z;
    }
    for (uint32_t i = 0; i < mesh.indexCount; ++i) sum += mesh.indices[i];
  }
  return sum;
}

/// Runs one reader over the bytes and finishes what it gives; false when the load ends without a model.
inline bool readFuzzed(ReadModel* read, uint32_t modelType, std::span<const std::byte> bytes, Model& model) {
  static const std::string path = "fuzzed";
  FileFinder files;
  model.modelType = modelType;
  try {
    read(*openMemory(bytes), LoadContext{path, files}, model);
  } catch (const LoadError&) {
    return false;
  }
  model.meshes.resize(model.meshCount);
  model.materials.resize(model.materialCount);
  finishModel(model);
  return true;
}

/// Where sums go, so that they are not optimised away.
inline volatile float sumSink;

inline void fuzzReader(ReadModel* read, uint32_t modelType, const uint8_t* data, size_t size) {
  Model model;
  if (readFuzzed(read, modelType, {reinterpret_cast<const std::byte*>(data), size}, model))
    sumSink = sumOfArrays(model);
}

}  // namespace facet
