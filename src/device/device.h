#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "picture/image.h"

// The part of Direct3D 9 that the program uses, under Direct3D's own names: whoever knows Direct3D reads a
// frame at once. What all devices have in common, the state, is one plain record; a device brings only what
// differs: buffers and textures, clearing, drawing, presenting. There is the software device
// (device/software) and the OpenGL one (device/gl); tests bring one that records.
//
// Only what the program sets is here. Everything else is the same in every draw, and a device may rely on it:
//   D3DRS_ZENABLE = D3DZB_TRUE, D3DRS_ZWRITEENABLE = TRUE, D3DRS_ZFUNC = D3DCMP_LESS
//   D3DRS_ALPHAFUNC = D3DCMP_GREATER, D3DRS_AMBIENT = 0, D3DRS_SPECULARENABLE = FALSE
//   D3DSAMP_MAXANISOTROPY = the largest that the device has
//   D3DTSS_COLORARG1 = D3DTA_TEXTURE, D3DTSS_COLORARG2 = D3DTA_CURRENT
//   D3DTSS_ALPHAOP = D3DTOP_SELECTARG1, D3DTSS_ALPHAARG1 = D3DTA_TEXTURE
// A stage without texture, or with vertices without texture coordinates, passes the vertex colour on.
//
// Interfaces are held by shared_ptr: releasing one means dropping it. Matrices multiply row vectors,
// left-handed. Any operation that takes memory may throw std::bad_alloc.

namespace facet {

using HRESULT = int32_t;
using D3DCOLOR = uint32_t;  ///< 0xAARRGGBB

constexpr HRESULT hresult(uint32_t code) {
  return static_cast<HRESULT>(code);
}
inline constexpr HRESULT D3D_OK = 0;
inline constexpr HRESULT D3DERR_OUTOFVIDEOMEMORY = hresult(0x8876017C);
inline constexpr HRESULT D3DERR_DEVICELOST = hresult(0x88760868);
inline constexpr HRESULT D3DERR_DEVICENOTRESET = hresult(0x88760869);
inline constexpr HRESULT D3DERR_NOTAVAILABLE = hresult(0x8876086A);

inline constexpr uint32_t D3D_SDK_VERSION = 32;
inline constexpr uint32_t D3DADAPTER_DEFAULT = 0;

enum D3DDEVTYPE : uint32_t { D3DDEVTYPE_HAL = 1, D3DDEVTYPE_REF = 2, D3DDEVTYPE_SW = 3 };
inline constexpr uint32_t D3DCREATE_PUREDEVICE = 0x10;
inline constexpr uint32_t D3DCREATE_SOFTWARE_VERTEXPROCESSING = 0x20;
inline constexpr uint32_t D3DCREATE_HARDWARE_VERTEXPROCESSING = 0x40;
inline constexpr uint32_t D3DCREATE_MIXED_VERTEXPROCESSING = 0x80;
inline constexpr uint32_t D3DSWAPEFFECT_DISCARD = 1;
inline constexpr uint32_t D3DPRESENT_INTERVAL_IMMEDIATE = 0x80000000;

inline constexpr uint32_t D3DFVF_XYZ = 0x002;
inline constexpr uint32_t D3DFVF_NORMAL = 0x010;
inline constexpr uint32_t D3DFVF_DIFFUSE = 0x040;
inline constexpr uint32_t D3DFVF_TEX1 = 0x100;

enum D3DPRIMITIVETYPE : uint32_t { D3DPT_LINELIST = 2, D3DPT_TRIANGLELIST = 4, D3DPT_TRIANGLESTRIP = 5 };
enum D3DFILLMODE : uint32_t { D3DFILL_WIREFRAME = 2, D3DFILL_SOLID = 3 };
enum D3DSHADEMODE : uint32_t { D3DSHADE_FLAT = 1, D3DSHADE_GOURAUD = 2 };
enum D3DCULL : uint32_t { D3DCULL_NONE = 1, D3DCULL_CCW = 3 };
enum D3DBLEND : uint32_t {
  D3DBLEND_ZERO = 1,
  D3DBLEND_ONE = 2,
  D3DBLEND_SRCALPHA = 5,
  D3DBLEND_INVSRCALPHA = 6,
};
enum D3DTEXTUREADDRESS : uint32_t { D3DTADDRESS_WRAP = 1, D3DTADDRESS_CLAMP = 3 };
enum D3DTEXTUREFILTERTYPE : uint32_t {
  D3DTEXF_NONE = 0,
  D3DTEXF_POINT = 1,
  D3DTEXF_LINEAR = 2,
  D3DTEXF_ANISOTROPIC = 3,
};
enum D3DTEXTUREOP : uint32_t { D3DTOP_SELECTARG1 = 2, D3DTOP_MODULATE = 4 };

struct D3DVECTOR {
  float x = 0, y = 0, z = 0;
};
struct D3DCOLORVALUE {
  float r = 0, g = 0, b = 0, a = 0;
};
struct D3DMATRIX {
  std::array<std::array<float, 4>, 4> m{};
};
inline constexpr D3DMATRIX identityMatrix{{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}};
struct D3DMATERIAL9 {
  D3DCOLORVALUE Diffuse, Ambient, Specular;
  float Power = 0;
};
/// D3DLIGHT_DIRECTIONAL, as all lights are.
struct D3DLIGHT9 {
  D3DCOLORVALUE Diffuse, Specular, Ambient;
  D3DVECTOR Direction;
};

struct D3DDISPLAYMODE {
  uint32_t Width = 0, Height = 0, RefreshRate = 0;  ///< pixels, Hz
  D3DFORMAT Format = D3DFMT_UNKNOWN;
};
struct D3DPRESENT_PARAMETERS {
  uint32_t BackBufferWidth = 0, BackBufferHeight = 0;
  D3DFORMAT BackBufferFormat = D3DFMT_UNKNOWN;
  uint32_t BackBufferCount = 0;
  uint32_t SwapEffect = 0;
  void* hDeviceWindow = nullptr;
  bool Windowed = false;
  bool EnableAutoDepthStencil = false;
  D3DFORMAT AutoDepthStencilFormat = D3DFMT_UNKNOWN;
  uint32_t PresentationInterval = 0;
};
struct D3DCAPS9 {
  uint32_t MaxTextureWidth = 0, MaxTextureHeight = 0;
  uint32_t MaxAnisotropy = 0;
  uint32_t VertexShaderVersion = 0, PixelShaderVersion = 0;
};
struct D3DADAPTER_IDENTIFIER9 {
  std::string Driver, Description;
  uint64_t DriverVersion = 0;
  uint32_t VendorId = 0, DeviceId = 0, SubSysId = 0, Revision = 0;
};

// Handles of what a device holds. Contents are given at creation and never change.
class IDirect3DVertexBuffer9 {
 public:
  virtual ~IDirect3DVertexBuffer9() = default;
};
class IDirect3DIndexBuffer9 {
 public:
  virtual ~IDirect3DIndexBuffer9() = default;
};
class IDirect3DTexture9 {
 public:
  virtual ~IDirect3DTexture9() = default;

  /// Does now what the first draw would have to: on any thread, as long as nothing is drawn with the texture.
  virtual void PreLoad() {}
};

/// What the next draws are drawn with, under Direct3D's names and with Direct3D's values before anybody sets
/// them.
struct DeviceState {
  // D3DRS_...
  D3DFILLMODE fillMode = D3DFILL_SOLID;  ///< wires are drawn without culling
  D3DSHADEMODE shadeMode = D3DSHADE_GOURAUD;
  D3DCULL cullMode = D3DCULL_CCW;
  bool lighting = true;
  bool alphaTestEnable = false;
  uint32_t alphaRef = 0;  ///< 0 .. 255
  bool alphaBlendEnable = false;
  D3DBLEND srcBlend = D3DBLEND_ONE, destBlend = D3DBLEND_ZERO;

  // Sampler 0 and stage 0.
  std::shared_ptr<IDirect3DTexture9> texture;
  D3DTEXTUREADDRESS address = D3DTADDRESS_WRAP;   ///< D3DSAMP_ADDRESSU and D3DSAMP_ADDRESSV
  D3DTEXTUREFILTERTYPE filter = D3DTEXF_POINT;    ///< D3DSAMP_MINFILTER and D3DSAMP_MAGFILTER
  D3DTEXTUREFILTERTYPE mipFilter = D3DTEXF_NONE;  ///< anything but D3DTEXF_ANISOTROPIC
  D3DTEXTUREOP colorOp = D3DTOP_MODULATE;

  D3DMATRIX world = identityMatrix, view = identityMatrix, projection = identityMatrix;
  D3DMATERIAL9 material;
  D3DLIGHT9 light;  ///< number 0
  bool lightEnable = false;
};

class IDirect3DDevice9 {
 public:
  virtual ~IDirect3DDevice9() = default;

  /// Each draw takes the state as it is at the call. It survives Reset.
  DeviceState state;

  /// D3D_OK, or D3DERR_DEVICELOST while nothing can be drawn, or D3DERR_DEVICENOTRESET when Reset may help.
  virtual HRESULT TestCooperativeLevel() = 0;
  /// Makes a new back buffer, cleared to black. Buffers and textures keep their contents.
  virtual HRESULT Reset(const D3DPRESENT_PARAMETERS& parameters) = 0;
  virtual HRESULT GetDeviceCaps(D3DCAPS9* caps) = 0;
  virtual uint32_t GetAvailableTextureMem() = 0;  ///< bytes

  /// Creators give none when the device refuses. `fvf` says what one vertex is made of, see shapeOf().
  virtual std::shared_ptr<IDirect3DVertexBuffer9> CreateVertexBuffer(uint32_t fvf,
                                                                     std::vector<std::byte> vertices) = 0;
  virtual std::shared_ptr<IDirect3DIndexBuffer9> CreateIndexBuffer(std::vector<uint16_t> indices) = 0;
  /// Levels in one of textureFormats(), each half as large as the one before it, sides of at least 1. Sizes
  /// need not be powers of two; neither side is beyond what the capabilities say.
  virtual std::shared_ptr<IDirect3DTexture9> CreateTexture(D3DFORMAT format,
                                                           std::vector<ImageLevel> levels) = 0;

  /// Begins a frame: the picture in one colour, its alpha 255 whatever `color` says, depths 1. Draws come
  /// between Clear and Present. A frame that ends without Present, for lack of memory, leaves no picture.
  virtual void Clear(D3DCOLOR color) = 0;
  virtual void Present() = 0;

  /// Draws with buffers of this device. Primitives with a position that is not finite are not drawn; of
  /// positions so large that their transformed coordinates overflow a float, it is the device's choice
  /// whether they are.
  ///
  /// Primitives from `startVertex` on, all within the buffer.
  virtual void DrawPrimitive(D3DPRIMITIVETYPE type, const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                             uint32_t startVertex, uint32_t primitiveCount) = 0;
  /// All whole triangles of the index list but those with an index beyond the vertices.
  virtual void DrawIndexedPrimitive(const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                                    const std::shared_ptr<IDirect3DIndexBuffer9>& indices) = 0;
};

/// Where devices come from. `window` of CreateDevice may be none for drawing without a window.
class IDirect3D9 {
 public:
  virtual ~IDirect3D9() = default;
  virtual HRESULT RegisterSoftwareDevice(void* initialize) = 0;
  virtual HRESULT GetAdapterDisplayMode(uint32_t adapter, D3DDISPLAYMODE* mode) = 0;
  virtual HRESULT GetAdapterIdentifier(uint32_t adapter, D3DADAPTER_IDENTIFIER9* identifier) = 0;
  virtual HRESULT GetDeviceCaps(uint32_t adapter, D3DDEVTYPE type, D3DCAPS9* caps) = 0;
  virtual HRESULT CreateDevice(uint32_t adapter, D3DDEVTYPE type, void* window, uint32_t behaviorFlags,
                               D3DPRESENT_PARAMETERS* parameters,
                               std::shared_ptr<IDirect3DDevice9>* created) = 0;
};

}  // namespace facet
