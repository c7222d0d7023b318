#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "picture/pixels.h"

// The operations of Direct3D 9 that the program uses, and the values that belong to them, under Direct3D's
// own names, so that whoever knows them reads the calls like the original ones. Behind it stand the software
// device (device/reference) and the OpenGL one (device/gl); tests bring a recording one. Interfaces are held
// by shared_ptr: releasing one means dropping it. Matrices multiply row vectors, left-handed. A setter that
// fails changes nothing.

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
inline constexpr HRESULT D3DERR_INVALIDCALL = hresult(0x8876086C);

inline constexpr uint32_t D3D_SDK_VERSION = 32;
inline constexpr uint32_t D3DADAPTER_DEFAULT = 0;

enum D3DPOOL : uint32_t { D3DPOOL_DEFAULT = 0, D3DPOOL_MANAGED = 1 };
inline constexpr uint32_t D3DUSAGE_WRITEONLY = 8;

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

inline constexpr uint32_t D3DCLEAR_TARGET = 1;
inline constexpr uint32_t D3DCLEAR_ZBUFFER = 2;

enum D3DPRIMITIVETYPE : uint32_t { D3DPT_LINELIST = 2, D3DPT_TRIANGLELIST = 4, D3DPT_TRIANGLESTRIP = 5 };

enum D3DTRANSFORMSTATETYPE : uint32_t { D3DTS_VIEW = 2, D3DTS_PROJECTION = 3, D3DTS_WORLD = 256 };

enum D3DRENDERSTATETYPE : uint32_t {
  D3DRS_ZENABLE = 7,
  D3DRS_FILLMODE = 8,
  D3DRS_SHADEMODE = 9,
  D3DRS_ZWRITEENABLE = 14,
  D3DRS_ALPHATESTENABLE = 15,
  D3DRS_SRCBLEND = 19,
  D3DRS_DESTBLEND = 20,
  D3DRS_CULLMODE = 22,
  D3DRS_ZFUNC = 23,
  D3DRS_ALPHAREF = 24,
  D3DRS_ALPHAFUNC = 25,
  D3DRS_ALPHABLENDENABLE = 27,
  D3DRS_LIGHTING = 137,
  D3DRS_AMBIENT = 139,
};

enum D3DZBUFFERTYPE : uint32_t { D3DZB_FALSE = 0, D3DZB_TRUE = 1 };
enum D3DFILLMODE : uint32_t { D3DFILL_WIREFRAME = 2, D3DFILL_SOLID = 3 };
enum D3DSHADEMODE : uint32_t { D3DSHADE_FLAT = 1, D3DSHADE_GOURAUD = 2 };
enum D3DCULL : uint32_t { D3DCULL_NONE = 1, D3DCULL_CW = 2, D3DCULL_CCW = 3 };
enum D3DCMPFUNC : uint32_t {
  D3DCMP_NEVER = 1,
  D3DCMP_LESS = 2,
  D3DCMP_EQUAL = 3,
  D3DCMP_LESSEQUAL = 4,
  D3DCMP_GREATER = 5,
  D3DCMP_NOTEQUAL = 6,
  D3DCMP_GREATEREQUAL = 7,
  D3DCMP_ALWAYS = 8,
};
enum D3DBLEND : uint32_t {
  D3DBLEND_ZERO = 1,
  D3DBLEND_ONE = 2,
  D3DBLEND_SRCALPHA = 5,
  D3DBLEND_INVSRCALPHA = 6,
};

enum D3DSAMPLERSTATETYPE : uint32_t {
  D3DSAMP_ADDRESSU = 1,
  D3DSAMP_ADDRESSV = 2,
  D3DSAMP_MAGFILTER = 5,
  D3DSAMP_MINFILTER = 6,
  D3DSAMP_MIPFILTER = 7,
  D3DSAMP_MAXANISOTROPY = 10,
};
enum D3DTEXTUREADDRESS : uint32_t { D3DTADDRESS_WRAP = 1, D3DTADDRESS_CLAMP = 3 };
enum D3DTEXTUREFILTERTYPE : uint32_t {
  D3DTEXF_NONE = 0,
  D3DTEXF_POINT = 1,
  D3DTEXF_LINEAR = 2,
  D3DTEXF_ANISOTROPIC = 3,
};

enum D3DTEXTURESTAGESTATETYPE : uint32_t {
  D3DTSS_COLOROP = 1,
  D3DTSS_COLORARG1 = 2,
  D3DTSS_COLORARG2 = 3,
  D3DTSS_ALPHAOP = 4,
  D3DTSS_ALPHAARG1 = 5,
  D3DTSS_ALPHAARG2 = 6,
};
enum D3DTEXTUREOP : uint32_t {
  D3DTOP_DISABLE = 1,
  D3DTOP_SELECTARG1 = 2,
  D3DTOP_SELECTARG2 = 3,
  D3DTOP_MODULATE = 4,
  D3DTOP_MODULATE2X = 5,
};
inline constexpr uint32_t D3DTA_DIFFUSE = 0;
inline constexpr uint32_t D3DTA_CURRENT = 1;
inline constexpr uint32_t D3DTA_TEXTURE = 2;

enum D3DLIGHTTYPE : uint32_t { D3DLIGHT_DIRECTIONAL = 3 };

struct D3DVECTOR {
  float x = 0, y = 0, z = 0;
};
struct D3DCOLORVALUE {
  float r = 0, g = 0, b = 0, a = 0;
};
struct D3DMATRIX {
  std::array<std::array<float, 4>, 4> m{};
};
struct D3DMATERIAL9 {
  D3DCOLORVALUE Diffuse, Ambient, Specular, Emissive;
  float Power = 0;
};
struct D3DLIGHT9 {
  uint32_t Type = 0;
  D3DCOLORVALUE Diffuse, Specular, Ambient;
  D3DVECTOR Position, Direction;
};

struct D3DDISPLAYMODE {
  uint32_t Width = 0, Height = 0, RefreshRate = 0;  ///< pixels, Hz
  D3DFORMAT Format = D3DFMT_UNKNOWN;
};
struct D3DPRESENT_PARAMETERS {
  uint32_t BackBufferWidth = 0, BackBufferHeight = 0;
  D3DFORMAT BackBufferFormat = D3DFMT_UNKNOWN;
  uint32_t BackBufferCount = 0;
  uint32_t MultiSampleType = 0, MultiSampleQuality = 0;
  uint32_t SwapEffect = 0;
  void* hDeviceWindow = nullptr;
  bool Windowed = false;
  bool EnableAutoDepthStencil = false;
  D3DFORMAT AutoDepthStencilFormat = D3DFMT_UNKNOWN;
  uint32_t Flags = 0;
  uint32_t FullScreen_RefreshRateInHz = 0;
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

/// A lock of one texture level: rows of pixels, or of 4 x 4 blocks in the DXT formats, `Pitch` bytes apart.
/// Memory stays valid until UnlockRect.
struct D3DLOCKED_RECT {
  uint32_t Pitch = 0;
  void* pBits = nullptr;
};
struct D3DSURFACE_DESC {
  D3DFORMAT Format = D3DFMT_UNKNOWN;
  uint32_t Width = 0, Height = 0;
};

class IDirect3DVertexBuffer9 {
 public:
  virtual ~IDirect3DVertexBuffer9() = default;
  /// `size` 0 locks all from `offset` on; flags are 0. Memory stays valid until Unlock.
  virtual HRESULT Lock(uint32_t offset, uint32_t size, void** data, uint32_t flags) = 0;
  virtual HRESULT Unlock() = 0;
};

class IDirect3DIndexBuffer9 {
 public:
  virtual ~IDirect3DIndexBuffer9() = default;
  /// As for vertices.
  virtual HRESULT Lock(uint32_t offset, uint32_t size, void** data, uint32_t flags) = 0;
  virtual HRESULT Unlock() = 0;
};

class IDirect3DTexture9 {
 public:
  virtual ~IDirect3DTexture9() = default;
  virtual uint32_t GetLevelCount() const = 0;
  virtual HRESULT GetLevelDesc(uint32_t level, D3DSURFACE_DESC* desc) const = 0;
  virtual HRESULT LockRect(uint32_t level, D3DLOCKED_RECT* locked) = 0;
  virtual HRESULT UnlockRect(uint32_t level) = 0;
};

class IDirect3DDevice9 {
 public:
  virtual ~IDirect3DDevice9() = default;

  /// D3D_OK, or D3DERR_DEVICELOST while nothing can be drawn, or D3DERR_DEVICENOTRESET when Reset may help.
  virtual HRESULT TestCooperativeLevel() = 0;
  /// Makes a new back buffer and sets every state to its default. Buffers and textures keep their contents.
  virtual HRESULT Reset(const D3DPRESENT_PARAMETERS& parameters) = 0;
  virtual HRESULT GetDeviceCaps(D3DCAPS9* caps) = 0;
  virtual uint32_t GetAvailableTextureMem() = 0;  ///< bytes

  /// Creators leave `created` none unless they return D3D_OK. Sizes are in bytes.
  virtual HRESULT CreateVertexBuffer(uint32_t length, uint32_t usage, uint32_t fvf, D3DPOOL pool,
                                     std::shared_ptr<IDirect3DVertexBuffer9>* created) = 0;
  virtual HRESULT CreateIndexBuffer(uint32_t length, uint32_t usage, D3DFORMAT format, D3DPOOL pool,
                                    std::shared_ptr<IDirect3DIndexBuffer9>* created) = 0;
  /// `levels` 0 means a full chain down to 1 x 1. Sizes need not be powers of two.
  virtual HRESULT CreateTexture(uint32_t width, uint32_t height, uint32_t levels, uint32_t usage,
                                D3DFORMAT format, D3DPOOL pool,
                                std::shared_ptr<IDirect3DTexture9>* created) = 0;

  virtual HRESULT BeginScene() = 0;
  virtual HRESULT Clear(uint32_t flags, D3DCOLOR color, float z, uint32_t stencil) = 0;
  virtual HRESULT EndScene() = 0;
  virtual HRESULT Present() = 0;

  virtual HRESULT SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX& matrix) = 0;
  virtual HRESULT SetRenderState(D3DRENDERSTATETYPE state, uint32_t value) = 0;
  virtual HRESULT SetSamplerState(uint32_t sampler, D3DSAMPLERSTATETYPE type, uint32_t value) = 0;
  virtual HRESULT SetTextureStageState(uint32_t stage, D3DTEXTURESTAGESTATETYPE type, uint32_t value) = 0;
  virtual HRESULT SetMaterial(const D3DMATERIAL9& material) = 0;
  virtual HRESULT SetLight(uint32_t index, const D3DLIGHT9& light) = 0;
  virtual HRESULT LightEnable(uint32_t index, bool enable) = 0;

  virtual HRESULT SetFVF(uint32_t fvf) = 0;
  virtual HRESULT SetStreamSource(uint32_t stream, std::shared_ptr<IDirect3DVertexBuffer9> buffer,
                                  uint32_t offset, uint32_t stride) = 0;
  virtual HRESULT SetIndices(std::shared_ptr<IDirect3DIndexBuffer9> buffer) = 0;
  virtual HRESULT SetTexture(uint32_t stage, std::shared_ptr<IDirect3DTexture9> texture) = 0;

  /// Primitives that reach beyond the buffers, or indices beyond minIndex .. minIndex + vertexCount - 1, are
  /// not drawn; nor are those with a position that is not finite. Of positions so large that their
  /// transformed coordinates overflow a float, it is the device's choice whether they are.
  virtual HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, uint32_t startVertex, uint32_t primitiveCount) = 0;
  virtual HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, int32_t baseVertex, uint32_t minIndex,
                                       uint32_t vertexCount, uint32_t startIndex,
                                       uint32_t primitiveCount) = 0;
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
