#pragma once

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "device/direct3d.h"
#include "device/gl/egl_context.h"
#include "device/gl/gl_device.h"
#include "device/reference/device.h"
#include "drawing.h"
#include "picture/pixels.h"

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

/// A vertex with all parts, in pixels of the picture (or in the units of the transforms).
struct FullVertex {
  static constexpr uint32_t fvf = D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_DIFFUSE | D3DFVF_TEX1;
  float x = 0, y = 0, z = 0.5f;
  D3DVECTOR normal{0, 0, -1};
  D3DCOLOR color = 0xFFFFFFFF;
  float u = 0, v = 0;
};

/// A device with a square picture, black, without lighting or culling. Its projection maps pixels onto the
/// picture, so that tests speak of pixels.
class Canvas {
 public:
  explicit Canvas(std::shared_ptr<IDirect3DDevice9> drawsOn, uint32_t pixels = 16)
      : device(std::move(drawsOn)), side(pixels) {
    start();
  }

  void start() {
    D3DMATRIX toPicture = identityMatrix;
    toPicture.m[0][0] = 2 / static_cast<float>(side);
    toPicture.m[1][1] = -2 / static_cast<float>(side);
    toPicture.m[3] = {-1, 1, 0, 1};
    device->Reset(backBuffer(side, side));
    device->SetTransform(D3DTS_PROJECTION, toPicture);
    device->SetRenderState(D3DRS_LIGHTING, 0);
    device->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
    device->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
    clear();
  }

  void clear(D3DCOLOR color = 0xFF000000) { device->Clear(D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, color, 1, 0); }
  void set(D3DRENDERSTATETYPE state, uint32_t value) { device->SetRenderState(state, value); }

  /// A perspective without scale: x and y are divided by z, near plane 1, far plane 10.
  void setPerspective() {
    D3DMATRIX matrix;
    matrix.m = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 10 / 9.0f, 1}, {0, 0, -10 / 9.0f, 0}}};
    device->SetTransform(D3DTS_PROJECTION, matrix);
  }

  void draw(D3DPRIMITIVETYPE type, const std::vector<FullVertex>& vertices) {
    const auto count = static_cast<uint32_t>(vertices.size());
    drawVertices(*device, type, vertices,
                 type == D3DPT_LINELIST       ? count / 2
                 : type == D3DPT_TRIANGLELIST ? count / 3
                                              : count - 2);
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

  /// Sets a texture whose levels follow each other in `texels`.
  void texture(uint32_t width, uint32_t height, uint32_t levels, const std::vector<uint32_t>& texels) {
    size_t next = 0;
    device->SetTexture(0,
                       makeTexture(*device, width, height, levels, [&](auto...) { return texels[next++]; }));
  }
  void filter(uint32_t both, uint32_t mip) {
    device->SetSamplerState(0, D3DSAMP_MINFILTER, both);
    device->SetSamplerState(0, D3DSAMP_MAGFILTER, both);
    device->SetSamplerState(0, D3DSAMP_MIPFILTER, mip);
    device->SetSamplerState(0, D3DSAMP_MAXANISOTROPY, 16);
  }

  /// 0xRRGGBB of each pixel, row by row.
  std::vector<uint32_t> pixels() {
    const std::vector<uint8_t> bytes = readBackBuffer(*device);
    std::vector<uint32_t> result;
    for (size_t i = 0; i < bytes.size(); i += 4)
      result.push_back(uint32_t{bytes[i]} << 16 | uint32_t{bytes[i + 1]} << 8 | bytes[i + 2]);
    return result;
  }
  uint32_t pixel(uint32_t x, uint32_t y) { return pixels()[size_t{y} * side + x]; }
  uint32_t middle() { return pixel(side / 2, side / 2); }
  uint32_t coveredPixels() {
    uint32_t count = 0;
    for (const uint32_t color : pixels()) count += color != 0;
    return count;
  }

  std::shared_ptr<IDirect3DDevice9> device;
  uint32_t side;
};

inline std::shared_ptr<IDirect3DDevice9> makeReference(uint32_t threads = 2) {
  std::shared_ptr<ReferenceDevice> device;
  ReferenceDevice::create(backBuffer(16, 16), threads, &device);
  return device;
}

/// Tests that hold on both devices; the parameter asks for OpenGL.
class AnyDevice : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (!GetParam()) {
      device = makeReference();
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
