#include "render/navigation.h"

#include <algorithm>
#include <cmath>
#include <glm/glm.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <limits>
#include <mutex>

#include "platform/parallel.h"
#include "render/camera.h"
#include "render/glm_vector.h"
#include "render/scene.h"

namespace facet {

namespace {

/// The directions of the camera, as rows of what they turn to x, y and z.
struct Basis {
  glm::vec3 right, up, forward;
  explicit Basis(const Camera& camera) {
    const CameraAxes axes = cameraAxes(camera.yaw, camera.pitch);
    right = toGlm(axes.right);
    forward = toGlm(axes.forward);
    up = glm::cross(forward, right);
  }
  glm::vec3 inside(const glm::vec3& v) const { return {dot(v, right), dot(v, up), dot(v, forward)}; }
  glm::vec3 outside(const glm::vec3& v) const { return v.x * right + v.y * up + v.z * forward; }
};

template <class Use>
void forEachPosition(const Model& model, std::span<const uint32_t> only, Use use) {
  constexpr float limit = 1e15f;
  const auto counts = [&](float value) { return std::fabs(value) <= limit; };
  const auto visit = [&](const Mesh& mesh) {
    for (uint32_t i = 0; i < mesh.vertexCount; ++i)
      if (const Vertex& v = mesh.vertices[i]; counts(v.x) && counts(v.y) && counts(v.z)) use(v);
  };
  for (const uint32_t mesh : only)
    if (mesh < model.meshes.size()) visit(model.meshes[mesh]);
  if (!only.empty()) return;
  for (const Mesh& mesh : model.meshes)
    if (!mesh.hidden) visit(mesh);
}

constexpr float margin = 1.05f;

float halfTangent(const Camera& camera) {
  return std::tan(camera.fovDegrees * radiansPerDegree / 2);
}

const Sphere& boundsOf(Scene& scene) {
  if (!scene.bounds) scene.bounds = boundingSphere(*scene.model);
  return *scene.bounds;
}

/// As deep as the window's view where that is enough; beyond, planes and sky grow with the model.
void fitPlanes(ModelView& view, const Sphere& sphere) {
  Camera& camera = view.camera;
  const float distance = glm::distance(toGlm(camera.eyePosition), toGlm(sphere.center));
  camera.farZ = farPlane * std::max(1.0f, margin * (distance + sphere.radius) / 200.0f);
  const float outside = std::min((distance - sphere.radius) / 2, std::max(nearPlane, distance / 500));
  camera.nearZ = std::max(outside, std::min(nearPlane, sphere.radius / 1000));
  if (camera.orthoHeight > 0) camera.nearZ = -camera.farZ;  // what lies behind the eye is seen, too
  setProjection(view);
}

/// How far in front of the eye the pivot is, and so how large a pixel is there.
float pivotDepth(const Camera& camera) {
  const float depth = dot(toGlm(camera.pivot) - toGlm(camera.eyePosition),
                          toGlm(cameraAxes(camera.yaw, camera.pitch).forward));
  return std::max(depth, camera.nearZ > 0 ? camera.nearZ : 0);
}

/// World units from the middle of the picture to its upper edge, as deep as the pivot.
float halfHeight(const Camera& camera) {
  return camera.orthoHeight > 0 ? camera.orthoHeight / 2 : pivotDepth(camera) * halfTangent(camera);
}

/// A pitch beyond straight up or down shows the same as one this side of it, from behind.
void levelOut(Camera& camera) {
  camera.pitch = std::remainder(camera.pitch, 360.0f);
  if (std::fabs(camera.pitch) <= 90) return;
  camera.pitch = std::copysign(180.0f, camera.pitch) - camera.pitch;
  camera.yaw += 180;
}

}  // namespace

Sphere boundingSphere(const Model& model, std::span<const uint32_t> only) {
  constexpr float far = std::numeric_limits<float>::max();
  Vector3 low{far, far, far}, high{-far, -far, -far};
  forEachPosition(model, only, [&](const Vertex& v) {
    low = {std::min(low.x, v.x), std::min(low.y, v.y), std::min(low.z, v.z)};
    high = {std::max(high.x, v.x), std::max(high.y, v.y), std::max(high.z, v.z)};
  });
  if (low.x > high.x) return {};
  Sphere sphere;
  sphere.center = {(low.x + high.x) / 2, (low.y + high.y) / 2, (low.z + high.z) / 2};
  float square = 0;
  forEachPosition(model, only, [&](const Vertex& v) {
    const float x = v.x - sphere.center.x, y = v.y - sphere.center.y, z = v.z - sphere.center.z;
    square = std::max(square, x * x + y * y + z * z);
  });
  if (square > 0) sphere.radius = std::sqrt(square);
  return sphere;
}

void frameSphere(ModelView& view, const Sphere& sphere) {
  Camera& camera = view.camera;
  const float narrow = std::min(viewAspect(view), 1.0f);
  const float distance = margin * sphere.radius / std::sin(std::atan(halfTangent(camera) * narrow));
  const Vector3 forward = cameraAxes(camera.yaw, camera.pitch).forward;
  camera.eyePosition = {sphere.center.x - distance * forward.x, sphere.center.y - distance * forward.y,
                        sphere.center.z - distance * forward.z};
  camera.pivot = sphere.center;
  if (camera.orthoHeight > 0) camera.orthoHeight = 2 * margin * sphere.radius / narrow;
  fitPlanes(view, sphere);
}

void frameVisible(ModelView& view) {
  Scene& scene = view.scene;
  if (!scene.model || view.clientWidth == 0 || view.clientHeight == 0) return;
  view.settings.noDistanceCut = true;
  levelOut(view.camera);
  frameSphere(view, scene.selected.empty() ? boundsOf(scene) : boundingSphere(*scene.model, scene.selected));
  fitPlanes(view, boundsOf(scene));  // the rest of the model is not cut off
}

void orbit(ModelView& view, Point drag) {
  constexpr float degreesPerPixel = 0.4f;
  Camera& camera = view.camera;
  levelOut(camera);
  const glm::vec3 pivot = toGlm(camera.pivot);
  const glm::vec3 offset = Basis(camera).inside(toGlm(camera.eyePosition) - pivot);
  camera.yaw = std::remainder(camera.yaw + static_cast<float>(drag.x) * degreesPerPixel, 360.0f);
  camera.pitch = std::clamp(camera.pitch + static_cast<float>(drag.y) * degreesPerPixel, -90.0f, 90.0f);
  camera.eyePosition = fromGlm(pivot + Basis(camera).outside(offset));
  if (view.scene.model) fitPlanes(view, boundsOf(view.scene));
}

void pan(ModelView& view, Point drag) {
  if (view.clientWidth == 0 || view.clientHeight == 0) return;
  Camera& camera = view.camera;
  const float up = 2 * halfHeight(camera), side = up * viewAspect(view);
  const glm::vec3 move =
      Basis(camera).outside({-side * static_cast<float>(drag.x) / static_cast<float>(view.clientWidth),
                             up * static_cast<float>(drag.y) / static_cast<float>(view.clientHeight), 0});
  camera.eyePosition = fromGlm(toGlm(camera.eyePosition) + move);
  camera.pivot = fromGlm(toGlm(camera.pivot) + move);
  if (view.scene.model) fitPlanes(view, boundsOf(view.scene));
}

void zoom(ModelView& view, float notches, Point at) {
  if (view.clientWidth == 0 || view.clientHeight == 0) return;
  Camera& camera = view.camera;
  const float up = halfHeight(camera), side = up * viewAspect(view);
  const float x = 2 * static_cast<float>(at.x) / static_cast<float>(view.clientWidth) - 1;
  const float y = 1 - 2 * static_cast<float>(at.y) / static_cast<float>(view.clientHeight);
  const glm::vec3 eye = toGlm(camera.eyePosition);
  const glm::vec3 target = eye + Basis(camera).outside({x * side, y * up, pivotDepth(camera)});
  const float factor = std::pow(5.0f / 6.0f, notches);
  camera.eyePosition = fromGlm(target + (eye - target) * factor);
  camera.pivot = fromGlm(target + (toGlm(camera.pivot) - target) * factor);
  camera.orthoHeight *= factor;
  if (view.scene.model) fitPlanes(view, boundsOf(view.scene));
}

void lookFrom(ModelView& view, const Side& side) {
  if (!view.scene.model) return;
  view.camera.yaw = side.yaw;
  view.camera.pitch = side.pitch;
  frameVisible(view);
}

void toggleOrthographic(ModelView& view) {
  Camera& camera = view.camera;
  if (camera.orthoHeight > 0) {
    const float distance = camera.orthoHeight / 2 / halfTangent(camera);
    const glm::vec3 back =
        (pivotDepth(camera) - distance) * toGlm(cameraAxes(camera.yaw, camera.pitch).forward);
    camera.eyePosition = fromGlm(toGlm(camera.eyePosition) + back);
    camera.orthoHeight = 0;
    camera.nearZ = nearPlane;
  } else {
    camera.orthoHeight = 2 * halfHeight(camera);
  }
  if (view.scene.model) fitPlanes(view, boundsOf(view.scene));
  setProjection(view);
}

namespace {

glm::dmat4 toGlm(const D3DMATRIX& matrix) {
  return glm::make_mat4(matrix.m[0].data());
}

/// From the model to clip coordinates, as the next frame does it.
glm::dmat4 clipMatrix(const ModelView& view) {
  const Camera& camera = view.camera;
  return toGlm(view.system.p_device->state.projection) *
         toGlm(viewMatrix(camera.eyePosition, camera.yaw, camera.pitch));
}

/// A line from the near clip plane, where `along` is 0, to the far one, where it is 1.
struct Ray {
  glm::vec3 origin, way;
};

/// Whether a mesh is drawn, and which sides of its triangles.
bool isPicked(const ModelView& view, const Mesh& mesh, bool& bothSides) {
  const Material& material = view.scene.model->materials[mesh.materialIndex];
  const bool textured = view.settings.renderMode == renderTextured && !view.settings.uvChecker;
  bothSides = view.settings.renderMode == renderWireframe || (textured && isSpecial(material));
  return isDrawable(mesh) && (!textured || isShownTextured(material, view.settings));
}

/// True where the ray passes through the box of the mesh's vertices before `nearest`.
bool mayHit(const Ray& ray, const Mesh& mesh, float nearest) {
  const Box box = vertexBox(mesh);
  const glm::vec3 to = (toGlm(box.low) - ray.origin) / ray.way,
                  from = (toGlm(box.high) - ray.origin) / ray.way;
  const glm::vec3 in = min(to, from), out = max(to, from);
  // A direction along a face gives NaN there, which no comparison holds for: that face does not count.
  float begin = 0, end = nearest;
  for (int i = 0; i < 3; ++i) {
    if (in[i] > begin) begin = in[i];
    if (out[i] < end) end = out[i];
  }
  return begin <= end * 1.0001f;
}

/// Moeller and Trumbore, "Fast, minimum storage ray/triangle intersection", 1997: where the ray meets the
/// nearest triangle of the mesh before `nearest`, which is what comes back where there is none.
float meet(const Ray& ray, const Mesh& mesh, bool bothSides, float nearest) {
  const auto corner = [&](uint32_t i) { return toGlm(mesh.vertices[mesh.indices[i]]); };
  for (uint32_t i = 0; i + 2 < mesh.indexCount; i += 3) {
    if (std::max({mesh.indices[i], mesh.indices[i + 1], mesh.indices[i + 2]}) >= mesh.vertexCount) continue;
    const glm::vec3 a = corner(i), side1 = corner(i + 1) - a, side2 = corner(i + 2) - a;
    const glm::vec3 p = cross(ray.way, side2);
    const float determinant = dot(side1, p);
    if (bothSides ? determinant == 0 : !(determinant > 0)) continue;
    const glm::vec3 t = ray.origin - a;
    const float u = dot(t, p) / determinant;
    if (!(u >= 0 && u <= 1)) continue;
    const glm::vec3 q = cross(t, side1);
    const float v = dot(ray.way, q) / determinant;
    if (!(v >= 0 && u + v <= 1)) continue;
    const float along = dot(side2, q) / determinant;
    if (along >= 0 && along < nearest) nearest = along;
  }
  return nearest;
}

}  // namespace

std::optional<Hit> pick(const ModelView& view, Point point) {
  if (!view.scene.model || !view.system.p_device || view.clientWidth == 0 || view.clientHeight == 0)
    return {};
  const glm::dmat4 back = inverse(clipMatrix(view));
  const double x = 2 * (point.x + 0.5) / view.clientWidth - 1,
               y = 1 - 2 * (point.y + 0.5) / view.clientHeight;
  const auto at = [&](double depth) {
    const glm::dvec4 place = back * glm::dvec4(x, y, depth, 1);
    return glm::dvec3(place) / place.w;
  };
  const glm::dvec3 near = at(0), far = at(1);
  const Ray ray{glm::vec3(near), glm::vec3(far - near)};
  const std::vector<Mesh>& meshes = view.scene.model->meshes;
  std::mutex mutex;
  Hit nearest{0, {}, std::nextafter(1.0f, 2.0f)};
  parallelFor(
      meshes.size(),
      [&](size_t i) {
        bool bothSides = false;
        if (!isPicked(view, meshes[i], bothSides)) return;
        float limit;
        {
          const std::lock_guard lock(mutex);
          limit = nearest.depth;
        }
        if (!mayHit(ray, meshes[i], limit)) return;
        const float depth = meet(ray, meshes[i], bothSides, limit);
        if (depth >= limit) return;
        const std::lock_guard lock(mutex);
        const auto mesh = static_cast<uint32_t>(i);
        if (depth < nearest.depth || (depth == nearest.depth && mesh < nearest.mesh))
          nearest = {mesh, {}, depth};
      },
      usefulThreads(*view.scene.model));
  if (nearest.depth > 1) return {};
  nearest.position = fromGlm(ray.origin + nearest.depth * ray.way);
  return nearest;
}

std::optional<Point> project(const ModelView& view, const Vector3& position) {
  if (!view.system.p_device) return {};
  const glm::dvec4 clip = clipMatrix(view) * glm::dvec4(position.x, position.y, position.z, 1);
  const glm::dvec3 place = glm::dvec3(clip) / clip.w;
  const auto inside = [](double value, double low) { return value >= low && value <= 1; };
  if (!(clip.w > 0) || !inside(place.z, 0) || !inside(place.x, -1) || !inside(place.y, -1)) return {};
  return Point{static_cast<int32_t>((place.x + 1) / 2 * view.clientWidth),
               static_cast<int32_t>((1 - place.y) / 2 * view.clientHeight)};
}

}  // namespace facet
