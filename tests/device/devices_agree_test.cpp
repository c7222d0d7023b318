#include <functional>
#include <random>
#include <tuple>

#include "canvas.h"
#include "support/picture_difference.h"

// The two devices draw the same generated scenes, and the pictures agree: the mean difference of a channel is
// at most 2 of 255, and at most one pixel in a hundred is off by more than 16.

namespace facet {
namespace {

constexpr uint32_t width = 320, height = 200;

constexpr std::pair<D3DTEXTUREFILTERTYPE, D3DTEXTUREFILTERTYPE> filters[] = {
    {D3DTEXF_POINT, D3DTEXF_NONE},        {D3DTEXF_LINEAR, D3DTEXF_NONE},
    {D3DTEXF_POINT, D3DTEXF_POINT},       {D3DTEXF_POINT, D3DTEXF_LINEAR},
    {D3DTEXF_LINEAR, D3DTEXF_POINT},      {D3DTEXF_LINEAR, D3DTEXF_LINEAR},
    {D3DTEXF_ANISOTROPIC, D3DTEXF_POINT}, {D3DTEXF_ANISOTROPIC, D3DTEXF_LINEAR},
};

/// Perspective of 60 degrees, left-handed; the eye is 2 above the ground and looks down a little along +z.
void setCamera(DeviceState& state) {
  const float s = std::sin(0.2f), c = std::cos(0.2f), near = 0.1f, far = 200;
  const float scale = 1 / std::tan(0.5236f), depth = far / (far - near);
  state.view.m = {{{1, 0, 0, 0}, {0, c, -s, 0}, {0, s, c, 0}, {0, -2 * c, 2 * s, 1}}};
  state.projection.m = {
      {{scale * height / width, 0, 0, 0}, {0, scale, 0, 0}, {0, 0, depth, 1}, {0, 0, -near * depth, 0}}};
}

void setSun(DeviceState& state) {
  state.material.Diffuse = {0.9f, 0.8f, 0.7f, 1};
  state.material.Ambient = {0.3f, 0.3f, 0.4f, 1};
  state.light.Diffuse = {1, 1, 0.8f, 1};
  state.light.Ambient = {0.5f, 0.5f, 0.5f, 1};
  state.light.Direction = {0.5f, -1, 0.7f};
  // A turn about all axes, which normals follow.
  state.world.m = {{{0.8f, 0, -0.6f, 0}, {0.36f, 0.8f, 0.48f, 0}, {0.48f, -0.6f, 0.64f, 0}, {-2, 1, 1, 1}}};
  state.lighting = state.lightEnable = true;
}

/// Smooth waves with a fine pattern over them, which the smaller levels show as its average.
std::shared_ptr<IDirect3DTexture9> patternTexture(IDirect3DDevice9& device) {
  return makeTexture(device, 64, 64, [](uint32_t level, uint32_t x, uint32_t y) {
    const auto wave = [&](uint32_t n) {
      const float turns = (static_cast<float>(n) + 0.5f) / static_cast<float>(64u >> level);
      return static_cast<uint32_t>(127 + 100 * std::sin(6.2832f * turns));
    };
    const uint32_t fine = level > 2 ? 130 : (x / (4 >> level) + y / (4 >> level)) % 2 ? 200 : 60;
    return wave(x * 2 + y) << 24 | wave(x) << 16 | fine << 8 | wave(3 * y);
  });
}

/// A ball of triangles, turning clockwise to the outside.
void drawBall(IDirect3DDevice9& device, uint32_t fvf, D3DVECTOR middle, float radius,
              D3DCOLOR color = white) {
  constexpr uint16_t rings = 10, sectors = 16;
  std::vector<FullVertex> vertices;
  std::vector<uint16_t> indices;
  for (uint16_t ring = 0; ring <= rings; ++ring) {
    for (uint16_t sector = 0; sector <= sectors; ++sector) {
      const float u = static_cast<float>(sector) / sectors, v = static_cast<float>(ring) / rings;
      const float polar = v * 3.14159f, turn = u * 6.28318f;
      const D3DVECTOR n{std::sin(polar) * std::cos(turn), std::cos(polar), std::sin(polar) * std::sin(turn)};
      vertices.push_back({middle.x + n.x * radius, middle.y + n.y * radius, middle.z + n.z * radius, n, color,
                          u * 4, v * 2});
      if (ring == rings || sector == sectors) continue;
      const auto at = [&](int dr, int ds) {
        return static_cast<uint16_t>((ring + dr) * (sectors + 1) + sector + ds);
      };
      indices.insert(indices.end(), {at(0, 0), at(0, 1), at(1, 0), at(1, 0), at(0, 1), at(1, 1)});
    }
  }
  device.DrawIndexedPrimitive(makeVertices(device, vertices, fvf), device.CreateIndexBuffer(indices));
}

/// Triangles all around a place, each of three colours.
void drawSplinters(IDirect3DDevice9& device, int count, D3DVECTOR middle, D3DVECTOR reach, float size) {
  std::mt19937 random(7);
  const auto around = [&](float at, float far) {
    return at + far * (static_cast<float>(random() >> 8) / 8388608.0f - 1);
  };
  std::vector<FullVertex> triangles;
  for (int i = 0; i < count; ++i) {
    const float x = around(middle.x, reach.x), y = around(middle.y, reach.y), z = around(middle.z, reach.z);
    for (int corner = 0; corner < 3; ++corner) {
      triangles.push_back({around(x, size), around(y, size), around(z, size)});
      triangles.back().color = 0xFF000000 | static_cast<D3DCOLOR>(random());
    }
  }
  draw(device, D3DPT_TRIANGLELIST, triangles, coloredParts);
}

class DevicesAgree : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::shared_ptr<GlContext> context = createEglContext();
    if (!context) GTEST_SKIP() << "no OpenGL without a display here";
    ASSERT_EQ(createGlDevice(context, backBuffer(width, height), &gl), D3D_OK);
    ASSERT_EQ(SoftwareDevice::create(backBuffer(width, height), &software), D3D_OK);
  }

  void expectSame(const std::string& name, const std::function<void(IDirect3DDevice9&)>& drawScene) {
    std::vector<uint8_t> pictures[2];
    for (IDirect3DDevice9* device : {gl.get(), software.get()}) {
      device->state = {};
      device->state.lighting = false;
      device->state.colorOp = D3DTOP_SELECTARG1;
      setCamera(device->state);
      device->Clear(0xFF7F7F7F);
      drawScene(*device);
      device->Present();
      pictures[device == gl.get()] = readBackBuffer(*device);
    }
    ASSERT_EQ(pictures[0].size(), pictures[1].size());
    const PictureDifference apart = differenceOf(pictures[0], pictures[1]);
    EXPECT_LE(apart.mean, 2) << name;
    EXPECT_LE(apart.share, 0.01) << name;
    const auto background = std::ranges::count(pictures[0], 0x7F);
    EXPECT_LE(background, width * height * 3 * 199 / 200) << name << " shows next to nothing";
  }

  std::shared_ptr<IDirect3DDevice9> gl, software;
};

/// A ground, a lit and textured crowd of balls, of all parts and without colours.
void drawCrowd(IDirect3DDevice9& device) {
  const float repeats = device.state.address == D3DTADDRESS_WRAP ? 0.3f : 0.0175f;  // in a unit of the ground
  std::vector<FullVertex> ground;
  for (const auto& [x, z] : {std::pair{-40.0f, -5.0f}, {-40.0f, 100.0f}, {40.0f, -5.0f}, {40.0f, 100.0f}})
    ground.push_back({x, 0, z, {0, 1, 0}, white, x * repeats, -z * repeats});
  draw(device, D3DPT_TRIANGLESTRIP, ground, texturedParts);
  drawBall(device, allParts, {-1, 2, 5}, 1.5f, 0xFFC06020);
  drawBall(device, texturedParts, {1, 1.5f, 6}, 1.5f);
  drawBall(device, allParts, {-8, 2, 22}, 2, 0xA02060C0);
}

// Each value of a state meets most values of the others.
TEST_F(DevicesAgree, InEveryState) {
  const D3DBLEND blends[] = {D3DBLEND_ONE, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA};
  for (uint32_t n = 0; n < 48; ++n) {
    expectSame("state " + std::to_string(n), [&](IDirect3DDevice9& device) {
      DeviceState& state = device.state;
      std::tie(state.filter, state.mipFilter) = filters[n % 8];
      state.address = n / 8 % 2 ? D3DTADDRESS_CLAMP : D3DTADDRESS_WRAP;
      if (n % 3) state.texture = patternTexture(device);
      if (n % 7 < 4) setSun(state);
      state.colorOp = n % 2 ? D3DTOP_MODULATE : D3DTOP_SELECTARG1;
      state.shadeMode = n % 5 < 2 ? D3DSHADE_FLAT : D3DSHADE_GOURAUD;
      const bool wires = n % 6 == 3;
      if (wires) state.fillMode = D3DFILL_WIREFRAME;
      state.cullMode = wires || n % 4 == 3 ? D3DCULL_NONE : D3DCULL_CCW;
      drawCrowd(device);
      state.alphaBlendEnable = n % 4 > 1;
      state.srcBlend = blends[n % 3];
      state.destBlend = blends[n / 3 % 3];
      state.alphaTestEnable = n % 11 < 4;
      state.alphaRef = 128;
      drawBall(device, texturedParts, {0.5f, 1.5f, 4}, 1);
    });
  }
}

TEST_F(DevicesAgree, OnLinesSmallTrianglesAndOnesAroundTheEye) {
  expectSame("grid", [](IDirect3DDevice9& device) {
    std::vector<FullVertex> lines;
    for (float v = -20; v <= 20; ++v) {
      for (const float end : {-20.0f, 20.0f}) {
        lines.insert(lines.begin(), {v, 0, end, {}, end < 0 ? white : 0xFF00FFFF});
        lines.push_back({end, 0, v, {}, end < 0 ? red : 0xFFFFFF00});
      }
    }
    draw(device, D3DPT_LINELIST, lines, coloredParts);
  });
  expectSame("splinters", [](auto& device) { drawSplinters(device, 2000, {0, 2, 8}, {6, 4, 6}, 0.5f); });
  for (const auto& [fill, shade] : {std::pair{D3DFILL_SOLID, D3DSHADE_FLAT},
                                    {D3DFILL_SOLID, D3DSHADE_GOURAUD},
                                    {D3DFILL_WIREFRAME, D3DSHADE_GOURAUD}}) {
    expectSame("around the eye, shade " + std::to_string(shade), [&](IDirect3DDevice9& device) {
      device.state.fillMode = fill;
      device.state.shadeMode = shade;
      device.state.cullMode = D3DCULL_NONE;
      drawSplinters(device, 60, {0, 0, 20}, {20, 10, 20}, 20);
    });
  }
}

}  // namespace
}  // namespace facet
