#include <condition_variable>
#include <mutex>
#include <optional>
#include <vector>

#include "export/corners.h"
#include "export/mesh_text.h"
#include "export/snap.h"
#include "export/writers.h"

// Wavefront OBJ with its material library in the same file. The z axis is mirrored, and the second and third
// corner of each triangle change places so that faces still look outward.

namespace facet {

namespace {

/// Numbers of entries in the three lists, or the numbers at which lists start.
struct ListNumbers {
  uint64_t positions = 0, textureCoordinates = 0, normals = 0;

  ListNumbers& operator+=(const DistinctLists& lists) {
    positions += lists.positions.values.size();
    textureCoordinates += lists.textureCoordinates.values.size();
    normals += lists.normals.values.size();
    return *this;
  }
};

/// List numbers run through the whole file, while the meshes' lists are made at the same time: whoever takes
/// meshes waits here until all earlier ones have told how many entries theirs have.
class RunningBases {
 public:
  /// Where the lists of mesh `first` start; `lists` are those of the meshes up to `end`. None when an earlier
  /// mesh has failed.
  std::optional<ListNumbers> pass(uint32_t first, uint32_t end, const std::vector<DistinctLists>& lists) {
    std::unique_lock lock(mutex_);
    passed_.wait(lock, [&] { return abandoned_ || nextMesh_ == first; });
    if (abandoned_) return {};
    const ListNumbers start = bases_;
    for (const DistinctLists& own : lists) bases_ += own;
    nextMesh_ = end;
    passed_.notify_all();
    return start;
  }

  /// Some mesh will never pass: nobody waits any longer.
  void abandon() {
    const std::lock_guard lock(mutex_);
    abandoned_ = true;
    passed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable passed_;
  ListNumbers bases_{1, 1, 1};
  uint32_t nextMesh_ = 0;
  bool abandoned_ = false;
};

void putHead(const Model& model, std::string_view fileName, TextBuffer& text) {
  const auto materials = ownMaterials(model);
  text.put("# This file uses meters as units for non-parametric coordinates.\n");
  text.put("# materials : ", materials.size(), '\n');
  for (size_t i = 0; i < materials.size(); ++i) {
    text.put("newmtl material", i, "\n Ka 0.5000 0.5000 0.5000\n Kd 1.0000 1.0000 1.0000\n illum 1\n");
    text.put(" map_Ka ", materials[i].textureName, '\n');
    text.put(" map_Kd ", materials[i].textureName, "\n\n");
  }
  text.put("mtllib ", fileName, '\n');
  text.put("# meshes : ", model.meshCount, '\n');
}

void putFaces(const Mesh& mesh, const DistinctLists& lists, const ListNumbers& bases, TextBuffer& text) {
  const auto putCorner = [&](uint16_t index) {
    text.put(' ', bases.positions + placeOf(lists.positions, index), '/',
             bases.textureCoordinates + placeOf(lists.textureCoordinates, index), '/',
             bases.normals + placeOf(lists.normals, index));
  };
  forTriangles(mesh, 0, printedTriangles(mesh), [&](uint32_t, uint16_t a, uint16_t b, uint16_t c) {
    text.put('f');
    putCorner(a);
    putCorner(c);
    putCorner(b);
    text.put('\n');
  });
}

void putMesh(const Mesh& mesh, uint32_t number, const DistinctLists& lists, const ListNumbers& bases,
             TextBuffer& text) {
  text.put("g Group", Padded{mesh.materialIndex, 5}, "\nusemtl material", mesh.materialIndex, '\n');
  text.put("o Mesh", Padded{number, 5}, '\n');

  text.put("# vertices : ", lists.positions.values.size(), ", was ", mesh.vertexCount, '\n');
  for (const auto& [x, y, z] : lists.positions.values) text.put("v ", x, ' ', y, ' ', -z, '\n');
  text.put("# normales : ", lists.normals.values.size(), ", was ", mesh.vertexCount, '\n');
  for (const auto& [x, y, z] : lists.normals.values) text.put("vn ", x, ' ', y, ' ', -z, '\n');
  text.put("# uv's : ", lists.textureCoordinates.values.size(), ", was ", mesh.vertexCount, '\n');
  for (const auto& [u, v] : lists.textureCoordinates.values) text.put("vt ", u, ' ', 1.0F - v, '\n');

  text.put("# faces : ", printedTriangles(mesh), '\n');
  text.put("# indices : ", mesh.indexCount, '\n');
  putFaces(mesh, lists, bases, text);
}

std::vector<DistinctLists> collectLists(Model& model, uint32_t first, uint32_t end, RunningBases& bases) {
  try {
    std::vector<DistinctLists> lists;
    for (uint32_t m = first; m < end; ++m) lists.push_back(collectDistinct(model.meshes[m]));
    return lists;
  } catch (...) {
    bases.abandon();
    throw;
  }
}

}  // namespace

void exportObj(Model& model, std::string_view fileName, Output& out) {
  TextBuffer head;
  putHead(model, fileName, head);
  out.write(head.view());

  RunningBases runningBases;
  writeMeshTexts(model, out, [&](uint32_t first, uint32_t end, TextBuffer& text) {
    const std::vector<DistinctLists> lists = collectLists(model, first, end, runningBases);
    std::optional<ListNumbers> bases = runningBases.pass(first, end, lists);
    if (!bases) return;
    for (uint32_t m = first; m < end; ++m) {
      putMesh(model.meshes[m], m, lists[m - first], *bases, text);
      *bases += lists[m - first];
    }
  });
}

}  // namespace facet
