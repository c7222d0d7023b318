#pragma once

#include <glm/vec3.hpp>

#include "model/model.h"

namespace facet {

inline glm::vec3 toGlm(const Vector3& v) {
  return {v.x, v.y, v.z};
}
inline glm::vec3 toGlm(const Vertex& v) {
  return {v.x, v.y, v.z};
}
inline Vector3 fromGlm(const glm::vec3& v) {
  return {v.x, v.y, v.z};
}

}  // namespace facet
