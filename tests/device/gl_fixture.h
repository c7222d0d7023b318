#pragma once

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include "device/gl/egl_context.h"
#include "device/gl/gl_device.h"
#include "drawing.h"

namespace facet {

inline constexpr uint32_t side = 16;  ///< of the back buffer

/// A context that a test can lose, with a window that is a framebuffer of 2 x 2 pixels.
class TestContext : public GlContext {
 public:
  std::shared_ptr<GlContext> inner = createEglContext();
  bool lost = false, withWindow = false;
  uint32_t presents = 0;

  bool makeCurrent() override { return !lost && inner && inner->makeCurrent(); }
  bool restore() override {
    lost = false;
    return inner->restore();
  }
  std::optional<Window> window() override {
    if (!withWindow) return std::nullopt;
    if (framebuffer_ == 0) createWindow();
    return Window{framebuffer_, 2, 2};
  }
  void presented() override { ++presents; }

  std::vector<uint8_t> windowPixels() {
    std::vector<uint8_t> result(16);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    glReadPixels(0, 0, 2, 2, GL_RGBA, GL_UNSIGNED_BYTE, result.data());
    return result;
  }

 private:
  void createWindow() {
    GLuint color = 0;
    glGenFramebuffers(1, &framebuffer_);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    glGenRenderbuffers(1, &color);
    glBindRenderbuffer(GL_RENDERBUFFER, color);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 2, 2);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color);
  }
  GLuint framebuffer_ = 0;
};

/// Draws in screen coordinates: transforms are the identity, and at() maps pixels of the back buffer.
class GlDeviceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!context->inner) GTEST_SKIP() << "no OpenGL without a display here";
    ASSERT_EQ(createGlDevice(context, backBuffer(side, side), &device), D3D_OK);
    setUpStates();
  }

  void setUpStates() {
    device->SetRenderState(D3DRS_LIGHTING, 0);
    device->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
    device->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
    device->Clear(D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0xFF000000, 1, 0);
  }

  template <class Vertex>
  static Vertex at(Vertex vertex) {
    vertex.x = vertex.x * 2 / side - 1;
    vertex.y = 1 - vertex.y * 2 / side;
    return vertex;
  }

  /// A clockwise rectangle between two points of the screen.
  template <class Vertex>
  static std::vector<Vertex> box(float left, float top, float right, float bottom, Vertex vertex) {
    std::vector<Vertex> result;
    for (int i = 0; i < 4; ++i) {
      vertex.x = i % 2 ? right : left;
      vertex.y = i / 2 ? bottom : top;
      result.push_back(at(vertex));
      if constexpr (requires { vertex.u; }) {
        result.back().u = static_cast<float>(i % 2);
        result.back().v = static_cast<float>(i / 2);
      }
    }
    return result;
  }

  template <class Vertex>
  HRESULT drawBox(const std::vector<Vertex>& corners) {
    return drawVertices(*device, D3DPT_TRIANGLESTRIP, corners, 2);
  }

  /// 0xRRGGBB
  uint32_t pixel(uint32_t x, uint32_t y) {
    const std::vector<uint8_t> pixels = readGlBackBuffer(*device);
    const uint8_t* p = pixels.data() + (size_t{y} * side + x) * 4;
    return uint32_t{p[0]} << 16 | uint32_t{p[1]} << 8 | p[2];
  }
  uint32_t middle() { return pixel(side / 2, side / 2); }
  std::vector<ColorVertex> fullBox(D3DCOLOR color, float z = 0.5f) {
    return box(0, 0, side, side, ColorVertex{0, 0, z, color});
  }

  std::shared_ptr<TestContext> context = std::make_shared<TestContext>();
  std::shared_ptr<IDirect3DDevice9> device;
};

}  // namespace facet
