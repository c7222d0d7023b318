#include "render/render_system.h"

#include <gmock/gmock.h>

#include <iterator>
#include <sstream>

#include "render/recorded_view.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::SizeIs;
using Box = RecordingDesktop::Box;

constexpr unsigned errorFlags = 0x1010, informationFlags = 0x1040;
const Box question{"Use Software renderer?", "p_d3d->CreateDevice()", 0x1124};

TEST(DeviceSearch, TriesEveryFormatOfEveryModeAndTellsTheLastError) {
  NewView fresh;
  fresh.direct3d->createResult = [&](const auto&) {
    return fresh.direct3d->requests.size() == 36 ? D3DERR_NOTAVAILABLE : D3DERR_DEVICELOST;
  };
  EXPECT_FALSE(fresh.run());
  std::vector<std::pair<uint32_t, uint32_t>> modes;
  std::vector<uint32_t> formats;
  for (const auto& request : fresh.direct3d->requests) {
    formats.push_back(request.parameters.AutoDepthStencilFormat);
    if (formats.size() % 6 == 1) modes.emplace_back(request.type, request.behaviorFlags);
  }
  using P = std::pair<uint32_t, uint32_t>;
  EXPECT_THAT(modes, ElementsAre(P{1, 0x50}, P{1, 0x40}, P{1, 0x80}, P{1, 0x20}, P{3, 0x20}, P{2, 0x20}));
  ASSERT_THAT(formats, SizeIs(36));
  formats.resize(7);
  EXPECT_THAT(formats, ElementsAre(71, 77, 75, 79, 80, 73, 71));
  EXPECT_THAT(fresh.desktop.boxes, ElementsAre(question, Box{"DirectX error code:0x8876086A",
                                                             "p_d3d->CreateDevice() != D3D_OK", errorFlags}));
}

TEST(DeviceSearch, YesToSoftwareTriesTheSoftwareRowsOnly) {
  NewView fresh;
  fresh.desktop.questionAnswer = IDYES;
  fresh.direct3d->createResult = [](const auto& request) {
    return request.type == D3DDEVTYPE_SW ? D3DERR_NOTAVAILABLE : D3D_OK;
  };
  EXPECT_TRUE(fresh.run());
  EXPECT_THAT(fresh.direct3d->requests, SizeIs(7));
  EXPECT_THAT(fresh.desktop.boxes, ElementsAre(question, Box{"Fallback to REF.SOFTVERT / D3DFMT_D32",
                                                             "p_d3d->CreateDevice()", informationFlags}));
}

TEST(DeviceSearch, TakesTheFirstFormatThatWorksAndOnlyD3dOk) {
  NewView fresh;
  fresh.direct3d->createResult = [](const auto& request) {
    return request.parameters.AutoDepthStencilFormat == D3DFMT_D24S8 ? D3D_OK : HRESULT{1};
  };
  EXPECT_TRUE(fresh.run());
  EXPECT_EQ(fresh.desktop.boxes.back().text, "HAL.PURE.HARDVERT / D3DFMT_D24S8");
  EXPECT_THAT(fresh.desktop.titles, ElementsAre("r_dx9::Facet Bench [x64] 1.0.5@.201312xx"));

  const D3DPRESENT_PARAMETERS& present = fresh.direct3d->requests.back().parameters;
  EXPECT_EQ(std::tuple(present.BackBufferWidth, present.BackBufferHeight, present.BackBufferFormat),
            std::tuple(1280u, 720u, D3DFMT_X8R8G8B8));
  EXPECT_EQ(std::tuple(present.BackBufferCount, present.SwapEffect), std::tuple(1u, D3DSWAPEFFECT_DISCARD));
  EXPECT_EQ(present.hDeviceWindow, &fresh);
  EXPECT_TRUE(present.Windowed && present.EnableAutoDepthStencil);
  EXPECT_EQ(present.PresentationInterval, D3DPRESENT_INTERVAL_IMMEDIATE);
}

TEST(RenderSystem, FailsBeforeItAsksForADevice) {
  const Box initError{"Error setting up render system!", "Init Error!", errorFlags};
  const Box indexed{"Indexed color modes are unsupported", "GetDeviceCaps(...,BITSPIXEL)", errorFlags};
  const std::pair<void (*)(NewView&), std::vector<Box>> cases[] = {
      {[](NewView& s) { s.view.window.handle = nullptr; }, {initError}},
      {[](NewView& s) { s.view.window.bitsPerPixel = 8; }, {indexed, initError}},
      {[](NewView& s) { s.direct3d = nullptr; }, {initError}},
  };
  for (const auto& [spoil, boxes] : cases) {
    NewView fresh;
    const auto direct3d = fresh.direct3d;
    spoil(fresh);
    EXPECT_EQ(OnCreate(fresh.view, fresh.platform), -1);
    EXPECT_EQ(fresh.desktop.boxes, boxes);
    EXPECT_TRUE(direct3d->requests.empty());
    OnDestroy(fresh.view);
  }
}

TEST(RenderSystem, RegistersTheFirstRasteriserThatLoads) {
  const std::vector<std::string> order{"rgb9rast.dll", "rgb9rast_2.dll", "rgb9rast_1.dll"};
  for (size_t first = 0; first <= order.size(); ++first) {  // those before it do not load
    NewView fresh;
    std::vector<std::string> tried;
    int entries[4];
    fresh.platform.loadEntry = [&](const std::string& library, const std::string& name) {
      EXPECT_EQ(name, "D3D9GetSWInfo");
      tried.push_back(library);
      return tried.size() > first ? std::optional<void*>(&entries[tried.size() - 1]) : std::nullopt;
    };
    EXPECT_TRUE(fresh.run());
    const size_t count = std::min(first + 1, order.size());
    EXPECT_EQ(tried, std::vector(order.begin(), order.begin() + count));
    EXPECT_THAT(fresh.direct3d->softwareDevices,
                ElementsAre(first < order.size() ? &entries[first] : nullptr));
  }
}

TEST(Scenery, StandsWhereItShould) {
  RecordedView recorded;
  struct Line {
    float x, y, z;
    uint32_t color;
    bool operator==(const Line&) const = default;
  };
  const auto axes = contents<Line>(recorded.view.system.axesBuffer);
  EXPECT_THAT(axes, ElementsAre(Line{-1, 0, 0, 0xFF0000}, Line{5, 0, 0, 0xFF0000}, Line{0, -1, 0, 0xFF00},
                                Line{0, 5, 0, 0xFF00}, Line{0, 0, -1, 0xFF}, Line{0, 0, 5, 0xFF}));
  const auto grid = contents<Line>(recorded.view.system.gridBuffer);
  ASSERT_EQ(grid.size(), 164u);
  EXPECT_EQ(grid[0], (Line{-20, -0.01f, -20, 0xFFFFFF}));
  EXPECT_EQ(grid[7], (Line{20, -0.01f, -19, 0xFFFFFF}));
  EXPECT_EQ(grid[161], (Line{20, -0.01f, 20, 0xFFFFFF}));

  std::istringstream sky(  // a line for each quad: x, y, z, u, v of its corners
      R"(200 200 200 0 0  200 200 -200 1 0  200 0 200 0 1  200 0 -200 1 1
         -200 0 200 1 1  -200 0 -200 0 1  -200 200 200 1 0  -200 200 -200 0 0
         -200 200 -200 0 0  200 200 -200 1 0  -200 200 200 0 1  200 200 200 1 1
         200 -200 200 1 0.01  200 -200 -200 0.99 0.99  -200 -200 200 0.01 0.01  -200 -200 -200 0.01 0.99
         -200 200 200 0 0  200 200 200 1 0  -200 0 200 0 1  200 0 200 1 1
         200 200 -200 0 0  -200 200 -200 1 0  200 0 -200 0 1  -200 0 -200 1 1
         -200 0 200 0 0  200 0 200 1 0  -200 -200 200 0 0.01  200 -200 200 1 0.01
         200 0 -200 1 1  -200 0 -200 0 1  200 -200 -200 1 0.99  -200 -200 -200 0 0.99
         200 0 200 1 0  200 0 -200 1 1  200 -200 200 0.99 0  200 -200 -200 0.99 1
         -200 -200 200 0.01 0  -200 -200 -200 0.01 1  -200 0 200 0 0  -200 0 -200 0 1)");
  EXPECT_THAT(contents<float>(recorded.view.system.skyBuffer),
              testing::ElementsAreArray(std::istream_iterator<float>(sky), std::istream_iterator<float>()));
}

TEST(RenderSystem, MissingBuffersAreSkippedByTheFrame) {
  NewView fresh;
  fresh.direct3d->device->creationsLeft = 0;
  EXPECT_TRUE(fresh.run());
  EXPECT_EQ(fresh.desktop.boxes.size(), 2u);
  fresh.view.scene.model = std::make_unique<Model>(triangleModel());
  for (const bool environment : {false, true}) {
    fresh.view.settings.envMode = environment;
    fresh.view.settings.renderMode = renderTextured;
    renderFrame(fresh.view);
    EXPECT_TRUE(fresh.direct3d->device->draws.empty());
  }
  EXPECT_EQ(fresh.direct3d->device->presents, 2u);
}

TEST(RenderSystem, GivesAllBackWhenTheWindowGoes) {
  RecordedView recorded;
  recorded.show(triangleModel());
  recorded.frame();
  EXPECT_EQ(recorded.device().liveObjects(), 5);
  recorded.desktop.titles.clear();
  OnDestroy(recorded.view);
  EXPECT_EQ(recorded.device().liveObjects(), 0);
  EXPECT_EQ(recorded.direct3d.use_count(), 1);
  EXPECT_EQ(recorded.view.scene.model, nullptr);
  EXPECT_EQ(recorded.device().presents, 2u) << "the empty scene is shown once more";
  EXPECT_THAT(recorded.desktop.titles, ElementsAre("r_dx9::Facet Bench [x64] 1.0.5@.201312xx"));
}

}  // namespace
}  // namespace facet
