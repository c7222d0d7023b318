#include "render/draw_model.h"

#include <gmock/gmock.h>

#include "render/recorded_view.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// One textured mesh for each material of these render flags, without grid and sky.
struct DrawnMeshes : RecordedView {
  explicit DrawnMeshes(const std::vector<uint8_t>& renderFlags) {
    ModelBuilder builder;
    for (size_t i = 0; i < renderFlags.size(); ++i)
      builder.material("m" + std::to_string(i)).grid(static_cast<uint32_t>(i), 1);
    show(builder.build());
    for (size_t i = 0; i < renderFlags.size(); ++i) {
      Material& material = view.model->materials[i];
      material.renderFlags = renderFlags[i];
      dress(material);
    }
    view.model->materials.resize(renderFlags.size());
    view.envMode = true;
  }

  std::vector<size_t> order(uint8_t renderMode, uint8_t lightMode) {
    view.renderMode = renderMode;
    view.lightMode = lightMode;
    return meshesDrawn();
  }
};

TEST(DrawModel, DrawsEachModeInItsOwnWay) {
  struct {
    uint8_t renderMode, lightMode;
    uint32_t fvf;
    D3DFILLMODE fill;
    D3DCULL cull;
    bool lighting;
  } const cases[] = {
      {renderWireframe, lightHead, 0x42, D3DFILL_WIREFRAME, D3DCULL_NONE, false},
      {renderLit, lightOff, 0x52, D3DFILL_SOLID, D3DCULL_CCW, false},
      {renderLit, lightHead, 0x52, D3DFILL_SOLID, D3DCULL_CCW, true},
      {renderTextured, lightOff, 0x112, D3DFILL_SOLID, D3DCULL_CCW, false},
      {renderTextured, lightSun, 0x112, D3DFILL_SOLID, D3DCULL_CCW, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(int{c.renderMode});
    DrawnMeshes meshes({0});
    meshes.view.renderMode = c.renderMode;
    meshes.view.lightMode = c.lightMode;
    const auto& draws = meshes.frame();
    ASSERT_EQ(draws.size(), 1u);
    EXPECT_EQ(draws[0].vertices->fvf, c.fvf);
    EXPECT_EQ(draws[0].state.fillMode, c.fill);
    EXPECT_EQ(draws[0].state.cullMode, c.cull);
    EXPECT_EQ(draws[0].state.lighting, c.lighting);
    const bool textured = c.renderMode == renderTextured;
    EXPECT_EQ(draws[0].state.texture, textured ? meshes.view.model->materials[0].texture : nullptr);
    const DeviceState& after = meshes.device().state;
    EXPECT_FALSE(after.lighting || after.texture) << "between frames";
  }
  DrawnMeshes meshes({0});
  EXPECT_THAT(meshes.order(3, 1), IsEmpty());
}

TEST(DrawModel, DrawsPlainMeshesFirstAndLightOnesOnlyInTheLight) {
  DrawnMeshes meshes({1, 0, 14, 8, 2});
  EXPECT_THAT(meshes.order(renderTextured, 1), ElementsAre(1, 3, 0, 2, 4));
  EXPECT_THAT(meshes.order(renderTextured, 0), ElementsAre(1, 3, 0, 4));
  EXPECT_THAT(meshes.order(renderLit, 0), ElementsAre(0, 1, 2, 3, 4));
}

TEST(DrawModel, LeavesOutWhatHasNothingToDraw) {
  DrawnMeshes meshes({0, 0, 1, 0, 1, 0});
  meshes.frame();  // builds the buffers
  meshes.view.noDistanceCut = true;
  Model& model = *meshes.view.model;
  model.meshes[1].vertexBuffer.reset();
  model.materials[2].hasTexture = 0;
  model.materials[3].hasTexture = 0;
  model.meshes[4].visibility = 2;
  model.meshes[5].indexBuffer.reset();
  EXPECT_THAT(meshes.order(renderTextured, 1), ElementsAre(0, 4));
  EXPECT_THAT(meshes.order(renderWireframe, 1), ElementsAre(0, 2, 3, 4));
}

TEST(DrawModel, GivesAMaterialsStateToItsMeshAlone) {
  struct {
    uint8_t flags;
    bool alphaTest;
    uint32_t reference;
    bool blend;
    D3DBLEND source, destination;
    bool lighting;
  } const cases[] = {
      {1, true, 128, false, D3DBLEND_ONE, D3DBLEND_ZERO, true},
      {2, false, 0, true, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA, true},
      {3, true, 0, true, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA, true},
      {4, false, 0, true, D3DBLEND_ONE, D3DBLEND_INVSRCALPHA, false},
      {14, false, 0, true, D3DBLEND_ONE, D3DBLEND_SRCALPHA, false},
      {9, true, 0, false, D3DBLEND_ONE, D3DBLEND_ZERO, true},
  };
  for (const auto& first : cases) {  // whatever is drawn before
    for (const auto& c : cases) {
      SCOPED_TRACE(testing::Message() << int{first.flags} << " then " << int{c.flags});
      DrawnMeshes meshes({first.flags, c.flags});
      EXPECT_THAT(meshes.order(renderTextured, lightHead), ElementsAre(0, 1));
      const DeviceState& state = meshes.device().draws[1].state;
      EXPECT_EQ(state.alphaTestEnable, c.alphaTest);
      EXPECT_EQ(state.alphaRef, c.reference);
      EXPECT_EQ(state.alphaBlendEnable, c.blend);
      EXPECT_EQ(std::pair(state.srcBlend, state.destBlend), std::pair(c.source, c.destination));
      EXPECT_EQ(state.lighting, c.lighting);
      EXPECT_EQ(state.cullMode, D3DCULL_NONE);
      EXPECT_EQ(state.texture, meshes.view.model->materials[1].texture);
    }
  }
}

}  // namespace
}  // namespace facet
