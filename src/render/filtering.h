#pragma once

#include <array>

#include "render/view.h"

namespace facet {

/// One way to sample textures.
struct FilterMode {
  D3DTEXTUREFILTERTYPE filter, mip;
  const char* statusText;
};
inline constexpr std::array<FilterMode, 8> filterModes = {{
    {D3DTEXF_POINT, D3DTEXF_NONE, "> Filtering: POINT/POINT"},
    {D3DTEXF_LINEAR, D3DTEXF_NONE, "> Filtering: LINEAR/LINEAR"},
    {D3DTEXF_POINT, D3DTEXF_POINT, "> Filtering: POINT/POINT/POINT"},
    {D3DTEXF_POINT, D3DTEXF_LINEAR, "> Filtering: POINT/POINT/LINEAR"},
    {D3DTEXF_LINEAR, D3DTEXF_POINT, "> Filtering: LINEAR/LINEAR/POINT"},
    {D3DTEXF_LINEAR, D3DTEXF_LINEAR, "> Filtering: LINEAR/LINEAR/LINEAR"},
    {D3DTEXF_ANISOTROPIC, D3DTEXF_POINT, "> Filtering: ANISOTROPIC/ANISOTROPIC/POINT"},
    {D3DTEXF_ANISOTROPIC, D3DTEXF_LINEAR, "> Filtering: ANISOTROPIC/ANISOTROPIC/LINEAR"},
}};

/// Sets the texture filters of a mode; a mode of 8 or more changes nothing.
void applyFiltering(ModelView& view, uint32_t mode);

/// Flat shading, and point filters while textures are drawn. Asked twice in a row, acts once.
void setLowQuality(ModelView& view);

/// Smooth shading, and the chosen filters while textures are drawn. Asked twice in a row, acts once.
void setHighQuality(ModelView& view);

/// How textures meet the light: lit, the vertex colour times the texture; otherwise the texture alone.
void setTextureStage(ModelView& view, bool lit);

}  // namespace facet
