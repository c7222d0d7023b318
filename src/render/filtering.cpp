#include "render/filtering.h"

namespace facet {

void applyFiltering(ModelView& view, uint32_t mode) {
  if (mode >= filterModes.size()) return;
  view.p_device->state.filter = filterModes[mode].filter;
  view.p_device->state.mipFilter = filterModes[mode].mip;
}

void setLowQuality(ModelView& view) {
  if (view.flatShading) return;
  if (view.renderMode == renderTextured) applyFiltering(view, 0);
  view.p_device->state.shadeMode = D3DSHADE_FLAT;
  view.flatShading = true;
  view.smoothShading = false;
}

void setHighQuality(ModelView& view) {
  if (view.smoothShading) return;
  if (view.renderMode == renderTextured) applyFiltering(view, view.filterMode);
  view.p_device->state.shadeMode = D3DSHADE_GOURAUD;
  view.smoothShading = true;
  view.flatShading = false;
}

void setTextureStage(ModelView& view, bool lit) {
  view.p_device->state.colorOp = lit ? D3DTOP_MODULATE : D3DTOP_SELECTARG1;
}

}  // namespace facet
