#include "render/frame.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <map>

#include "render/camera.h"
#include "render/filtering.h"
#include "render/light.h"
#include "render/recorded_view.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Values = std::vector<double>;

std::vector<std::string> namesOf(const std::vector<DeviceCall>& calls) {
  std::vector<std::string> names;
  for (const DeviceCall& call : calls) names.push_back(call.name);
  return names;
}

std::vector<std::string> textsOf(const ModelView& view) {
  std::vector<std::string> texts;
  for (const OverlayLine& line : view.overlay) texts.push_back(line.text);
  return texts;
}

TEST(Frame, WithoutModelClearsPresentsAndWaitsWithTheMoves) {
  RecordedView recorded;
  recorded.view.moveForward = -3;
  const auto calls = recorded.frame();
  EXPECT_THAT(namesOf(calls), ElementsAre("TestCooperativeLevel", "Clear", "Present"));
  EXPECT_THAT(calls[1].values, ElementsAre(3, double(0xFF7F7F7F), 1, 0));
  EXPECT_EQ(recorded.view.overlay.size(), 1u);
  EXPECT_EQ(recorded.view.moveForward, -3);

  recorded.show(triangleModel());
  recorded.frame();
  EXPECT_EQ(recorded.view.moveForward, 0);
  EXPECT_FLOAT_EQ(recorded.view.eyePosition.z, -7);
}

TEST(Frame, DrawsInOrder) {
  RecordedView recorded;
  recorded.show(triangleModel());
  recorded.frame();
  EXPECT_THAT(namesOf(recorded.frame()),
              ElementsAre("TestCooperativeLevel", "Clear", "SetTransform", "LightEnable", "BeginScene",
                          "SetRenderState", "SetRenderState", "SetFVF", "SetStreamSource", "DrawPrimitive",
                          "SetStreamSource", "DrawPrimitive", "SetRenderState", "SetRenderState", "SetFVF",
                          "SetStreamSource", "SetIndices", "DrawIndexedPrimitive", "EndScene", "Present"));
  const auto& calls = recorded.device().calls;
  EXPECT_THAT(valuesOf(calls, "DrawPrimitive"), ElementsAre(Values{2, 0, 3}, Values{2, 0, 82}));
  const Values noCulling = {D3DRS_CULLMODE, D3DCULL_NONE}, lines = {D3DRS_FILLMODE, D3DFILL_WIREFRAME};
  EXPECT_THAT(valuesOf(calls, "SetRenderState"), ElementsAre(noCulling, lines, noCulling, lines));
  EXPECT_THAT(valuesOf(calls, "SetFVF"), ElementsAre(Values{0x42}, Values{0x42}));
  EXPECT_THAT(valuesOf(calls, "SetStreamSource"),
              ElementsAre(Values{0, 0, 16}, Values{0, 0, 16}, Values{0, 0, 16}));
  const auto sources = recorded.device().callsOf("SetStreamSource");
  EXPECT_EQ(sources[0].object, recorded.view.axesBuffer.get());
  EXPECT_EQ(sources[1].object, recorded.view.gridBuffer.get());
}

TEST(Frame, MovesTheEyeAlongItsAxes) {
  RecordedView recorded;
  recorded.show(triangleModel());
  recorded.view.eyePosition = {0, 0, 0};
  recorded.view.yaw = 90;  // looks along +x, its right is -z
  recorded.view.moveForward = -2;
  recorded.view.moveSide = 3;
  recorded.view.moveUp = 5;
  recorded.frame();
  EXPECT_NEAR(recorded.view.eyePosition.x, 2, 1e-5);
  EXPECT_NEAR(recorded.view.eyePosition.y, -5, 1e-5);
  EXPECT_NEAR(recorded.view.eyePosition.z, 3, 1e-5);
}

TEST(Frame, ShowsItsFiguresOverThePicture) {
  RecordedView recorded;
  int64_t ticks = 0;
  recorded.view.counter = {10'000'000, [&] { return ticks += 3'000'000; }};
  recorded.show(triangleModel());
  recorded.view.envTime = 7;
  recorded.view.pitch = -2.5f;
  recorded.frame();
  EXPECT_THAT(textsOf(recorded.view), ElementsAre("000003.00 FPS, 000333.33 ms",
                                                  "materials 7, meshes 1 ( verts 3, indices 3, tris 1 )",
                                                  "POS: 000000.00 000003.00 -00010.00",
                                                  "ROT: -00002.50 000000.00 000000.00", "ENVTIME: 07:00"));
  std::vector<int> rows;
  for (const OverlayLine& line : recorded.view.overlay) {
    EXPECT_EQ(line.x, 8);
    EXPECT_EQ(line.color, rows.empty() ? 0xFF00FFFF : 0xFFFFFFFF);
    rows.push_back(line.y);
  }
  EXPECT_THAT(rows, ElementsAre(8, 24, 44, 54, 64));

  recorded.view.envMode = true;
  recorded.frame();
  EXPECT_EQ(recorded.view.overlay.size(), 1u);
}

TEST(Frame, SurvivesAClockThatStandsStill) {
  RecordedView recorded;
  recorded.view.counter = {1000, [] { return 5; }};
  recorded.frame();
  EXPECT_THAT(textsOf(recorded.view), ElementsAre("001000.00 FPS, 000001.00 ms"));
}

TEST(Frame, CutsMeshesByTheirDistanceOnTheGround) {
  struct Case {
    const char* name;
    Vector3 center;
    float radius;
    uint8_t before;
    bool noDistanceCut;
    uint8_t after;
  };
  // The eye is at 0, 0, 0 and looks along +z, so distances count from z = 69.3.
  const Case cases[] = {
      {"at the point ahead", {0, 0, 69.3f}, 0, 0, false, 1},
      {"exactly at the limit", {0, 0, 0}, 0, 0, false, 1},
      {"its sphere reaches in", {0, 0, -10}, 10.5f, 1, false, 1},
      {"behind the limit", {0, 0, -1}, 0.5f, 1, false, 0},
      {"beside the limit", {69.5f, 0, 69.3f}, 0, 1, false, 0},
      {"far above", {0, 10000, 69.3f}, 1, 0, false, 1},
      {"without the cut", {0, 0, -5000}, 1, 0, true, 1},
      {"never culled", {0, 0, -5000}, 1, 2, false, 2},
      {"a center that is no number", {NAN, 0, 0}, 1, 1, false, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    RecordedView recorded;
    Model model = triangleModel();
    model.meshes[0].center = c.center;
    model.meshes[0].radius = c.radius;
    model.meshes[0].visibility = c.before;
    recorded.show(std::move(model));
    recorded.view.eyePosition = {0, 0, 0};
    recorded.view.noDistanceCut = c.noDistanceCut;
    recorded.frame();
    EXPECT_EQ(recorded.view.model->meshes[0].visibility, c.after);
    EXPECT_EQ(recorded.device().callsOf("DrawIndexedPrimitive").size(), c.after == 0 ? 0u : 1u);
  }
}

TEST(Frame, DrawsTheSkyAroundTheEye) {
  RecordedView recorded;
  Model model = triangleModel();
  for (uint32_t n = 0; n < skyMaterialCount; ++n)
    recorded.device().CreateTexture(1, 1, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED,
                                    &model.materials[1 + n].texture);
  recorded.show(std::move(model));
  recorded.view.envMode = true;
  recorded.view.envTime = 9;  // turned by 90 degrees
  for (const uint8_t mode : {renderWireframe, renderLit}) {
    recorded.view.renderMode = mode;
    EXPECT_THAT(valuesOf(recorded.frame(), "DrawPrimitive"), IsEmpty())
        << "neither grid nor sky, mode " << int{mode};
  }
  recorded.view.renderMode = renderTextured;
  const auto calls = recorded.frame();

  std::vector<int> pictures;
  for (const DeviceCall& call : calls)
    if (call.name == "SetTexture" && call.object != nullptr)
      for (int n = 0; n < 6; ++n)
        if (call.object == recorded.view.model->materials[1 + n].texture.get()) pictures.push_back(n);
  EXPECT_THAT(pictures, ElementsAre(0, 1, 2, 3, 4, 5, 3, 3, 3, 3));
  const auto draws = valuesOf(calls, "DrawPrimitive");
  ASSERT_EQ(draws.size(), 10u);
  EXPECT_EQ(draws[9], (Values{5, 36, 2}));
  const Values front = {D3DRS_CULLMODE, D3DCULL_CCW}, solid = {D3DRS_FILLMODE, D3DFILL_SOLID};
  EXPECT_THAT(valuesOf(calls, "SetRenderState"),
              ElementsAre(front, solid, front, solid, Values{D3DRS_CULLMODE, D3DCULL_NONE}))
      << "of the sky, then of the model";
  EXPECT_THAT(valuesOf(calls, "SetFVF"), ElementsAre(Values{0x102}, Values{0x112}));
  EXPECT_THAT(valuesOf(calls, "SetStreamSource"), ElementsAre(Values{0, 0, 20}));
  EXPECT_THAT(valuesOf(calls, "SetSamplerState"),
              ElementsAre(Values{0, 1, 3}, Values{0, 2, 3}, Values{0, 1, 1}, Values{0, 2, 1}));

  const auto transforms = valuesOf(calls, "SetTransform");
  ASSERT_EQ(transforms.size(), 3u);  // view, sky, identity
  const Values expected = {256, 0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 3, -10, 1};
  for (size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(transforms[1][i], expected[i], 1e-5) << i;
  EXPECT_EQ(transforms[2], (Values{256, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));

  recorded.view.model->materials.resize(5);
  EXPECT_THAT(valuesOf(recorded.frame(), "DrawPrimitive"), IsEmpty());
}

TEST(Light, FollowsTheHour) {
  struct Case {
    float hour, level, red, green, blue, x, y;
  };
  const Case cases[] = {{0, 0.1f, 0.25f, 0.1f, 0.05f, 0, 1},
                        {11, 0.65f, 1.0f, 0.65f, 0.325f, 0.2588f, -0.9659f},
                        {12, 0.7f, 1.0f, 1.0f, 0.7f, 0, -1},
                        {18, 0.4f, 1.0f, 1.0f, 0.4f, -1, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.hour);
    const Daylight day = daylight(c.hour);
    EXPECT_NEAR(day.level, c.level, 1e-6);
    EXPECT_NEAR(day.diffuse.r, c.red, 1e-6);
    EXPECT_NEAR(day.diffuse.g, c.green, 1e-6);
    EXPECT_NEAR(day.diffuse.b, c.blue, 1e-6);

    RecordedView recorded;
    recorded.show(triangleModel());
    recorded.view.renderMode = renderTextured;
    recorded.view.lightMode = lightSun;
    recorded.view.envTime = c.hour;
    recorded.frame();
    const D3DVECTOR& direction = recorded.view.sceneLight.Direction;
    EXPECT_NEAR(direction.x, c.x, 1e-4);
    EXPECT_NEAR(direction.y, c.y, 1e-4);
    EXPECT_EQ(direction.y, direction.z);
  }
}

/// What one frame told the device in its one call of this name.
Values told(RecordedView& recorded, const char* name) {
  const auto values = valuesOf(recorded.frame(), name);
  return values.size() == 1 ? values[0] : Values();
}

auto near(const Values& expected) {
  return testing::Pointwise(testing::DoubleNear(1e-6), expected);
}

TEST(Light, TakesItsColoursFromTheModes) {
  RecordedView recorded;
  recorded.show(triangleModel());
  ModelView& view = recorded.view;
  view.lightMode = lightHead;
  view.pitch = 90;
  view.envTime = 18;
  EXPECT_EQ(told(recorded, "LightEnable"), (Values{0, 0})) << "wireframe";
  EXPECT_TRUE(recorded.device().callsOf("SetLight").empty());

  // Number and type, then diffuse, specular, ambient, position, direction.
  view.renderMode = renderLit;
  EXPECT_EQ(told(recorded, "LightEnable"), (Values{0, 1}));
  EXPECT_THAT(told(recorded, "SetLight"),
              near({0, 3, 1, 1, 1, 1, 0.3, 0.3, 0.3, 1, 0.3, 0.3, 0.3, 1, 0, 0, 0, 0, -1, 0}));

  view.renderMode = renderTextured;
  view.clearColor = {0.1f, 0.2f, 0.3f, 0.0f};
  EXPECT_THAT(told(recorded, "SetLight"),
              near({0, 3, 1, 1, 0.4, 1, 0.3, 0.3, 0.3, 1, 0.1, 0.2, 0.3, 0, 0, 0, 0, 0, -1, 0}))
      << "ambient light of the background";
  view.envMode = true;
  EXPECT_THAT(told(recorded, "SetLight"),
              near({0, 3, 1, 1, 0.4, 1, 0.3, 0.3, 0.3, 1, 0.4, 0.4, 0.4, 1, 0, 0, 0, 0, -1, 0}))
      << "ambient light of the hour";
}

TEST(MeshBuffers, ComeWithTheMaterialOfTheMode) {
  RecordedView recorded;
  recorded.show(triangleModel());
  // Diffuse, ambient, specular, emissive, power.
  const Values expected[] = {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8},
                             {0.8, 0.8, 0.8, 1, 0.2, 0.2, 0.2, 1, 1, 1, 1, 1, 0, 0, 0, 0, 8},
                             {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 8}};
  for (const uint8_t mode : {renderWireframe, renderLit, renderTextured}) {
    recorded.view.renderMode = mode;
    recorded.view.buffersBuilt = false;
    EXPECT_THAT(told(recorded, "SetMaterial"), near(expected[mode])) << int{mode};
  }
}

TEST(MeshBuffers, HoldTheVerticesOfTheMode) {
  RecordedView recorded;
  recorded.show(triangleModel());
  ModelView& view = recorded.view;
  const auto floats = [&](size_t stride, size_t index) {
    const auto all = contents<float>(*view.model->meshes[0].vertexBuffer, 3 * stride / 4);
    return std::vector<float>(all.begin() + index * stride / 4, all.begin() + (index + 1) * stride / 4);
  };
  const auto color = [](float bits) { return std::bit_cast<uint32_t>(bits); };

  view.backgroundIndex = 0;
  recorded.frame();
  EXPECT_THAT(valuesOf(recorded.frame(), "CreateVertexBuffer"), IsEmpty()) << "built once";
  EXPECT_EQ(color(floats(16, 2)[3]), 0x00FFFF00u);
  view.backgroundIndex = 1;
  recorded.frame();
  EXPECT_EQ(color(floats(16, 2)[3]), 0x00FFFF00u) << "follows with the next rebuild only";
  view.buffersBuilt = false;
  recorded.frame();
  EXPECT_EQ(color(floats(16, 2)[3]), 0u);

  view.renderMode = renderLit;
  view.buffersBuilt = false;
  EXPECT_THAT(valuesOf(recorded.frame(), "CreateVertexBuffer"), ElementsAre(Values{84, 8, 0x52, 1}));
  auto vertex = floats(28, 1);
  EXPECT_EQ(color(vertex.back()), 0xFF809FBFu);
  vertex.pop_back();
  EXPECT_THAT(vertex, ElementsAre(4, 5, 6, 1, 0, 0));

  view.renderMode = renderTextured;
  view.buffersBuilt = false;
  recorded.frame();
  EXPECT_THAT(floats(32, 2), ElementsAre(7, 8, 10, 0, 0, 1, 0.75f, 1));
  EXPECT_EQ(recorded.device().liveObjects(), 5) << "the old buffers are gone";
}

TEST(MeshBuffers, AMeshWithoutOneIsNotDrawn) {
  RecordedView recorded;
  recorded.show(ModelBuilder().material("a").grid(0, 1).grid(0, 2).grid(0, 3).build());
  recorded.device().results["CreateVertexBuffer"] = D3DERR_OUTOFVIDEOMEMORY;
  recorded.device().failAfter["CreateVertexBuffer"] = 1;
  recorded.frame();
  EXPECT_EQ(recorded.device().callsOf("DrawIndexedPrimitive").size(), 1u);
}

/// The last value of every state, transform and material that the calls set.
std::map<std::pair<std::string, Values>, Values> statesOf(const std::vector<DeviceCall>& calls) {
  const std::map<std::string, size_t> keyLengths = {
      {"SetRenderState", 1}, {"SetSamplerState", 2}, {"SetTextureStageState", 2}, {"SetTransform", 1},
      {"SetMaterial", 0},    {"SetLight", 1},        {"LightEnable", 1}};
  std::map<std::pair<std::string, Values>, Values> states;
  for (const DeviceCall& call : calls) {
    const auto length = keyLengths.find(call.name);
    if (length == keyLengths.end()) continue;
    const auto split = call.values.begin() + static_cast<long>(length->second);
    states[{call.name, Values(call.values.begin(), split)}] = Values(split, call.values.end());
  }
  return states;
}

TEST(DeviceReset, TellsTheDeviceAllAgain) {
  RecordedView recorded;
  EXPECT_TRUE(createRenderSystem(recorded.view, recorded.platform()));  // records the set-up this time
  ModelView& view = recorded.view;
  view.model = std::make_unique<Model>(triangleModel());
  view.renderMode = renderTextured;
  view.lightMode = lightSun;
  OnSize(view, 640, 480);
  setTextureStage(view, true);
  applyFiltering(view, 5);
  setLowQuality(view);
  renderFrame(view);
  const auto before = statesOf(recorded.device().calls);

  recorded.device().results["TestCooperativeLevel"] = D3DERR_DEVICENOTRESET;
  const auto calls = recorded.frame();
  EXPECT_EQ(calls[1].name, "Reset");
  EXPECT_THAT(calls[1].values, ElementsAre(1280, 720));
  const auto after = statesOf(calls);
  for (const auto& [state, value] : before) {
    const auto found = after.find(state);
    ASSERT_NE(found, after.end()) << state.first << ' ' << testing::PrintToString(state.second);
    EXPECT_EQ(found->second, value) << state.first << ' ' << testing::PrintToString(state.second);
  }
}

TEST(Frame, ALostDeviceDrawsNothingAndIsAskedAgain) {
  RecordedView recorded;
  recorded.device().results["TestCooperativeLevel"] = D3DERR_DEVICELOST;
  EXPECT_THAT(namesOf(recorded.frame()), ElementsAre("TestCooperativeLevel"));
  EXPECT_THAT(namesOf(recorded.frame()), ElementsAre("TestCooperativeLevel"));
  EXPECT_THAT(recorded.view.overlay, IsEmpty());
}

/// A device whose present asks for another frame, as a window that repaints would.
class RepaintingDevice : public RecordingDevice {
 public:
  explicit RepaintingDevice(ModelView& view) : view_(view) {}
  HRESULT Present() override {
    renderFrame(view_);
    return RecordingDevice::Present();
  }

 private:
  ModelView& view_;
};

TEST(Frame, IsNotStartedWhileAnotherIsDrawn) {
  ModelView view;
  const auto device = std::make_shared<RepaintingDevice>(view);
  view.p_device = device;
  renderFrame(view);
  EXPECT_EQ(device->callsOf("Present").size(), 1u);
  EXPECT_TRUE(view.frameIdle);
}

}  // namespace
}  // namespace facet
