#include "render/filtering.h"

namespace facet {

void applyFiltering(ModelView& view, uint32_t mode) {
  if (mode >= filterModes.size()) return;
  view.system.p_device->state.filter = filterModes[mode].filter;
  view.system.p_device->state.mipFilter = filterModes[mode].mip;
}

void setLowQuality(ModelView& view) {
  if (view.settings.flatShading) return;
  if (view.settings.renderMode == renderTextured) applyFiltering(view, 0);
  view.system.p_device->state.shadeMode = D3DSHADE_FLAT;
  view.settings.flatShading = true;
  view.settings.smoothShading = false;
}

void setHighQuality(ModelView& view) {
  if (view.settings.smoothShading) return;
  if (view.settings.renderMode == renderTextured) applyFiltering(view, view.settings.filterMode);
  view.system.p_device->state.shadeMode = D3DSHADE_GOURAUD;
  view.settings.smoothShading = true;
  view.settings.flatShading = false;
}

void setTextureStage(ModelView& view, bool lit) {
  view.system.p_device->state.colorOp = lit ? D3DTOP_MODULATE : D3DTOP_SELECTARG1;
}

}  // namespace facet
