#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>

#include "device/direct3d.h"
#include "device/gl/egl_context.h"
#include "device/gl/gl_device.h"
#include "device/reference/device.h"
#include "drawing.h"
#include "support/picture_difference.h"

// The two devices draw the same generated scenes, and the pictures agree: the mean difference of a channel is
// at most 2 of 255, and at most one pixel in a hundred is off by more than 16.

namespace facet {
namespace {

constexpr uint32_t width = 320, height = 200;

struct Filter {
  uint32_t min, mag, mip;
};
constexpr Filter filters[] = {
    {D3DTEXF_POINT, D3DTEXF_POINT, D3DTEXF_NONE},
    {D3DTEXF_LINEAR, D3DTEXF_LINEAR, D3DTEXF_NONE},
    {D3DTEXF_POINT, D3DTEXF_POINT, D3DTEXF_POINT},
    {D3DTEXF_POINT, D3DTEXF_POINT, D3DTEXF_LINEAR},
    {D3DTEXF_LINEAR, D3DTEXF_LINEAR, D3DTEXF_POINT},
    {D3DTEXF_LINEAR, D3DTEXF_LINEAR, D3DTEXF_LINEAR},
    {D3DTEXF_ANISOTROPIC, D3DTEXF_ANISOTROPIC, D3DTEXF_POINT},
    {D3DTEXF_ANISOTROPIC, D3DTEXF_ANISOTROPIC, D3DTEXF_LINEAR},
};

void setFilter(IDirect3DDevice9& device, const Filter& filter) {
  device.SetSamplerState(0, D3DSAMP_MINFILTER, filter.min);
  device.SetSamplerState(0, D3DSAMP_MAGFILTER, filter.mag);
  device.SetSamplerState(0, D3DSAMP_MIPFILTER, filter.mip);
  device.SetSamplerState(0, D3DSAMP_MAXANISOTROPY, 16);
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
void setCamera(IDirect3DDevice9& device, float eyeHeight, float pitch) {
  const float s = std::sin(pitch), c = std::cos(pitch), near = 0.1f, far = 200;
  D3DMATRIX view, projection;
  view.m = {{{1, 0, 0, 0}, {0, c, -s, 0}, {0, s, c, 0}, {0, -eyeHeight * c, eyeHeight * s, 1}}};
  const float scale = 1 / std::tan(0.5236f), depth = far / (far - near);
  projection.m = {
      {{scale * height / width, 0, 0, 0}, {0, scale, 0, 0}, {0, 0, depth, 1}, {0, 0, -near * depth, 0}}};
  device.SetTransform(D3DTS_VIEW, view);
  device.SetTransform(D3DTS_PROJECTION, projection);
}

/// Smooth waves with a fine pattern over them, each level averaged from the one before as artists' tools do.
std::shared_ptr<IDirect3DTexture9> patternTexture(IDirect3DDevice9& device, uint32_t side) {
  std::vector<std::vector<uint32_t>> levels(1);
  for (uint32_t y = 0; y < side; ++y) {
    for (uint32_t x = 0; x < side; ++x) {
      const auto wave = [&](uint32_t n) {
        return static_cast<uint32_t>(
            127 + 100 * std::sin(6.2832f * static_cast<float>(n) / static_cast<float>(side)));
      };
      const uint32_t fine = (x / 4 + y / 4) % 2 ? 200 : 60;
      levels[0].push_back(wave(x * 2 + y) << 24 | wave(x) << 16 | fine << 8 | wave(3 * y));
    }
  }
  for (uint32_t from = side; from > 1; from /= 2) {
    const std::vector<uint32_t> above = levels.back();
    std::vector<uint32_t> level;
    for (uint32_t y = 0; y < from; y += 2) {
      for (uint32_t x = 0; x < from; x += 2) {
        uint32_t pixel = 0;
        for (const uint32_t shift : {0, 8, 16, 24}) {
          const auto at = [&](uint32_t dx, uint32_t dy) {
            return above[(y + dy) * from + x + dx] >> shift & 0xFF;
          };
          pixel |= (at(0, 0) + at(1, 0) + at(0, 1) + at(1, 1) + 2) / 4 << shift;
        }
        level.push_back(pixel);
      }
    }
    levels.push_back(level);
  }
  return makeTexture(device, side, side, 0, [&](uint32_t level, uint32_t x, uint32_t y) {
    return levels[level][y * std::max(side >> level, 1u) + x];
  });
}

/// The ground from under the eye to the horizon.
void drawGround(IDirect3DDevice9& device, float repeats) {
  const auto corner = [&](float x, float z) {
    return TexturedVertex{x, 0, z, 0, 1, 0, x / 40 * repeats, -z / 40 * repeats};
  };
  drawVertices(device, D3DPT_TRIANGLESTRIP,
               std::vector{corner(-40, -5), corner(-40, 100), corner(40, -5), corner(40, 100)}, 2);
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
      const float nx = std::sin(polar) * std::cos(turn), ny = std::cos(polar),
                  nz = std::sin(polar) * std::sin(turn);
      vertices.push_back(make(x + nx * radius, y + ny * radius, z + nz * radius, nx, ny, nz, u * 4, v * 2));
      if (ring == rings || sector == sectors) continue;
      const auto at = [&](int dr, int ds) {
        return static_cast<uint16_t>((ring + dr) * (sectors + 1) + sector + ds);
      };
      indices.insert(indices.end(), {at(0, 0), at(0, 1), at(1, 0), at(1, 0), at(0, 1), at(1, 1)});
    }
  }
  device.SetFVF(Vertex::fvf);
  device.SetStreamSource(0, makeVertices(device, vertices), 0, sizeof(Vertex));
  device.SetIndices(makeIndices(device, indices));
  device.DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, static_cast<uint32_t>(vertices.size()), 0,
                              static_cast<uint32_t>(indices.size() / 3));
}

void drawLitBall(IDirect3DDevice9& device, float x, float y, float z, float radius, D3DCOLOR color) {
  drawBall<LitVertex>(device, x, y, z, radius,
                      [=](float px, float py, float pz, float nx, float ny, float nz, float, float) {
                        return LitVertex{px, py, pz, nx, ny, nz, color};
                      });
}

void drawTexturedBall(IDirect3DDevice9& device, float x, float y, float z, float radius) {
  drawBall<TexturedVertex>(device, x, y, z, radius, [](auto... parts) { return TexturedVertex{parts...}; });
}

void setSun(IDirect3DDevice9& device) {
  D3DMATERIAL9 material;
  material.Diffuse = {0.9f, 0.8f, 0.7f, 1};
  material.Ambient = {0.3f, 0.3f, 0.4f, 1};
  D3DLIGHT9 light;
  light.Type = D3DLIGHT_DIRECTIONAL;
  light.Diffuse = {1, 1, 0.8f, 1};
  light.Ambient = {0.5f, 0.5f, 0.5f, 1};
  light.Direction = {0.5f, -1, 0.7f};
  device.SetMaterial(material);
  D3DMATRIX world;  // a turn about y, which normals follow
  world.m = {{{0.8f, 0, -0.6f, 0}, {0, 1, 0, 0}, {0.6f, 0, 0.8f, 0}, {-2, 0, 1, 1}}};
  device.SetTransform(D3DTS_WORLD, world);
  device.SetLight(0, light);
  device.LightEnable(0, true);
  device.SetRenderState(D3DRS_LIGHTING, 1);
}

class DevicesAgree : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::shared_ptr<GlContext> context = createEglContext();
    if (!context) GTEST_SKIP() << "no OpenGL without a display here";
    ASSERT_EQ(createGlDevice(context, backBuffer(width, height), &gl), D3D_OK);
    ASSERT_EQ(ReferenceDevice::create(backBuffer(width, height), 0, &reference), D3D_OK);
  }

  static void start(IDirect3DDevice9& device) {
    device.Reset(backBuffer(width, height));
    device.SetRenderState(D3DRS_LIGHTING, 0);
    device.SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
    device.Clear(D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0xFF7F7F7F, 1, 0);
    device.BeginScene();
    setCamera(device, 2, 0.2f);
  }

  void expectSame(const std::string& name, const std::function<void(IDirect3DDevice9&)>& draw) {
    for (IDirect3DDevice9* device : {gl.get(), static_cast<IDirect3DDevice9*>(reference.get())}) {
      start(*device);
      draw(*device);
      device->EndScene();
      device->Present();
    }
    const std::vector<uint8_t> ours = readBackBuffer(*gl), theirs = readBackBuffer(*reference);
    ASSERT_EQ(ours.size(), theirs.size());
    const PictureDifference apart = differenceOf(ours, theirs);
    EXPECT_LE(apart.mean, 2) << name;
    EXPECT_LE(apart.share, 0.01) << name;
    const auto background = std::ranges::count(reference->backBuffer(), 0xFF7F7F7F);
    EXPECT_LE(background, width * height * 199 / 200) << name << " shows next to nothing";
  }

  std::shared_ptr<IDirect3DDevice9> gl;
  std::shared_ptr<ReferenceDevice> reference;
};

TEST_F(DevicesAgree, InEveryFilterAndAddressMode) {
  for (const uint32_t address : {D3DTADDRESS_WRAP, D3DTADDRESS_CLAMP}) {
    for (size_t i = 0; i < std::size(filters); ++i) {
      const auto draw = [&](IDirect3DDevice9& device) {
        setFilter(device, filters[i]);
        device.SetSamplerState(0, D3DSAMP_ADDRESSU, address);
        device.SetSamplerState(0, D3DSAMP_ADDRESSV, address);
        device.SetTexture(0, patternTexture(device, 64));
        device.SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
        drawGround(device, address == D3DTADDRESS_WRAP ? 12 : 0.7f);
        drawTexturedBall(device, 1, 1.5f, 6, 1.2f);
        drawTexturedBall(device, -8, 2, 22, 2);
      };
      expectSame("filter " + std::to_string(i) + ", address " + std::to_string(address), draw);
    }
  }
}

TEST_F(DevicesAgree, InEveryShadingAndFillMode) {
  for (const uint32_t shade : {D3DSHADE_FLAT, D3DSHADE_GOURAUD}) {
    for (const uint32_t fill : {D3DFILL_SOLID, D3DFILL_WIREFRAME}) {
      for (const bool lit : {false, true}) {
        const auto draw = [&](IDirect3DDevice9& device) {
          device.SetRenderState(D3DRS_SHADEMODE, shade);
          device.SetRenderState(D3DRS_FILLMODE, fill);
          if (lit) setSun(device);
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
  const uint32_t blends[] = {D3DBLEND_ZERO, D3DBLEND_ONE, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA};
  for (const uint32_t source : blends) {
    for (const uint32_t destination : blends) {
      const auto draw = [&](IDirect3DDevice9& device) {
        setFilter(device, filters[5]);
        setSun(device);
        device.SetTextureStageState(0, D3DTSS_COLOROP,
                                    source == D3DBLEND_ONE ? D3DTOP_MODULATE2X : D3DTOP_MODULATE);
        device.SetTexture(0, patternTexture(device, 64));
        drawTexturedBall(device, -0.5f, 1.5f, 6, 1.5f);
        device.SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
        device.SetRenderState(D3DRS_SRCBLEND, source);
        device.SetRenderState(D3DRS_DESTBLEND, destination);
        drawTexturedBall(device, 0.5f, 1.5f, 4, 1);
        device.SetRenderState(D3DRS_ALPHATESTENABLE, 1);
        device.SetRenderState(D3DRS_ALPHAFUNC, D3DCMP_GREATER);
        device.SetRenderState(D3DRS_ALPHAREF, 128);
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
    drawVertices(device, D3DPT_LINELIST, lines, static_cast<uint32_t>(lines.size() / 2));
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
    drawVertices(device, D3DPT_TRIANGLELIST, triangles, 2000);
  });
}

TEST_F(DevicesAgree, OnTrianglesThatReachBehindTheEyeOrOutOfThePicture) {
  for (const uint32_t fill : {D3DFILL_SOLID, D3DFILL_WIREFRAME}) {
    expectSame("around the eye, fill " + std::to_string(fill), [&](IDirect3DDevice9& device) {
      device.SetRenderState(D3DRS_FILLMODE, fill);
      device.SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
      Dice dice(3);
      std::vector<ColorVertex> triangles;
      for (int i = 0; i < 60; ++i) {
        const D3DCOLOR color = 0xFF000000 | static_cast<uint32_t>(dice.between(0, 16777215));
        for (int corner = 0; corner < 3; ++corner)
          triangles.push_back({dice.between(-40, 40), dice.between(-20, 20), dice.between(-20, 60), color});
      }
      drawVertices(device, D3DPT_TRIANGLELIST, triangles, 60);
    });
  }
}

TEST_F(DevicesAgree, OnTexturesOfOddShapes) {
  for (const auto& [w, h] : {std::pair{1u, 512u}, {16384u, 1u}, {5u, 3u}, {100u, 37u}}) {
    for (const size_t filter : {0u, 2u, 5u, 7u}) {
      const auto draw = [&](IDirect3DDevice9& device) {
        setFilter(device, filters[filter]);
        device.SetTexture(0, makeTexture(device, w, h, 0, [&](uint32_t, uint32_t x, uint32_t y) {
                            return 0xFF000000 | x * 255 / w << 16 | y * 255 / h << 8 | 0x40;
                          }));
        drawTexturedBall(device, 0, 2, 5, 2);
      };
      expectSame(std::to_string(w) + " x " + std::to_string(h) + ", filter " + std::to_string(filter), draw);
    }
  }
}

}  // namespace
}  // namespace facet
