
#include <gmock/gmock.h>

#include <cmath>

#include "render/recorded_view.h"
#include "render/view.h"

namespace facet {
namespace {

TEST(Quality, ActsOnceAndTouchesFiltersOnlyWhereTexturesAreDrawn) {
  RecordedView recorded;
  ModelView& view = recorded.view;
  const DeviceState& state = recorded.device().state;
  view.settings.filterMode = 5;
  for (const uint32_t mode : {6u, 8u, 0xFFFFFFFFu}) applyFiltering(view, mode);  // two that are none
  setQuality(view, false);
  EXPECT_EQ(state.shadeMode, D3DSHADE_FLAT);
  view.settings.renderMode = renderTextured;
  setQuality(view, false);  // asked twice
  EXPECT_EQ(std::pair(state.filter, state.mipFilter), std::pair(D3DTEXF_ANISOTROPIC, D3DTEXF_POINT));
  setQuality(view, true);
  EXPECT_EQ(state.shadeMode, D3DSHADE_GOURAUD);
  EXPECT_EQ(std::pair(state.filter, state.mipFilter), std::pair(D3DTEXF_LINEAR, D3DTEXF_LINEAR));
  setQuality(view, false);
  EXPECT_EQ(std::pair(state.filter, state.mipFilter), std::pair(D3DTEXF_POINT, D3DTEXF_NONE));
}

TEST(Color, BytesRoundAndClip) {
  EXPECT_EQ(packColor({1.5f, -1.0f, 0.5f, 0.0f}), 0x00FF0080u);
  EXPECT_EQ(packColor(startClearColor), 0xFF7F7F7Fu);
  EXPECT_EQ(packColor({NAN, NAN, NAN, NAN}), 0u);
}

TEST(Color, BackgroundsAreWhole255ths) {
  EXPECT_EQ(backgroundColor(2),
            (std::array<float, 4>{startClearColor[0], startClearColor[0], startClearColor[0], 0.0f}));
  EXPECT_EQ(packColor(backgroundColor(8)), 0x00020F4Fu);
  EXPECT_EQ(packColor(backgroundColor(21)), 0x0099E5FFu);
}

}  // namespace
}  // namespace facet
