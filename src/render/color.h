#pragma once

#include <array>
#include <cstdint>

#include "device/device.h"

namespace facet {

/// A colour channel as a byte: 255 from 1.0 on, 0 up to 0.0 (and for NaN), else c * 255 + 0.5 truncated.
uint32_t colorByte(float channel);

/// r, g, b, a packed as 0xAARRGGBB.
D3DCOLOR packColor(const std::array<float, 4>& color);

/// The backgrounds that can be chosen: red, green, blue.
inline constexpr std::array<std::array<float, 3>, 22> backgroundTable = {{
    {0.0f, 0.0f, 0.0f},    {0.25f, 0.25f, 0.25f}, {0.5f, 0.5f, 0.5f},    {0.75f, 0.75f, 0.75f},
    {0.5f, 0.5f, 1.0f},    {0.75f, 0.75f, 1.0f},  {1.0f, 0.5f, 0.5f},    {1.0f, 0.75f, 0.75f},
    {0.01f, 0.06f, 0.31f}, {0.03f, 0.13f, 0.27f}, {0.05f, 0.28f, 0.33f}, {0.13f, 0.24f, 0.35f},
    {0.13f, 0.34f, 0.37f}, {0.05f, 0.44f, 0.67f}, {0.21f, 0.43f, 0.59f}, {0.23f, 0.42f, 0.61f},
    {0.33f, 0.47f, 0.68f}, {0.39f, 0.49f, 0.65f}, {0.57f, 0.57f, 0.58f}, {0.31f, 0.67f, 1.0f},
    {0.6f, 0.65f, 0.73f},  {0.6f, 0.9f, 1.0f},
}};

/// The clear colour of a background: its channels cut to whole 255ths, alpha 0. `index` is below 22.
std::array<float, 4> backgroundColor(uint8_t index);

/// Background 2, before any was chosen: its alpha is 1.
inline constexpr std::array<float, 4> startClearColor = {127 * 0.003921569f, 127 * 0.003921569f,
                                                         127 * 0.003921569f, 1.0f};

}  // namespace facet
