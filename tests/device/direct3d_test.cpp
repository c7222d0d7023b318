#include "canvas.h"
#include "picture/pixels.h"
#include "support/recording_device.h"

namespace facet {
namespace {

/// A driver that is there but does not work.
class BrokenContext : public GlContext {
 public:
  bool makeCurrent() override { return false; }
  bool restore() override { return false; }
};

struct Root {
  HRESULT create(D3DDEVTYPE type, D3DPRESENT_PARAMETERS parameters = backBuffer(3, 2)) {
    return direct3d->CreateDevice(0, type, nullptr, D3DCREATE_SOFTWARE_VERTEXPROCESSING, &parameters,
                                  &device);
  }

  int asked = 0;
  std::shared_ptr<GlContext> context;
  std::shared_ptr<IDirect3D9> direct3d = Direct3DCreate9(
      D3D_SDK_VERSION, {{640, 480, 60, D3DFMT_X8R8G8B8}, [this] { return ++asked, context; }});
  std::shared_ptr<IDirect3DDevice9> device;
};

TEST(Direct3D, IsThereForItsOwnVersionOnly) {
  EXPECT_EQ(Direct3DCreate9(31, {}), nullptr);
  D3DDISPLAYMODE mode;
  EXPECT_EQ(Root().direct3d->GetAdapterDisplayMode(0, &mode), D3D_OK);
  EXPECT_EQ(mode.Width, 640u);
}

TEST(Direct3D, OnlyTheReferenceRowNeedsNothing) {
  for (const bool driver : {false, true}) {
    Root root;
    if (driver) root.context = std::make_shared<BrokenContext>();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(root.create(D3DDEVTYPE_HAL), D3DERR_NOTAVAILABLE);
    EXPECT_EQ(root.asked, 1) << "a driver is slow to start";
    EXPECT_EQ(root.create(D3DDEVTYPE_SW), D3DERR_NOTAVAILABLE);
    EXPECT_NE(root.create(D3DDEVTYPE_REF, backBuffer(3, 0)), D3D_OK);
    EXPECT_EQ(root.device, nullptr);
    EXPECT_EQ(root.create(D3DDEVTYPE_REF), D3D_OK);

    D3DCAPS9 caps;
    EXPECT_NE(root.direct3d->GetDeviceCaps(0, D3DDEVTYPE_HAL, &caps), D3D_OK);
    EXPECT_EQ(root.direct3d->GetDeviceCaps(0, D3DDEVTYPE_REF, &caps), D3D_OK);
    EXPECT_EQ(caps.MaxTextureWidth, softwareCaps().MaxTextureWidth);
    D3DADAPTER_IDENTIFIER9 identifier;
    EXPECT_EQ(root.direct3d->GetAdapterIdentifier(0, &identifier), D3D_OK);
    EXPECT_NE(identifier.Description, "");
  }
}

/// A picture whose levels hold the words 0, 1, 2 ... one after the other.
Image countingImage(D3DFORMAT format, uint32_t width, uint32_t height, uint32_t levels) {
  Image image;
  image.info = {.Width = width, .Height = height, .MipLevels = levels, .Format = format};
  uint32_t next = 0;
  for (uint32_t i = 0; i < levels; ++i) {
    std::vector<uint32_t> words((levelBytes(format, width >> i, height >> i) + 3) / 4);
    for (uint32_t& word : words) word = next++;
    const auto bytes = std::as_bytes(std::span(words));
    image.levels.push_back({width >> i, height >> i, {bytes.begin(), bytes.end()}});
  }
  return image;
}

TEST(Texture, TakesTheLevelsOfThePictureAndPointSamplesWhatItLacks) {
  const D3DFORMAT argb = D3DFMT_A8R8G8B8;
  const struct {
    const char* name;
    Image image;
    uint32_t width, height, count;
    D3DFORMAT format;
    std::vector<std::vector<uint32_t>> levels;
  } cases[] = {
      {"as it is", countingImage(argb, 4, 2, 2), 4, 2, 2, argb, {{0, 1, 2, 3, 4, 5, 6, 7}, {8, 9}}},
      {"fewer levels", countingImage(argb, 2, 2, 2), 2, 2, 1, argb, {{0, 1, 2, 3}}},
      {"more", countingImage(argb, 4, 2, 1), 4, 2, 9, argb, {{0, 1, 2, 3, 4, 5, 6, 7}, {5, 7}, {7}}},
      {"halved", countingImage(argb, 4, 4, 3), 2, 2, 2, argb, {{5, 7, 13, 15}, {15}}},
      {"twice as wide", countingImage(argb, 2, 1, 1), 4, 1, 1, argb, {{0, 0, 1, 1}}},
      {"blocks", countingImage(D3DFMT_DXT3, 4, 4, 1), 4, 4, 1, D3DFMT_DXT3, {{0, 1, 2, 3}}},
      {"converted", countingImage(D3DFMT_R8G8B8, 1, 1, 1), 1, 1, 1, argb, {{0xFF000000}}},
  };
  for (const auto& c : cases) {
    RecordingDevice device;
    const auto texture = createTexture(device, c.image, c.width, c.height, c.count);
    const auto& recorded = static_cast<RecordedTexture&>(*texture);
    EXPECT_EQ(recorded.format, c.format) << c.name;
    ASSERT_EQ(recorded.levels.size(), c.levels.size()) << c.name;
    for (size_t i = 0; i < c.levels.size(); ++i) {
      const ImageLevel& level = recorded.levels[i];
      EXPECT_EQ(std::pair(level.width, level.height),
                std::pair(std::max(c.width >> i, 1u), std::max(c.height >> i, 1u)));
      EXPECT_TRUE(std::ranges::equal(level.bytes, std::as_bytes(std::span(c.levels[i])))) << c.name;
    }
    device.creationsLeft = 0;
    EXPECT_FALSE(createTexture(device, c.image, c.width, c.height, c.count)) << "refused";
  }
}

}  // namespace
}  // namespace facet
