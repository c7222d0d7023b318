#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "commands/commands.h"

// Looking at a model, as commands and the mouse do it: navigation, what is selected and hidden, distances,
// and the camera as text. None of them draws a frame.

namespace facet {

/// What a click without a drag does: sets the ends of a distance while measuring, otherwise selects the mesh
/// under the point, or nothing. Tells it in the viewer's note.
void clickAt(Viewer& viewer, Point point);

/// Turns about what is under the point from now on; where there is nothing, nothing changes.
void setPivotAt(Viewer& viewer, Point point);

/// Selects these meshes and no others; numbers beyond the model's meshes are left out.
void selectMeshes(Viewer& viewer, std::vector<uint32_t> meshes);

void setHidden(Viewer& viewer, std::span<const uint32_t> meshes, bool hidden);
void showOnly(Viewer& viewer, std::span<const uint32_t> meshes);
void showAll(Viewer& viewer);

/// How many meshes of the shown model are hidden.
uint32_t hiddenCount(const Viewer& viewer);

/// What a command left: "Light: head"; empty for one that says so itself, or changes nothing to be told.
std::string stateText(const Viewer& viewer, uint32_t id);

/// The view's camera and look as options of `facetbench render`, so that it draws the same picture of the
/// same model.
std::string cameraOptions(const ModelView& view);

/// Takes the camera (not the look) from options as cameraOptions() gives them; other words are passed over.
/// The reason where there is no camera in the text, or a number is wrong; the view is then as it was.
std::string applyCameraOptions(ModelView& view, std::string_view text);

}  // namespace facet
