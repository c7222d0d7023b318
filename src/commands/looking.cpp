#include "commands/looking.h"

#include <algorithm>
#include <cmath>

#include "platform/text.h"
#include "render/camera.h"
#include "render/closer_look.h"
#include "render/navigation.h"

namespace facet {

namespace {

/// "12.5", with up to six digits that count.
std::string number(float value) {
  return formatted("%.6g", value);
}

std::string counted(size_t count, const char* one, const char* many) {
  return groupedNumber(count) + ' ' + (count == 1 ? one : many);
}

void measureTo(Viewer& viewer, const Vector3& position) {
  Scene& scene = viewer.view.scene;
  if (scene.measured.size() == 2) scene.measured.clear();
  scene.measured.push_back(position);
  const auto distance = measuredDistance(scene);
  viewer.note = distance ? "Distance: " + number(*distance) : "Distance: click the other end";
}

}  // namespace

void clickAt(Viewer& viewer, Point point) {
  ModelView& view = viewer.view;
  const auto hit = pick(view, point);
  if (view.settings.measuring) {
    if (hit) measureTo(viewer, hit->position);
    return;
  }
  selectMeshes(viewer, hit ? std::vector{hit->mesh} : std::vector<uint32_t>());
}

void setPivotAt(Viewer& viewer, Point point) {
  const auto hit = pick(viewer.view, point);
  if (!hit) return;
  viewer.view.camera.pivot = hit->position;
  viewer.note = "Turning about " + number(hit->position.x) + ", " + number(hit->position.y) + ", " +
                number(hit->position.z);
}

void selectMeshes(Viewer& viewer, std::vector<uint32_t> meshes) {
  Scene& scene = viewer.view.scene;
  const size_t count = scene.model ? scene.model->meshes.size() : 0;
  std::erase_if(meshes, [&](uint32_t mesh) { return mesh >= count; });
  std::ranges::sort(meshes);
  meshes.erase(std::unique(meshes.begin(), meshes.end()), meshes.end());
  scene.selected = std::move(meshes);
  viewer.note.clear();
  if (scene.selected.size() > 1) viewer.note = counted(scene.selected.size(), "mesh", "meshes") + " selected";
  if (scene.selected.size() != 1) return;
  const Mesh& mesh = scene.model->meshes[scene.selected.front()];
  const std::string& texture = scene.model->materials[mesh.materialIndex].textureName;
  viewer.note = "Mesh " + std::to_string(scene.selected.front()) + ": " + texture + ", " +
                counted(mesh.indexCount / 3, "triangle", "triangles");
}

void setHidden(Viewer& viewer, std::span<const uint32_t> meshes, bool hidden) {
  Scene& scene = viewer.view.scene;
  if (!scene.model) return;
  for (const uint32_t mesh : meshes)
    if (mesh < scene.model->meshes.size()) scene.model->meshes[mesh].hidden = hidden;
  if (hidden) std::erase_if(scene.selected, [&](uint32_t mesh) { return scene.model->meshes[mesh].hidden; });
  visibleMeshesChanged(scene);
  const uint32_t count = hiddenCount(viewer);
  viewer.note =
      count == 0 ? "All meshes shown" : formatted("%u of %u meshes hidden", count, scene.model->meshCount);
}

void showOnly(Viewer& viewer, std::span<const uint32_t> meshes) {
  if (!viewer.view.scene.model || meshes.empty()) return;
  const std::vector<uint32_t> shown(meshes.begin(), meshes.end());  // may be the selection itself
  for (Mesh& mesh : viewer.view.scene.model->meshes) mesh.hidden = true;
  setHidden(viewer, shown, false);
  std::erase_if(viewer.view.scene.selected,
                [&](uint32_t mesh) { return viewer.view.scene.model->meshes[mesh].hidden; });
}

void showAll(Viewer& viewer) {
  if (!viewer.view.scene.model) return;
  for (Mesh& mesh : viewer.view.scene.model->meshes) mesh.hidden = false;
  setHidden(viewer, {}, false);
}

uint32_t hiddenCount(const Viewer& viewer) {
  if (!viewer.view.scene.model) return 0;
  return static_cast<uint32_t>(std::ranges::count(viewer.view.scene.model->meshes, true, &Mesh::hidden));
}

namespace {

std::string onOff(const char* what, bool on) {
  return std::string(what) + (on ? ": on" : ": off");
}

/// What silent commands left, by their numbers.
struct StateText {
  uint32_t id;
  std::string (*text)(const Viewer& viewer);
};
const StateText stateTexts[] = {
    {ID_EDIT_GRID, [](const Viewer& v) { return onOff("Environment", v.view.settings.envMode); }},
    {ID_EDIT_LIGHT,
     [](const Viewer& v) { return std::string("Light: ") + lightModeNames[v.view.settings.lightMode]; }},
    {ID_EDIT_DRAWING_MODE,
     [](const Viewer& v) { return std::string("Drawing: ") + renderModeNames[v.view.settings.renderMode]; }},
    {ID_EDIT_FOV, [](const Viewer& v) { return "Field of view: " + number(v.view.camera.fovDegrees); }},
    {ID_VIEW_LATER, [](const Viewer& v) { return "Time: " + number(v.view.settings.envTime); }},
    {ID_VIEW_EARLIER, [](const Viewer& v) { return "Time: " + number(v.view.settings.envTime); }},
    {ID_VIEW_SLOWER, [](const Viewer& v) { return "Move speed: " + number(v.view.camera.moveSpeed); }},
    {ID_VIEW_FASTER, [](const Viewer& v) { return "Move speed: " + number(v.view.camera.moveSpeed); }},
    {ID_EDIT_DISTANCE_CUT,
     [](const Viewer& v) { return onOff("Distance cut", !v.view.settings.noDistanceCut); }},
    {ID_EDIT_QUALITY, [](const Viewer& v) { return onOff("Smooth shading", v.view.settings.smoothShading); }},
    {ID_EDIT_BACKGROUND,
     [](const Viewer& v) { return formatted("Background: %u", v.view.settings.backgroundIndex); }},
    {ID_EDIT_GAMMA, [](const Viewer& v) { return "Gamma: " + number(v.view.settings.gamma); }},
    {ID_VIEW_UNTEXTURED,
     [](const Viewer& v) { return onOff("Untextured meshes", v.view.settings.showUntextured); }},
    {ID_VIEW_SEARCH_NEAR, [](const Viewer& v) { return onOff("Search near the model", v.searchNear); }},
    {ID_VIEW_ORBIT,
     [](const Viewer& v) { return std::string("Navigation: ") + (v.orbits ? "orbit" : "classic"); }},
    {ID_FILE_WATCH, [](const Viewer& v) { return onOff("Watching the file", v.watchesFile); }},
    {ID_VIEW_CLASSIC, [](const Viewer&) { return std::string("Navigation: classic"); }},
    {ID_VIEW_ORTHOGRAPHIC,
     [](const Viewer& v) { return onOff("Parallel projection", v.view.camera.orthoHeight > 0); }},
    {ID_VIEW_WIRES, [](const Viewer& v) { return onOff("Wires", v.view.settings.wires); }},
    {ID_VIEW_BOXES, [](const Viewer& v) { return onOff("Bounding boxes", v.view.settings.boxes); }},
    {ID_VIEW_NORMALS, [](const Viewer& v) { return onOff("Vertex normals", v.view.settings.normals); }},
    {ID_VIEW_UV_CHECKER, [](const Viewer& v) { return onOff("UV checker", v.view.settings.uvChecker); }},
    {ID_VIEW_AXES, [](const Viewer& v) { return onOff("Axes in the corner", v.view.settings.gizmo); }},
    {ID_VIEW_DISTANCE,
     [](const Viewer& v) {
       return std::string(v.view.settings.measuring ? "Distance: click two places on the model"
                                                    : "Distance: off");
     }},
    {ID_VIEW_KEEP_CAMERA, [](const Viewer& v) { return onOff("Keep the camera", v.keepCamera); }},
};

}  // namespace

std::string stateText(const Viewer& viewer, uint32_t id) {
  const auto found = std::ranges::find(stateTexts, id, &StateText::id);
  return found == std::end(stateTexts) || id == 0 ? "" : found->text(viewer);
}

}  // namespace facet
