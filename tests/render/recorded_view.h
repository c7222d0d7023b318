#pragma once

#include <cstring>
#include <utility>
#include <vector>

#include "render/frame.h"
#include "render/render_system.h"
#include "support/model_builder.h"
#include "support/recording_desktop.h"
#include "support/recording_device.h"

namespace facet {

/// A view that was set up on a recording device, whose calls start empty.
struct RecordedView {
  RecordedView() {
    view.window.handle = this;
    created = createRenderSystem(view, platform());
    direct3d->device->calls.clear();
  }

  RenderPlatform platform() {
    return {[this](uint32_t) { return direct3d; }, [](const auto&, const auto&) { return std::nullopt; }};
  }

  RecordingDevice& device() { return *direct3d->device; }

  /// Gives the view a model, with the index buffers of a load.
  void show(Model model) {
    for (Mesh& mesh : model.meshes)
      device().CreateIndexBuffer(mesh.indexCount * 2, D3DUSAGE_WRITEONLY, D3DFMT_INDEX16, D3DPOOL_MANAGED,
                                 &mesh.indexBuffer);
    view.model = std::make_unique<Model>(std::move(model));
    device().calls.clear();
  }

  /// The calls of one frame.
  std::vector<DeviceCall> frame() {
    device().calls.clear();
    renderFrame(view);
    return device().calls;
  }

  RecordingDesktop desktop;
  std::shared_ptr<RecordingDirect3D> direct3d = std::make_shared<RecordingDirect3D>();
  ModelView view;
  bool created = false;
};

/// The values of the calls of one name, in order.
inline std::vector<std::vector<double>> valuesOf(const std::vector<DeviceCall>& calls, const char* name) {
  std::vector<std::vector<double>> values;
  for (const DeviceCall& call : calls)
    if (call.name == name) values.push_back(call.values);
  return values;
}

/// What a vertex buffer holds.
template <class V>
std::vector<V> contents(IDirect3DVertexBuffer9& buffer, size_t count) {
  std::vector<V> vertices(count);
  void* memory = nullptr;
  buffer.Lock(0, static_cast<uint32_t>(count * sizeof(V)), &memory, 0);
  std::memcpy(static_cast<void*>(vertices.data()), memory, count * sizeof(V));
  buffer.Unlock();
  return vertices;
}

}  // namespace facet
