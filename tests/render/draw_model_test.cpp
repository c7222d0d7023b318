#include "render/draw_model.h"

#include <gmock/gmock.h>

#include "render/recorded_view.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Values = std::vector<double>;

constexpr double alphaTest = 15, source = 19, destination = 20, cull = 22, reference = 24, blend = 27,
                 lighting = 137;

/// One mesh for each material; mesh n has n + 1 triangles, which tells its draw call.
struct DrawnMeshes {
  explicit DrawnMeshes(const std::vector<uint8_t>& renderFlags) {
    ModelBuilder builder;
    for (size_t i = 0; i < renderFlags.size(); ++i)
      builder.material("m" + std::to_string(i))
          .mesh(static_cast<uint32_t>(i), {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}},
                std::vector<uint16_t>(3 * (i + 1)));
    recorded.show(builder.build());
    recorded.view.renderMode = renderTextured;
    recorded.frame();
    for (size_t i = 0; i < renderFlags.size(); ++i) {
      Material& material = model().materials[i];
      material.renderFlags = renderFlags[i];
      material.hasTexture = 1;
      recorded.device().CreateTexture(1, 1, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &material.texture);
    }
  }

  Model& model() { return *recorded.view.model; }

  std::vector<DeviceCall> draw(uint8_t renderMode, uint8_t lightMode) {
    recorded.device().calls.clear();
    drawModel(model(), renderMode, lightMode, recorded.device());
    return recorded.device().calls;
  }

  /// The numbers of the meshes in the order they are drawn in.
  std::vector<int> order(uint8_t renderMode, uint8_t lightMode) {
    std::vector<int> meshes;
    for (const Values& draw : valuesOf(draw(renderMode, lightMode), "DrawIndexedPrimitive"))
      meshes.push_back(static_cast<int>(draw[5]) - 1);
    return meshes;
  }

  RecordedView recorded;
};

TEST(DrawModel, SetsUpEachMode) {
  DrawnMeshes meshes({0});
  EXPECT_THAT(valuesOf(meshes.draw(renderWireframe, 1), "SetRenderState"),
              ElementsAre(Values{cull, 1}, Values{8, 2}));
  EXPECT_THAT(meshes.recorded.device().callsOf("SetStreamSource")[0].values, ElementsAre(0, 0, 16));
  EXPECT_THAT(valuesOf(meshes.draw(renderLit, 0), "SetRenderState"),
              ElementsAre(Values{cull, 3}, Values{8, 3}));
  EXPECT_THAT(valuesOf(meshes.draw(renderLit, 1), "SetRenderState"),
              ElementsAre(Values{lighting, 1}, Values{cull, 3}, Values{8, 3}, Values{lighting, 0}));
  EXPECT_THAT(meshes.recorded.device().callsOf("SetFVF")[0].values, ElementsAre(0x52));
  const auto calls = meshes.draw(renderTextured, 2);
  EXPECT_THAT(
      valuesOf(calls, "SetRenderState"),
      ElementsAre(Values{lighting, 1}, Values{cull, 3}, Values{8, 3}, Values{cull, 1}, Values{lighting, 0}));
  EXPECT_THAT(valuesOf(calls, "DrawIndexedPrimitive"), ElementsAre(Values{4, 0, 0, 3, 0, 1}));
  EXPECT_EQ(calls[calls.size() - 2], (DeviceCall{"SetTexture", {0}, nullptr}));
  EXPECT_THAT(meshes.draw(3, 1), IsEmpty());
}

TEST(DrawModel, DrawsPlainMeshesFirstAndLightOnesOnlyInTheLight) {
  DrawnMeshes meshes({1, 0, 14, 8, 2});
  EXPECT_THAT(meshes.order(renderTextured, 1), ElementsAre(1, 3, 0, 2, 4));
  EXPECT_THAT(meshes.order(renderTextured, 0), ElementsAre(1, 3, 0, 4));
  EXPECT_THAT(meshes.order(renderLit, 0), ElementsAre(0, 1, 2, 3, 4));
}

TEST(DrawModel, LeavesOutWhatHasNothingToDraw) {
  DrawnMeshes meshes({0, 0, 1, 0, 1, 0});
  meshes.model().meshes[0].visibility = 0;
  meshes.model().meshes[1].vertexBuffer.reset();
  meshes.model().materials[2].hasTexture = 0;
  meshes.model().materials[3].hasTexture = 0;
  meshes.model().meshes[4].visibility = 2;
  meshes.model().meshes[5].indexBuffer.reset();
  EXPECT_THAT(meshes.order(renderTextured, 1), ElementsAre(4));
  EXPECT_THAT(meshes.order(renderWireframe, 1), ElementsAre(2, 3, 4));
}

TEST(DrawModel, SwitchesTheStatesOfAMaterialForItsMeshAlone) {
  struct Case {
    uint8_t flags;
    std::vector<Values> before, after;
  };
  const Case cases[] = {
      {1, {{alphaTest, 1}, {reference, 128}}, {{lighting, 1}, {alphaTest, 0}}},
      {2, {{reference, 0}, {source, 5}, {destination, 6}, {blend, 1}}, {{lighting, 1}, {blend, 0}}},
      {3,
       {{alphaTest, 1}, {reference, 0}, {source, 5}, {destination, 6}, {blend, 1}},
       {{lighting, 1}, {blend, 0}, {alphaTest, 0}}},
      {4,
       {{reference, 0}, {lighting, 0}, {source, 2}, {destination, 6}, {blend, 1}},
       {{lighting, 1}, {blend, 0}}},
      {14,
       {{reference, 0}, {lighting, 0}, {source, 2}, {destination, 5}, {blend, 1}},
       {{lighting, 1}, {blend, 0}}},
      {9, {{alphaTest, 1}, {reference, 0}}, {{lighting, 1}, {alphaTest, 0}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(int{c.flags});
    DrawnMeshes meshes({c.flags});
    std::vector<Values> before, after;
    bool drawn = false;
    for (const DeviceCall& call : meshes.draw(renderTextured, lightHead)) {
      if (call.name == "DrawIndexedPrimitive") drawn = true;
      if (call.name == "SetRenderState") (drawn ? after : before).push_back(call.values);
    }
    EXPECT_EQ(std::vector<Values>(before.begin() + 4, before.end()), c.before);
    EXPECT_EQ(std::vector<Values>(after.begin(), after.end() - 1), c.after);
  }
}

}  // namespace
}  // namespace facet
