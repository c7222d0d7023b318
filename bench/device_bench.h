#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace facet {

/// Measures frames of the reference device, on one thread and on all, and of the OpenGL device, reading the
/// picture included, and prints a Markdown table for each scene.
void benchFrames(std::ostream& out);

/// Draws every model below `folder` on both devices, in all modes and filters, and prints how far the
/// pictures are apart at most. `textures` are base paths, as `facetbench --textures` takes them. Throws
/// std::runtime_error when there is no OpenGL.
void compareDevices(std::ostream& out, const std::string& folder, const std::vector<std::string>& textures);

}  // namespace facet
