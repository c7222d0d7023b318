#include <gmock/gmock.h>

#include <cmath>

#include "device/reference/sampler.h"
#include "device/reference/transform_light.h"
#include "device/reference_scene.h"

namespace facet {
namespace {

constexpr uint32_t red = 0xFFFF0000, green = 0xFF00FF00, blue = 0xFF0000FF, white = 0xFFFFFFFF,
                   black = 0xFF000000;

D3DLIGHT9 lightAlong(D3DVECTOR direction) {
  D3DLIGHT9 light;
  light.Type = D3DLIGHT_DIRECTIONAL;
  light.Direction = direction;
  light.Diffuse = {1, 1, 1, 1};
  light.Ambient = {0.5f, 0.5f, 0.5f, 1};
  return light;
}

TEST(Lighting, AddsAmbientFromTheMaterialAndDiffuseFromTheVertex) {
  struct {
    const char* name;
    D3DVECTOR direction;
    bool lightOn;
    uint32_t color, expected;
  } const cases[] = {
      {"faces the light", {0, 0, 8}, true, 0xFFFF0000, 0xFF1A1A},  // 1 + 0.2 * 0.5 is at most 1
      {"half of it", {0, 1.7320508f, 1}, true, 0xFF800000, 0x5A1A1A},
      {"turned away", {0, 0, -1}, true, 0xFFFF0000, 0x1A1A1A},
      {"light off", {0, 0, 1}, false, 0xFFFF0000, 0x000000},
  };
  for (const auto& c : cases) {
    Scene scene;
    D3DMATERIAL9 material;
    material.Ambient = {0.2f, 0.2f, 0.2f, 1};
    scene.device->SetRenderState(D3DRS_LIGHTING, 1);
    scene.device->SetMaterial(material);
    scene.device->SetLight(0, lightAlong(c.direction));
    scene.device->LightEnable(0, c.lightOn);
    scene.rectangle(0, 0, 16, 16, 0.5f, c.color);
    EXPECT_EQ(scene.pixel(8, 8), c.expected) << c.name;
  }
}

TEST(Lighting, TurnsNormalsWithTheWorld) {
  D3DMATRIX turned;  // x to -z
  turned.m = {{{0, 0, -1, 0}, {0, 1, 0, 0}, {1, 0, 0, 0}, {0, 0, 0, 1}}};
  const D3DMATRIX normals = normalMatrix(turned);
  EXPECT_FLOAT_EQ(normals.m[0][2], -1);
  EXPECT_FLOAT_EQ(normals.m[2][0], 1);
  D3DMATRIX stretched;
  stretched.m = {{{2, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
  EXPECT_FLOAT_EQ(normalMatrix(stretched).m[0][0], 0.5f);
}

TEST(Stage, CombinesTextureAndVertexColor) {
  struct {
    const char* name;
    uint32_t op, first, second, expected;
  } const cases[] = {
      {"texture", D3DTOP_SELECTARG1, D3DTA_TEXTURE, D3DTA_CURRENT, 0x80FF00},
      {"second argument", D3DTOP_SELECTARG2, D3DTA_TEXTURE, D3DTA_CURRENT, 0xFF8040},
      {"diffuse", D3DTOP_SELECTARG1, D3DTA_DIFFUSE, D3DTA_TEXTURE, 0xFF8040},
      {"product", D3DTOP_MODULATE, D3DTA_TEXTURE, D3DTA_CURRENT, 0x808000},
      {"doubled", D3DTOP_MODULATE2X, D3DTA_TEXTURE, D3DTA_CURRENT, 0xFFFF00},
      {"disabled", D3DTOP_DISABLE, D3DTA_TEXTURE, D3DTA_CURRENT, 0xFF8040},
  };
  for (const auto& c : cases) {
    Scene scene;
    scene.texture(1, 1, 1, {0xFF80FF00});
    scene.device->SetTextureStageState(0, D3DTSS_COLOROP, c.op);
    scene.device->SetTextureStageState(0, D3DTSS_COLORARG1, c.first);
    scene.device->SetTextureStageState(0, D3DTSS_COLORARG2, c.second);
    scene.rectangle(0, 0, 16, 16, 0.5f, 0xFFFF8040);
    EXPECT_EQ(scene.pixel(8, 8), c.expected) << c.name;
    scene.device->SetTexture(0, nullptr);
    scene.rectangle(0, 0, 16, 16, 0.5f, 0xFFFF8040);
    EXPECT_EQ(scene.pixel(8, 8), 0xFF8040u) << c.name << ", without texture";
  }
}

TEST(AlphaTest, ComparesWithTheReference) {
  for (const auto& [alpha, seen] : {std::pair{127u, false}, {128u, false}, {129u, true}}) {
    Scene scene;
    scene.device->SetRenderState(D3DRS_ALPHATESTENABLE, 1);
    scene.device->SetRenderState(D3DRS_ALPHAFUNC, D3DCMP_GREATER);
    scene.device->SetRenderState(D3DRS_ALPHAREF, 128);
    scene.rectangle(0, 0, 16, 16, 0.2f, alpha << 24 | 0xFFFFFF);
    EXPECT_EQ(scene.pixel(8, 8) != 0, seen) << alpha;
    // What was not drawn hides nothing.
    scene.device->SetRenderState(D3DRS_ALPHATESTENABLE, 0);
    scene.rectangle(0, 0, 16, 16, 0.9f, red);
    EXPECT_EQ(scene.pixel(8, 8), seen ? 0xFFFFFFu : 0xFF0000u) << alpha;
  }
}

TEST(Blend, WeighsSourceAndPicture) {
  struct {
    uint32_t source, dest, expected;
  } const cases[] = {
      {D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA, 0x7F0080},
      {D3DBLEND_ONE, D3DBLEND_INVSRCALPHA, 0x7F00FF},
      {D3DBLEND_ONE, D3DBLEND_SRCALPHA, 0x8000FF},
      {D3DBLEND_ONE, D3DBLEND_ZERO, 0x0000FF},
      {D3DBLEND_ZERO, D3DBLEND_ONE, 0xFF0000},
  };
  for (const auto& c : cases) {
    Scene scene;
    scene.device->Clear(D3DCLEAR_TARGET, red, 1, 0);
    scene.device->SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
    scene.device->SetRenderState(D3DRS_SRCBLEND, c.source);
    scene.device->SetRenderState(D3DRS_DESTBLEND, c.dest);
    scene.rectangle(0, 0, 16, 16, 0.5f, 0x800000FF);
    EXPECT_EQ(scene.pixel(8, 8), c.expected) << c.source << ", " << c.dest;
  }
}

TEST(Sampler, TakesTheTexelUnderThePixel) {
  Scene scene;
  scene.texture(2, 2, 1, {red, green, blue, white});
  scene.rectangle(0, 0, 16, 16);
  EXPECT_EQ(scene.pixel(7, 7), 0xFF0000u);
  EXPECT_EQ(scene.pixel(8, 7), 0x00FF00u);
  EXPECT_EQ(scene.pixel(7, 8), 0x0000FFu);
  EXPECT_EQ(scene.pixel(15, 15), 0xFFFFFFu);
}

/// Draws a rectangle whose texture coordinates run from -1 to 3 over the 16 columns.
void drawRepeated(Scene& scene) {
  const SceneVertex corners[] = {{0, 0, 0.5f, white, -1, 0.5f},
                                 {16, 0, 0.5f, white, 3, 0.5f},
                                 {0, 16, 0.5f, white, -1, 0.5f},
                                 {16, 16, 0.5f, white, 3, 0.5f}};
  scene.setVertices(corners);
  scene.device->DrawPrimitive(D3DPT_TRIANGLESTRIP, 0, 2);
}

TEST(Sampler, RepeatsOrClamps) {
  Scene wrapped, clamped;
  wrapped.texture(2, 1, 1, {red, blue});
  drawRepeated(wrapped);
  clamped.texture(2, 1, 1, {red, blue});
  clamped.device->SetSamplerState(0, D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP);
  drawRepeated(clamped);
  EXPECT_EQ(wrapped.pixel(1, 8), 0xFF0000u);
  EXPECT_EQ(wrapped.pixel(3, 8), 0x0000FFu);
  EXPECT_EQ(wrapped.pixel(13, 8), 0xFF0000u);
  EXPECT_EQ(clamped.pixel(3, 8), 0xFF0000u);
  EXPECT_EQ(clamped.pixel(13, 8), 0x0000FFu);
}

TEST(Sampler, MixesNeighboursAndAcrossTheEdge) {
  for (const bool clamp : {false, true}) {
    Scene scene;
    scene.texture(2, 1, 1, {red, blue});
    scene.filter(D3DTEXF_LINEAR, D3DTEXF_LINEAR, D3DTEXF_NONE);
    if (clamp) scene.device->SetSamplerState(0, D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP);
    scene.rectangle(0, 0, 16, 16);
    EXPECT_EQ(scene.pixel(4, 8), 0xFF0000u);  // on a texel's centre
    EXPECT_EQ(scene.pixel(8, 8), 0x800080u);  // between two
    EXPECT_EQ(scene.pixel(0, 8), clamp ? 0xFF0000u : 0x800080u);
  }
}

/// A texture of 64 x 64 whose levels are red, green, blue, white and then black.
void setLevels(Scene& scene) {
  std::vector<uint32_t> texels;
  const uint32_t colors[] = {red, green, blue, white, black, black, black};
  for (uint32_t i = 0; i < 7; ++i) texels.insert(texels.end(), (64u >> i) * (64u >> i), colors[i]);
  scene.texture(64, 64, 7, texels);
}

TEST(Sampler, ChoosesTheLevelWhoseTexelsAreAsLargeAsPixels) {
  struct {
    const char* name;
    uint32_t filter, mip;
    float width, height;  // of the rectangle, in pixels
    uint32_t expected;
  } const cases[] = {
      {"enlarged", D3DTEXF_POINT, D3DTEXF_POINT, 128, 128, 0xFF0000},
      {"half", D3DTEXF_POINT, D3DTEXF_POINT, 32, 32, 0x00FF00},
      {"quarter", D3DTEXF_LINEAR, D3DTEXF_POINT, 16, 16, 0x0000FF},
      {"near a half", D3DTEXF_POINT, D3DTEXF_POINT, 24, 24, 0x00FF00},
      {"no mipmaps", D3DTEXF_POINT, D3DTEXF_NONE, 16, 16, 0xFF0000},
      {"longer side counts", D3DTEXF_POINT, D3DTEXF_POINT, 64, 16, 0x0000FF},
      {"shorter side counts", D3DTEXF_ANISOTROPIC, D3DTEXF_POINT, 64, 16, 0xFF0000},
      {"mixed", D3DTEXF_LINEAR, D3DTEXF_LINEAR, 22.627417f, 22.627417f, 0x008080},
  };
  for (const auto& c : cases) {
    Scene scene(64, 64);
    setLevels(scene);
    scene.filter(c.filter, c.filter, c.mip);
    scene.device->SetSamplerState(0, D3DSAMP_MAXANISOTROPY, 16);
    scene.rectangle(0, 0, c.width, c.height);
    const uint32_t seen = scene.pixel(5, 5);
    for (const int shift : {0, 8, 16}) {
      EXPECT_NEAR(seen >> shift & 255, c.expected >> shift & 255, 2) << c.name << ' ' << std::hex << seen;
    }
  }
}

TEST(Sampler, AveragesAlongTheLongSide) {
  Scene scene(64, 64);
  std::vector<uint32_t> stripes;
  for (uint32_t i = 0; i < 64 * 64; ++i) stripes.push_back((i / 64) % 2 ? white : black);  // rows
  scene.texture(64, 64, 1, stripes);
  scene.device->SetSamplerState(0, D3DSAMP_MAXANISOTROPY, 16);
  scene.filter(D3DTEXF_ANISOTROPIC, D3DTEXF_ANISOTROPIC, D3DTEXF_NONE);
  scene.rectangle(0, 0, 64, 8);
  for (uint32_t y = 1; y < 7; ++y) EXPECT_NEAR(scene.pixel(30, y) & 255, 128, 4);
}

TEST(Sampler, TakesNarrowTextures) {
  for (const uint32_t filter : {D3DTEXF_POINT, D3DTEXF_LINEAR, D3DTEXF_ANISOTROPIC}) {
    Scene scene;
    scene.texture(16384, 1, 1, std::vector<uint32_t>(16384, green));
    scene.filter(filter, filter, D3DTEXF_LINEAR);
    drawRepeated(scene);
    EXPECT_EQ(scene.pixel(8, 8), 0x00FF00u);
  }
}

TEST(Sampler, KnowsLogarithms) {
  for (float x = 1e-20f; x < 1e20f; x *= 1.37f) EXPECT_NEAR(approximateLog2(x), std::log2(x), 3e-5) << x;
}

}  // namespace
}  // namespace facet
