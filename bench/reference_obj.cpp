#include "reference_obj.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace facet {

namespace {

void snap(float& value) {
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%f", value);
  value = std::strcmp(text.data(), "-0.000000") == 0 ? 0.0F : static_cast<float>(std::atof(text.data()));
}

struct HashBytes {
  template <size_t n>
  size_t operator()(const std::array<float, n>& value) const {
    return std::hash<std::string_view>()({reinterpret_cast<const char*>(value.data()), sizeof value});
  }
};

template <size_t n>
struct Lists {
  std::vector<std::array<float, n>> values;
  std::vector<unsigned> places;
};

template <size_t n, class Component>
Lists<n> distinct(uint32_t count, Component component) {
  Lists<n> lists;
  std::unordered_map<std::array<float, n>, unsigned, HashBytes> places;
  for (uint32_t i = 0; i < count; ++i) {
    std::array<float, n> value;
    for (size_t k = 0; k < n; ++k) {
      float& c = component(i, k);
      snap(c);
      value[k] = c;
    }
    const auto [place, isNew] = places.try_emplace(value, static_cast<unsigned>(lists.values.size()));
    if (isNew) lists.values.push_back(value);
    lists.places.push_back(place->second);
  }
  return lists;
}

}  // namespace

void writeReferenceObj(Model& model, const char* fileName, std::FILE* file) {
  const auto materials = ownMaterials(model);
  std::fprintf(file, "# This file uses meters as units for non-parametric coordinates.\n# materials : %zu\n",
               materials.size());
  for (size_t i = 0; i < materials.size(); ++i) {
    std::fprintf(file, "newmtl material%zu\n Ka 0.5000 0.5000 0.5000\n Kd 1.0000 1.0000 1.0000\n illum 1\n",
                 i);
    const char* name = materials[i].textureName.c_str();
    std::fprintf(file, " map_Ka %s\n map_Kd %s\n\n", name, name);
  }
  std::fprintf(file, "mtllib %s\n# meshes : %u\n", fileName, model.meshCount);
  size_t positionBase = 1, uvBase = 1, normalBase = 1;
  for (uint32_t m = 0; m < model.meshCount; ++m) {
    Mesh& mesh = model.meshes[m];
    const uint32_t count = mesh.vertexCount;
    std::fprintf(file, "g Group%05u\nusemtl material%u\no Mesh%05u\n", mesh.materialIndex, mesh.materialIndex,
                 m);
    const auto positions =
        distinct<3>(count, [&](uint32_t i, size_t k) -> float& { return (&mesh.vertices[i].x)[k]; });
    std::fprintf(file, "# vertices : %zu, was %u\n", positions.values.size(), count);
    for (const auto& v : positions.values) std::fprintf(file, "v %f %f %f\n", v[0], v[1], -v[2]);
    const auto normals =
        distinct<3>(count, [&](uint32_t i, size_t k) -> float& { return (&mesh.normals[i].x)[k]; });
    std::fprintf(file, "# normales : %zu, was %u\n", normals.values.size(), count);
    for (const auto& v : normals.values) std::fprintf(file, "vn %f %f %f\n", v[0], v[1], -v[2]);
    const auto uvs =
        distinct<2>(count, [&](uint32_t i, size_t k) -> float& { return (&mesh.vertices[i].u)[k]; });
    std::fprintf(file, "# uv's : %zu, was %u\n", uvs.values.size(), count);
    for (const auto& v : uvs.values) std::fprintf(file, "vt %f %f\n", v[0], 1.0F - v[1]);
    std::fprintf(file, "# faces : %u\n# indices : %u\n", mesh.indexCount / 3, mesh.indexCount);
    for (uint32_t t = 0; t < mesh.indexCount / 3; ++t) {
      std::fputc('f', file);
      for (const int corner : {0, 2, 1}) {
        const uint16_t i = mesh.indices[t * 3 + corner];
        std::fprintf(file, " %zu/%zu/%zu", positionBase + positions.places[i], uvBase + uvs.places[i],
                     normalBase + normals.places[i]);
      }
      std::fputc('\n', file);
    }
    positionBase += positions.values.size();
    uvBase += uvs.values.size();
    normalBase += normals.values.size();
  }
}

}  // namespace facet
