#include "render/filtering.h"

#include <gmock/gmock.h>

#include <cmath>

#include "render/color.h"
#include "render/recorded_view.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Values = std::vector<double>;

TEST(Filtering, SetsMinMagAndMip) {
  RecordedView recorded;
  applyFiltering(recorded.view, 6);
  EXPECT_THAT(valuesOf(recorded.device().calls, "SetSamplerState"),
              ElementsAre(Values{0, 6, 3}, Values{0, 5, 3}, Values{0, 7, 1}));
  recorded.device().calls.clear();
  applyFiltering(recorded.view, 8);
  applyFiltering(recorded.view, 0xFFFFFFFF);
  EXPECT_THAT(recorded.device().calls, IsEmpty());
}

TEST(Quality, ActsOnceAndTouchesFiltersOnlyWhereTexturesAreDrawn) {
  RecordedView recorded;
  ModelView& view = recorded.view;
  view.filterMode = 5;
  setLowQuality(view);
  setLowQuality(view);
  EXPECT_THAT(recorded.device().calls, ElementsAre(DeviceCall{"SetRenderState", {9, 1}}));
  view.renderMode = renderTextured;
  setHighQuality(view);
  setHighQuality(view);
  EXPECT_THAT(recorded.device().calls,
              ElementsAre(DeviceCall{"SetRenderState", {9, 1}}, DeviceCall{"SetSamplerState", {0, 6, 2}},
                          DeviceCall{"SetSamplerState", {0, 5, 2}}, DeviceCall{"SetSamplerState", {0, 7, 2}},
                          DeviceCall{"SetRenderState", {9, 2}}));
  recorded.device().calls.clear();
  setLowQuality(view);
  EXPECT_EQ(recorded.device().calls[0], (DeviceCall{"SetSamplerState", {0, 6, 1}}));
}

TEST(Color, BytesRoundAndClip) {
  EXPECT_EQ(packColor({1.5f, -1.0f, 0.5f, 0.0f}), 0x00FF0080u);
  EXPECT_EQ(packColor(startClearColor), 0xFF7F7F7Fu);
  EXPECT_EQ(colorByte(NAN), 0u);
}

TEST(Color, BackgroundsAreWhole255ths) {
  EXPECT_EQ(backgroundColor(2),
            (std::array<float, 4>{startClearColor[0], startClearColor[0], startClearColor[0], 0.0f}));
  EXPECT_EQ(packColor(backgroundColor(8)), 0x00020F4Fu);
  EXPECT_EQ(packColor(backgroundColor(21)), 0x0099E5FFu);
}

}  // namespace
}  // namespace facet
