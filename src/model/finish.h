#pragma once

#include "model/model.h"

namespace facet {

/// Completes a model whose reader is done. Every model: visibility 2 for meshes on "terrain" textures or
/// "water" shaders, the totals (modulo 2^32), an index buffer per mesh where the model has a device and the
/// buffer can be created, which it cannot beyond 4 GiB. Editable objects and 4A models also get bounds and
/// normals, which their formats do not carry.
void finishModel(Model& model);

/// Bounding box, its centre and half its diagonal as radius, from all vertices, used or not. A mesh without
/// vertices stays as it is.
void computeBounds(Mesh& mesh);

/// One face normal per triangle, e1 x e2 times 1 / length, written to its corners; the last triangle of a
/// vertex wins, and a vertex of no triangle keeps what it has. A triangle without area gives 0, 0, 0; one
/// with an index out of range is passed over.
void computeNormals(Mesh& mesh);

}  // namespace facet
