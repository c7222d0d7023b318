#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "device/direct3d.h"
#include "device/gl/gl_device.h"
#include "device/software/software_device.h"
#include "support/byte_writer.h"

// Small things to draw with, the same on every device.

namespace facet {

inline constexpr D3DCOLOR red = 0xFFFF0000, green = 0xFF00FF00, blue = 0xFF0000FF, white = 0xFFFFFFFF,
                          black = 0xFF000000;
inline constexpr float notANumber = std::numeric_limits<float>::quiet_NaN(),
                       infinite = std::numeric_limits<float>::infinity();

/// 0xRRGGBB, each channel within two steps.
MATCHER_P(IsColor, expected, "") {
  for (const int shift : {0, 8, 16}) {
    const int channel = static_cast<int>(arg >> shift & 0xFF),
              wanted = static_cast<int>(expected >> shift & 0xFF);
    if (std::abs(channel - wanted) > 2) return false;
  }
  return true;
}

/// A vertex with all parts.
struct FullVertex {
  float x = 0, y = 0, z = 0.5f;
  D3DVECTOR normal{0, 0, -1};
  D3DCOLOR color = 0xFFFFFFFF;
  float u = 0, v = 0;
};
inline constexpr uint32_t allParts = D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_DIFFUSE | D3DFVF_TEX1,
                          coloredParts = D3DFVF_XYZ | D3DFVF_DIFFUSE,
                          texturedParts = D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_TEX1;

inline D3DPRESENT_PARAMETERS backBuffer(uint32_t width, uint32_t height, D3DFORMAT depth = D3DFMT_D24X8) {
  return {.BackBufferWidth = width,
          .BackBufferHeight = height,
          .BackBufferFormat = D3DFMT_X8R8G8B8,
          .AutoDepthStencilFormat = depth};
}

/// A buffer of those parts of the vertices that `fvf` names.
inline std::shared_ptr<IDirect3DVertexBuffer9> makeVertices(IDirect3DDevice9& device,
                                                            const std::vector<FullVertex>& vertices,
                                                            uint32_t fvf = allParts) {
  ByteWriter bytes;
  for (const FullVertex& v : vertices) {
    bytes.write(v.x, v.y, v.z);
    if (fvf & D3DFVF_NORMAL) bytes.write(v.normal);
    if (fvf & D3DFVF_DIFFUSE) bytes.write(v.color);
    if (fvf & D3DFVF_TEX1) bytes.write(v.u, v.v);
  }
  const auto all = asBytes(bytes.bytes());
  return device.CreateVertexBuffer(fvf, {all.begin(), all.end()});
}

inline void draw(IDirect3DDevice9& device, D3DPRIMITIVETYPE type, const std::vector<FullVertex>& vertices,
                 uint32_t fvf = allParts) {
  const auto count = static_cast<uint32_t>(vertices.size());
  device.DrawPrimitive(type, makeVertices(device, vertices, fvf), 0,
                       type == D3DPT_LINELIST       ? count / 2
                       : type == D3DPT_TRIANGLELIST ? count / 3
                                                    : count - 2);
}

/// A texture with a full chain of levels of 32-bit texels; `texel(level, x, y)` gives 0xAARRGGBB.
template <class Texel>
std::shared_ptr<IDirect3DTexture9> makeTexture(IDirect3DDevice9& device, uint32_t width, uint32_t height,
                                               Texel texel, uint32_t count = UINT32_MAX) {
  std::vector<ImageLevel> levels;
  do {
    ImageLevel level{width, height, std::vector<std::byte>(size_t{width} * height * 4)};
    for (uint32_t i = 0; i < width * height; ++i) {
      const uint32_t value = texel(static_cast<uint32_t>(levels.size()), i % width, i / width);
      std::memcpy(&level.bytes[size_t{i} * 4], &value, 4);
    }
    levels.push_back(std::move(level));
    if (width * height == 1) break;
    width = std::max(width / 2, 1u);
    height = std::max(height / 2, 1u);
  } while (levels.size() < count);
  return device.CreateTexture(D3DFMT_A8R8G8B8, std::move(levels));
}

/// A device with a square picture, black, without lighting or culling. Its projection maps pixels onto the
/// picture, so that tests speak of pixels.
class Canvas {
 public:
  explicit Canvas(std::shared_ptr<IDirect3DDevice9> drawsOn, uint32_t pixels = 16)
      : device(std::move(drawsOn)), state(device->state), side(pixels) {
    device->Reset(backBuffer(side, side));
    start();
  }

  void start() {
    state = {};
    state.projection.m[0][0] = 2 / static_cast<float>(side);
    state.projection.m[1][1] = -2 / static_cast<float>(side);
    state.projection.m[3] = {-1, 1, 0, 1};
    state.lighting = false;
    state.cullMode = D3DCULL_NONE;
    state.colorOp = D3DTOP_SELECTARG1;
    clear();
  }

  void clear(D3DCOLOR color = 0xFF000000) { device->Clear(color); }

  /// A perspective without scale: x and y are divided by z, near plane 1, far plane 10.
  void setPerspective() {
    state.projection.m = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 10 / 9.0f, 1}, {0, 0, -10 / 9.0f, 0}}};
  }

  void draw(D3DPRIMITIVETYPE type, const std::vector<FullVertex>& vertices) {
    facet::draw(*device, type, vertices);
  }

  /// A rectangle of pixels with texture coordinates 0, 0 to 1, 1.
  void rectangle(float left, float top, float right, float bottom, FullVertex all = {}) {
    std::vector<FullVertex> corners;
    for (int i = 0; i < 4; ++i) {
      all.x = i % 2 ? right : left;
      all.y = i / 2 ? bottom : top;
      all.u = static_cast<float>(i % 2);
      all.v = static_cast<float>(i / 2);
      corners.push_back(all);
    }
    draw(D3DPT_TRIANGLESTRIP, corners);
  }
  void fill(D3DCOLOR color, float z = 0.5f) {
    const auto size = static_cast<float>(side);
    rectangle(0, 0, size, size, {.z = z, .color = color});
  }

  /// Sets a texture of one level.
  void texture(uint32_t width, uint32_t height, const std::vector<uint32_t>& texels) {
    const auto texel = [&](uint32_t, uint32_t x, uint32_t y) { return texels[y * width + x]; };
    state.texture = makeTexture(*device, width, height, texel, 1);
  }

  /// 0xRRGGBB of each pixel, row by row.
  std::vector<uint32_t> pixels() {
    device->Present();
    const std::vector<uint8_t> bytes = readBackBuffer(*device);
    std::vector<uint32_t> result;
    for (size_t i = 0; i < bytes.size(); i += 4)
      result.push_back(uint32_t{bytes[i]} << 16 | uint32_t{bytes[i + 1]} << 8 | bytes[i + 2]);
    return result;
  }
  uint32_t pixel(uint32_t x, uint32_t y) { return pixels()[size_t{y} * side + x]; }
  uint32_t middle() { return pixel(side / 2, side / 2); }
  /// Blends what follows over the picture by its alpha.
  void blendByAlpha() {
    state.alphaBlendEnable = true;
    state.srcBlend = D3DBLEND_SRCALPHA;
    state.destBlend = D3DBLEND_INVSRCALPHA;
  }
  uint32_t coveredPixels() {
    return static_cast<uint32_t>(std::ranges::count_if(pixels(), [](uint32_t color) { return color != 0; }));
  }

  std::shared_ptr<IDirect3DDevice9> device;
  DeviceState& state;
  uint32_t side;
};

inline std::shared_ptr<IDirect3DDevice9> makeSoftware() {
  std::shared_ptr<IDirect3DDevice9> device;
  SoftwareDevice::create(backBuffer(16, 16), &device);
  return device;
}

/// Tests that hold on both devices; the parameter asks for OpenGL.
class AnyDevice : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (!GetParam()) {
      device = makeSoftware();
    } else if (const auto context = createEglContext()) {
      createGlDevice(context, backBuffer(16, 16), &device);
    } else {
      GTEST_SKIP() << "no OpenGL without a display here";
    }
    ASSERT_TRUE(device);
  }

  std::shared_ptr<IDirect3DDevice9> device;
};

}  // namespace facet
