#include <functional>

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

void setFilter(IDirect3DDevice9& device, size_t number) {
  std::tie(device.state.filter, device.state.mipFilter) = filters[number];
}

/// Numbers that are the same on every machine.
class Dice {
 public:
  explicit Dice(uint32_t seed) : state_(seed) {}
  float between(float low, float high) {
    state_ = state_ * 1664525 + 1013904223;
    return low + (high - low) * static_cast<float>(state_ >> 8) / 16777216.0f;
  }

 private:
  uint32_t state_;
};

/// Perspective of 60 degrees, left-handed; the eye is in the origin and looks down a little along +z.
void setCamera(DeviceState& state, float eyeHeight, float pitch) {
  const float s = std::sin(pitch), c = std::cos(pitch), near = 0.1f, far = 200;
  const float scale = 1 / std::tan(0.5236f), depth = far / (far - near);
  state.view.m = {{{1, 0, 0, 0}, {0, c, -s, 0}, {0, s, c, 0}, {0, -eyeHeight * c, eyeHeight * s, 1}}};
  state.projection.m = {
      {{scale * height / width, 0, 0, 0}, {0, scale, 0, 0}, {0, 0, depth, 1}, {0, 0, -near * depth, 0}}};
}

/// Smooth waves with a fine pattern over them, which fades in the smaller levels as where they are averaged.
std::shared_ptr<IDirect3DTexture9> patternTexture(IDirect3DDevice9& device, uint32_t side) {
  return makeTexture(device, side, side, [&](uint32_t level, uint32_t x, uint32_t y) {
    const auto wave = [&](uint32_t n) {
      const float turns = (static_cast<float>(n) + 0.5f) / static_cast<float>(std::max(side >> level, 1u));
      return static_cast<uint32_t>(127 + 100 * std::sin(6.2832f * turns));
    };
    const uint32_t fine = level > 2 ? 130 : (x / (4 >> level) + y / (4 >> level)) % 2 ? 200 : 60;
    return wave(x * 2 + y) << 24 | wave(x) << 16 | fine << 8 | wave(3 * y);
  });
}

/// The ground from under the eye to the horizon.
void drawGround(IDirect3DDevice9& device, float repeats) {
  const auto corner = [&](float x, float z) {
    return TexturedVertex{x, 0, z, 0, 1, 0, x / 40 * repeats, -z / 40 * repeats};
  };
  draw(device, D3DPT_TRIANGLESTRIP,
       std::vector{corner(-40, -5), corner(-40, 100), corner(40, -5), corner(40, 100)});
}

/// A ball of triangles, turning clockwise to the outside.
template <class Vertex, class Make>
void drawBall(IDirect3DDevice9& device, float x, float y, float z, float radius, Make make) {
  constexpr uint16_t rings = 10, sectors = 16;
  std::vector<Vertex> vertices;
  std::vector<uint16_t> indices;
  for (uint16_t ring = 0; ring <= rings; ++ring) {
    for (uint16_t sector = 0; sector <= sectors; ++sector) {
      const float u = static_cast<float>(sector) / sectors, v = static_cast<float>(ring) / rings;
      const float polar = v * 3.14159f, turn = u * 6.28318f;
      const D3DVECTOR n{std::sin(polar) * std::cos(turn), std::cos(polar), std::sin(polar) * std::sin(turn)};
      vertices.push_back(make(x + n.x * radius, y + n.y * radius, z + n.z * radius, n, u * 4, v * 2));
      if (ring == rings || sector == sectors) continue;
      const auto at = [&](int dr, int ds) {
        return static_cast<uint16_t>((ring + dr) * (sectors + 1) + sector + ds);
      };
      indices.insert(indices.end(), {at(0, 0), at(0, 1), at(1, 0), at(1, 0), at(0, 1), at(1, 1)});
    }
  }
  device.DrawIndexedPrimitive(makeVertices(device, vertices), device.CreateIndexBuffer(indices));
}

void drawLitBall(IDirect3DDevice9& device, float x, float y, float z, float radius, D3DCOLOR color) {
  drawBall<FullVertex>(device, x, y, z, radius,
                       [=](float px, float py, float pz, D3DVECTOR n, float u, float v) {
                         return FullVertex{px, py, pz, n, color, u, v};
                       });
}

void drawTexturedBall(IDirect3DDevice9& device, float x, float y, float z, float radius) {
  drawBall<TexturedVertex>(device, x, y, z, radius,
                           [](float px, float py, float pz, D3DVECTOR n, float u, float v) {
                             return TexturedVertex{px, py, pz, n.x, n.y, n.z, u, v};
                           });
}

void setSun(DeviceState& state) {
  state.material.Diffuse = {0.9f, 0.8f, 0.7f, 1};
  state.material.Ambient = {0.3f, 0.3f, 0.4f, 1};
  state.light = {.Diffuse = {1, 1, 0.8f, 1},
                 .Specular = {},
                 .Ambient = {0.5f, 0.5f, 0.5f, 1},
                 .Direction = {0.5f, -1, 0.7f}};
  // A turn about y, which normals follow.
  state.world.m = {{{0.8f, 0, -0.6f, 0}, {0, 1, 0, 0}, {0.6f, 0, 0.8f, 0}, {-2, 0, 1, 1}}};
  state.lighting = state.lightEnable = true;
}

class DevicesAgree : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::shared_ptr<GlContext> context = createEglContext();
    if (!context) GTEST_SKIP() << "no OpenGL without a display here";
    ASSERT_EQ(createGlDevice(context, backBuffer(width, height), &gl), D3D_OK);
    ASSERT_EQ(SoftwareDevice::create(backBuffer(width, height), &software), D3D_OK);
  }

  void expectSame(const std::string& name, const std::function<void(IDirect3DDevice9&)>& draw) {
    std::vector<uint8_t> pictures[2];
    for (IDirect3DDevice9* device : {gl.get(), software.get()}) {
      device->state = {};
      device->state.lighting = false;
      device->state.colorOp = D3DTOP_SELECTARG1;
      setCamera(device->state, 2, 0.2f);
      device->Clear(0xFF7F7F7F);
      draw(*device);
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

TEST_F(DevicesAgree, InEveryFilterAndAddressMode) {
  for (const D3DTEXTUREADDRESS address : {D3DTADDRESS_WRAP, D3DTADDRESS_CLAMP}) {
    for (size_t i = 0; i < std::size(filters); ++i) {
      const auto draw = [&](IDirect3DDevice9& device) {
        setFilter(device, i);
        device.state.address = address;
        device.state.texture = patternTexture(device, 64);
        device.state.cullMode = D3DCULL_NONE;
        drawGround(device, address == D3DTADDRESS_WRAP ? 12 : 0.7f);
        drawTexturedBall(device, 1, 1.5f, 6, 1.2f);
        drawTexturedBall(device, -8, 2, 22, 2);
      };
      expectSame("filter " + std::to_string(i) + ", address " + std::to_string(address), draw);
    }
  }
}

TEST_F(DevicesAgree, InEveryShadingAndFillMode) {
  for (const D3DSHADEMODE shade : {D3DSHADE_FLAT, D3DSHADE_GOURAUD}) {
    for (const D3DFILLMODE fill : {D3DFILL_SOLID, D3DFILL_WIREFRAME}) {
      for (const bool lit : {false, true}) {
        const auto draw = [&](IDirect3DDevice9& device) {
          device.state.shadeMode = shade;
          device.state.fillMode = fill;
          if (fill == D3DFILL_WIREFRAME) device.state.cullMode = D3DCULL_NONE;
          if (lit) setSun(device.state);
          drawLitBall(device, -1, 2, 5, 1.5f, 0xFFC06020);
          drawLitBall(device, 1, 1.5f, 6, 1.5f, 0xFF2060C0);
          drawLitBall(device, 3, 1, 12, 2, 0xFFFFFFFF);
        };
        expectSame("shade " + std::to_string(shade) + ", fill " + std::to_string(fill) + (lit ? ", lit" : ""),
                   draw);
      }
    }
  }
}

TEST_F(DevicesAgree, InEveryBlendAndAlphaTest) {
  const D3DBLEND blends[] = {D3DBLEND_ONE, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA};
  for (const D3DBLEND source : blends) {
    for (const D3DBLEND destination : blends) {
      const auto draw = [&](IDirect3DDevice9& device) {
        DeviceState& state = device.state;
        setFilter(device, 5);
        setSun(state);
        state.colorOp = D3DTOP_MODULATE;
        state.texture = patternTexture(device, 64);
        drawTexturedBall(device, -0.5f, 1.5f, 6, 1.5f);
        state.alphaBlendEnable = true;
        state.srcBlend = source;
        state.destBlend = destination;
        drawTexturedBall(device, 0.5f, 1.5f, 4, 1);
        state.alphaTestEnable = true;
        state.alphaRef = 128;
        drawTexturedBall(device, -1.5f, 2, 3.5f, 0.7f);
      };
      expectSame("blend " + std::to_string(source) + ", " + std::to_string(destination), draw);
    }
  }
}

TEST_F(DevicesAgree, OnLinesAndSmallTriangles) {
  expectSame("grid", [](IDirect3DDevice9& device) {
    std::vector<ColorVertex> lines;
    for (float v = -20; v <= 20; ++v) {
      lines.insert(lines.end(), {{v, 0, -20, 0xFFFFFFFF}, {v, 0, 20, 0xFF00FFFF}});
      lines.insert(lines.end(), {{-20, 0, v, 0xFFFF0000}, {20, 0, v, 0xFFFFFF00}});
    }
    draw(device, D3DPT_LINELIST, lines);
  });
  expectSame("splinters", [](IDirect3DDevice9& device) {
    Dice dice(7);
    std::vector<ColorVertex> triangles;
    for (int i = 0; i < 2000; ++i) {
      const float x = dice.between(-6, 6), y = dice.between(-2, 6), z = dice.between(3, 14);
      const D3DCOLOR color = 0xFF000000 | static_cast<uint32_t>(dice.between(0, 16777215));
      for (int corner = 0; corner < 3; ++corner) {
        triangles.push_back({x + dice.between(-0.5f, 0.5f), y + dice.between(-0.5f, 0.5f),
                             z + dice.between(-0.5f, 0.5f), color});
      }
    }
    draw(device, D3DPT_TRIANGLELIST, triangles);
  });
}

TEST_F(DevicesAgree, OnTrianglesThatReachBehindTheEyeOrOutOfThePicture) {
  for (const D3DFILLMODE fill : {D3DFILL_SOLID, D3DFILL_WIREFRAME}) {
    expectSame("around the eye, fill " + std::to_string(fill), [&](IDirect3DDevice9& device) {
      device.state.fillMode = fill;
      device.state.cullMode = D3DCULL_NONE;
      Dice dice(3);
      std::vector<ColorVertex> triangles;
      for (int i = 0; i < 60; ++i) {
        const D3DCOLOR color = 0xFF000000 | static_cast<uint32_t>(dice.between(0, 16777215));
        for (int corner = 0; corner < 3; ++corner)
          triangles.push_back({dice.between(-40, 40), dice.between(-20, 20), dice.between(-20, 60), color});
      }
      draw(device, D3DPT_TRIANGLELIST, triangles);
    });
  }
}

TEST_F(DevicesAgree, OnTexturesOfOddShapes) {
  for (const auto& [w, h] : {std::pair{1u, 512u}, {16384u, 1u}, {5u, 3u}, {100u, 37u}}) {
    for (const size_t filter : {0u, 2u, 5u, 7u}) {
      const auto draw = [&](IDirect3DDevice9& device) {
        setFilter(device, filter);
        device.state.texture = makeTexture(device, w, h, [&](uint32_t, uint32_t x, uint32_t y) {
          return 0xFF000000 | x * 255 / w << 16 | y * 255 / h << 8 | 0x40;
        });
        drawTexturedBall(device, 0, 2, 5, 2);
      };
      expectSame(std::to_string(w) + " x " + std::to_string(h) + ", filter " + std::to_string(filter), draw);
    }
  }
}

}  // namespace
}  // namespace facet
