#include <epoxy/gl.h>

#include "canvas.h"

// What holds for the OpenGL device alone.

namespace facet {
namespace {

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

class GlDeviceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!context->inner) GTEST_SKIP() << "no OpenGL without a display here";
    ASSERT_EQ(createGlDevice(context, backBuffer(16, 16), &device), D3D_OK);
  }

  const std::vector<FullVertex> corners = {{0, 0}, {40, 0}, {0, 40}};
  std::shared_ptr<TestContext> context = std::make_shared<TestContext>();
  std::shared_ptr<IDirect3DDevice9> device;
};

TEST_F(GlDeviceTest, KeepsBuffersAndTexturesThroughALoss) {
  Canvas canvas(device);
  const auto buffer = makeVertices(*device, corners);
  const auto indices = device->CreateIndexBuffer({0, 1, 2});
  canvas.state.texture = makeTexture(*device, 2, 2, [](auto...) { return 0xFF00FF00; });
  const auto draw = [&] {
    canvas.clear();
    device->DrawIndexedPrimitive(buffer, indices);
    return canvas.pixel(1, 1);
  };
  EXPECT_EQ(draw(), 0x00FF00u);
  EXPECT_EQ(device->TestCooperativeLevel(), D3D_OK);

  context->lost = true;
  EXPECT_EQ(device->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
  canvas.clear();
  canvas.fill(red);
  device->Present();
  EXPECT_TRUE(readGlBackBuffer(*device).empty());
  EXPECT_EQ(device->Reset(backBuffer(16, 16, D3DFMT_D15S1)), D3DERR_NOTAVAILABLE);
  EXPECT_EQ(device->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
  EXPECT_EQ(device->Reset(backBuffer(16, 16)), D3D_OK);
  EXPECT_EQ(device->TestCooperativeLevel(), D3D_OK);
  EXPECT_EQ(draw(), 0x00FF00u);
}

TEST_F(GlDeviceTest, StretchesThePictureOverTheWindow) {
  Canvas canvas(device);
  canvas.rectangle(0, 0, 16, 8, {.color = 0xFFFF0000});
  canvas.rectangle(0, 8, 8, 16, {.color = 0xFF0000FF});
  device->Present();
  EXPECT_EQ(context->presents, 0u);
  context->withWindow = true;
  device->Present();
  EXPECT_EQ(context->presents, 1u);
  GLint sampler = -1, fill[2] = {};
  glGetIntegerv(GL_SAMPLER_BINDING, &sampler);
  glGetIntegerv(GL_POLYGON_MODE, fill);
  EXPECT_EQ(sampler, 0);  // the window's own drawing follows
  EXPECT_EQ(fill[0], GL_FILL);
  const std::vector<uint8_t> pixels = context->windowPixels();  // OpenGL's rows count from below
  EXPECT_EQ(pixels[8], 255);
  EXPECT_EQ(pixels[12], 255);
  EXPECT_EQ(pixels[2], 255);
  EXPECT_EQ(pixels[6], 0);
}

TEST_F(GlDeviceTest, RefusesWhatItCannotDo) {
  std::shared_ptr<IDirect3DDevice9> other;
  for (const D3DFORMAT depth : {D3DFMT_D15S1, D3DFMT_D24X4S4, D3DFMT_UNKNOWN})
    EXPECT_EQ(createGlDevice(context, backBuffer(4, 4, depth), &other), D3DERR_NOTAVAILABLE);
  EXPECT_EQ(createGlDevice(nullptr, backBuffer(4, 4), &other), D3DERR_NOTAVAILABLE);
  EXPECT_FALSE(other);
  EXPECT_EQ(createGlDevice(context, backBuffer(4, 4, D3DFMT_D16), &other), D3D_OK);
}

TEST_F(GlDeviceTest, ResourcesMayOutliveTheirDevice) {
  Canvas canvas(device);
  const auto buffer = makeVertices(*device, corners);
  const auto texture = makeTexture(*device, 2, 2, [](auto...) { return 0; });
  canvas.state.texture = texture;
  device->DrawPrimitive(D3DPT_TRIANGLELIST, buffer, 0, 1);
  canvas.device.reset();
  device.reset();
  context.reset();
  EXPECT_EQ(texture.use_count(), 1);
}

TEST_F(GlDeviceTest, DescribesItsAdapter) {
  D3DADAPTER_IDENTIFIER9 identifier;
  D3DCAPS9 caps;
  ASSERT_EQ(describeGlAdapter(*context, &identifier, &caps), D3D_OK);
  EXPECT_FALSE(identifier.Description.empty());
  EXPECT_GE(identifier.DriverVersion >> 48, 3u);
  context->lost = true;
  EXPECT_EQ(describeGlAdapter(*context, &identifier, &caps), D3DERR_NOTAVAILABLE);
}

}  // namespace
}  // namespace facet
