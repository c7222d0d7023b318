#include "render/filtering.h"

namespace facet {

namespace {

struct StageState {
  D3DTEXTURESTAGESTATETYPE type;
  uint32_t value;
};

constexpr StageState textureAlone[] = {
    {D3DTSS_COLORARG1, D3DTA_TEXTURE},
    {D3DTSS_COLOROP, D3DTOP_SELECTARG1},
    {D3DTSS_ALPHAARG1, D3DTA_TEXTURE},
    {D3DTSS_ALPHAOP, D3DTOP_SELECTARG1},
};
constexpr StageState textureLit[] = {
    {D3DTSS_COLORARG1, D3DTA_TEXTURE},   {D3DTSS_COLORARG2, D3DTA_CURRENT}, {D3DTSS_COLOROP, D3DTOP_MODULATE},
    {D3DTSS_ALPHAOP, D3DTOP_SELECTARG1}, {D3DTSS_ALPHAARG1, D3DTA_TEXTURE},
};

}  // namespace

void applyFiltering(ModelView& view, uint32_t mode) {
  if (mode >= filterModes.size()) return;
  const FilterMode& filter = filterModes[mode];
  view.p_device->SetSamplerState(0, D3DSAMP_MINFILTER, filter.min);
  view.p_device->SetSamplerState(0, D3DSAMP_MAGFILTER, filter.mag);
  view.p_device->SetSamplerState(0, D3DSAMP_MIPFILTER, filter.mip);
  view.appliedFilter = static_cast<uint8_t>(mode);
}

void setLowQuality(ModelView& view) {
  if (view.flatShading) return;
  if (view.renderMode == renderTextured) applyFiltering(view, 0);
  view.p_device->SetRenderState(D3DRS_SHADEMODE, D3DSHADE_FLAT);
  view.flatShading = true;
  view.smoothShading = false;
}

void setHighQuality(ModelView& view) {
  if (view.smoothShading) return;
  if (view.renderMode == renderTextured) applyFiltering(view, view.filterMode);
  view.p_device->SetRenderState(D3DRS_SHADEMODE, D3DSHADE_GOURAUD);
  view.smoothShading = true;
  view.flatShading = false;
}

void setTextureStage(ModelView& view, bool lit) {
  const auto set = [&](const StageState& state) {
    view.p_device->SetTextureStageState(0, state.type, state.value);
  };
  if (lit)
    for (const StageState& state : textureLit) set(state);
  else
    for (const StageState& state : textureAlone) set(state);
  view.stageLit = lit;
}

}  // namespace facet
