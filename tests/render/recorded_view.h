#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "render/render_system.h"
#include "render/view.h"
#include "support/model_builder.h"
#include "support/recording_desktop.h"
#include "support/recording_device.h"

namespace facet {

/// A view on a recording device that was not set up yet.
struct NewView {
  NewView() { view.window.handle = this; }
  bool run() { return createRenderSystem(view, platform); }
  RecordingDevice& device() { return *direct3d->device; }

  RecordingDesktop desktop;
  std::shared_ptr<RecordingDirect3D> direct3d = std::make_shared<RecordingDirect3D>();
  ModelView view;
  RenderPlatform platform{[this](uint32_t version) { return version == 32 ? direct3d : nullptr; },
                          [](const auto&, const auto&) { return std::nullopt; }};
};

/// A view that was set up on one.
struct RecordedView : NewView {
  RecordedView() { run(); }

  /// Gives the view a model, with the index buffers of a load.
  void show(Model model) {
    for (Mesh& mesh : model.meshes)
      mesh.indexBuffer =
          device().CreateIndexBuffer({mesh.indices.get(), mesh.indices.get() + mesh.indexCount});
    view.scene.model = std::make_unique<Model>(std::move(model));
    view.scene.buffersBuilt = false;
  }

  /// Gives the material a texture.
  void dress(Material& material) {
    material.hasTexture = 1;
    material.texture = device().CreateTexture(D3DFMT_A8R8G8B8, {});
  }

  /// The draws of one frame.
  const std::vector<RecordedDraw>& frame() {
    renderFrame(view);
    return device().draws;
  }

  /// Those of them that draw meshes, by the numbers of these.
  std::vector<size_t> meshesDrawn() {
    std::vector<size_t> numbers;
    for (const RecordedDraw& draw : frame())
      for (size_t i = 0; i < view.scene.model->meshes.size(); ++i)
        if (draw.indices && draw.indices == view.scene.model->meshes[i].indexBuffer) numbers.push_back(i);
    return numbers;
  }
};

}  // namespace facet
