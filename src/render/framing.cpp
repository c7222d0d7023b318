#include "render/framing.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "render/camera.h"
#include "render/scenery.h"

namespace facet {

namespace {

template <class Use>
void forEachPosition(const Model& model, Use use) {
  constexpr float limit = 1e15f;
  const auto counts = [&](float value) { return std::fabs(value) <= limit; };
  for (const Mesh& mesh : model.meshes)
    for (uint32_t i = 0; i < mesh.vertexCount; ++i)
      if (const Vertex& v = mesh.vertices[i]; counts(v.x) && counts(v.y) && counts(v.z)) use(v);
}

}  // namespace

Sphere boundingSphere(const Model& model) {
  constexpr float far = std::numeric_limits<float>::max();
  Vector3 low{far, far, far}, high{-far, -far, -far};
  forEachPosition(model, [&](const Vertex& v) {
    low = {std::min(low.x, v.x), std::min(low.y, v.y), std::min(low.z, v.z)};
    high = {std::max(high.x, v.x), std::max(high.y, v.y), std::max(high.z, v.z)};
  });
  if (low.x > high.x) return {};
  Sphere sphere;
  sphere.center = {(low.x + high.x) / 2, (low.y + high.y) / 2, (low.z + high.z) / 2};
  float square = 0;
  forEachPosition(model, [&](const Vertex& v) {
    const float x = v.x - sphere.center.x, y = v.y - sphere.center.y, z = v.z - sphere.center.z;
    square = std::max(square, x * x + y * y + z * z);
  });
  if (square > 0) sphere.radius = std::sqrt(square);
  return sphere;
}

void frameSphere(ModelView& view, const Sphere& sphere) {
  constexpr float margin = 1.05f;
  const float vertical = std::tan(view.fovDegrees * radiansPerDegree / 2);
  const float narrowest = std::atan(vertical * std::min(viewAspect(view), 1.0f));
  const float distance = margin * sphere.radius / std::sin(narrowest);
  const Vector3 forward = cameraAxes(view.yaw, view.pitch).forward;
  view.eyePosition = {sphere.center.x - distance * forward.x, sphere.center.y - distance * forward.y,
                      sphere.center.z - distance * forward.z};

  // As deep as the window's view where that is enough; beyond, planes and sky grow with the model.
  const float skyScale = std::max(1.0f, margin * (distance + sphere.radius) / 200.0f);
  buildSkyBox(view, {0, 0, 0}, 400 * skyScale, 200 * skyScale, 400 * skyScale);
  const float nearest = std::min((distance - sphere.radius) / 2, std::max(nearPlane, distance / 500));
  setProjection(view, nearest, farPlane * skyScale);
}

}  // namespace facet
