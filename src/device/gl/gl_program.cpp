#include "device/gl/gl_program.h"

#include <epoxy/gl.h>

#include <array>
#include <string>

namespace facet {
namespace {

constexpr const char* vertexText = R"(
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec4 color;
layout(location = 3) in vec2 coordinates;
uniform mat4 transform;
uniform mat3 normalTransform;
uniform vec2 pixel;  // half a pixel in clip space
uniform vec3 toLight, lightDiffuse, ambient;
uniform vec4 materialDiffuse;
INTERPOLATION out vec4 diffuse;
out vec2 uv;

void main() {
  vec4 clip = transform * vec4(position, 1.0);
  // Pixel centres are at whole numbers, the top row comes first, and depth runs from 0 to 1.
  gl_Position = vec4(clip.x + clip.w * pixel.x, clip.w * pixel.y - clip.y, 2.0 * clip.z - clip.w, clip.w);
  vec4 own = hasColor ? color : lit ? materialDiffuse : vec4(1.0);
  float amount = hasNormal ? max(dot(normalTransform * normal, toLight), 0.0) : 0.0;
  diffuse = lit ? vec4(clamp(ambient + own.rgb * lightDiffuse * amount, 0.0, 1.0), own.a) : own;
  uv = coordinates;
}
)";

constexpr const char* fragmentText = R"(
INTERPOLATION in vec4 diffuse;
in vec2 uv;
uniform sampler2D image;
uniform float alphaRef, maxAnisotropy;
out vec4 result;

// The level and the samples are chosen here because drivers approximate both, some of them visibly.
vec4 leveled() {
  vec2 size = vec2(textureSize(image, 0));
  // The sides of the pixel's footprint. Differences between neighbours are exact for what is linear on the
  // screen, as coordinates over w are.
  float q = gl_FragCoord.w;
  vec2 acrossX = (dFdx(uv * q) - uv * dFdx(q)) / q, acrossY = (dFdy(uv * q) - uv * dFdy(q)) / q;
  float x = length(acrossX * size), y = length(acrossY * size);
  float longer = max(x, y);
  if (!manySamples || !(longer > 1.0)) return textureLod(image, uv, log2(max(longer, 1e-6)));

  // Samples along the longer side let the level follow the shorter one, of a texel at least: there is no
  // finer level.
  float ratio = longer / max(min(x, y), 1.0);
  int count = clamp(int(ceil(min(ratio, maxAnisotropy) - 1e-3)), 1, 16);
  float level = log2(longer / float(count));
  vec2 side = x > y ? acrossX : acrossY;
  vec4 sum = vec4(0.0);
  for (int i = 0; i < count; ++i)
    sum += textureLod(image, uv + side * ((float(i) + 0.5) / float(count) - 0.5), level);
  return sum / float(count);
}

vec4 combine(int operation, vec4 first, vec4 second) {
  return operation == selectArg1 ? first
       : operation == selectArg2 ? second
       : operation == modulate   ? first * second
       : operation == modulate2x ? min(2.0 * first * second, 1.0)
                                 : diffuse;
}

bool passes(float alpha) {
  return alphaFunc == 1 ? false
       : alphaFunc == 2 ? alpha < alphaRef
       : alphaFunc == 3 ? alpha == alphaRef
       : alphaFunc == 4 ? alpha <= alphaRef
       : alphaFunc == 5 ? alpha > alphaRef
       : alphaFunc == 6 ? alpha != alphaRef
       : alphaFunc == 7 ? alpha >= alphaRef
                        : true;
}

void main() {
  result = diffuse;
  if (textured) {
    vec4 texel = needsLevel ? leveled() : texture(image, uv);
    vec4 colors = combine(colorOp, colorArg1 == textureArg ? texel : diffuse,
                          colorArg2 == textureArg ? texel : diffuse);
    vec4 alphas = combine(alphaOp, alphaArg1 == textureArg ? texel : diffuse,
                          alphaArg2 == textureArg ? texel : diffuse);
    result = vec4(colors.rgb, alphas.a);
  }
  if (!passes(floor(result.a * 255.0 + 0.5))) discard;
}
)";

/// What a program's text depends on, besides the constants of Direct3D.
struct Variant {
  bool lit, hasNormal, hasColor, flat, textured, needsLevel, manySamples;
  uint32_t alphaFunc, colorOp, colorArg1, colorArg2, alphaOp, alphaArg1, alphaArg2;

  Variant(const DeviceStates& s, uint32_t fvf, bool withTexture)
      : lit(s.lighting),
        hasNormal(fvf & D3DFVF_NORMAL),
        hasColor(fvf & D3DFVF_DIFFUSE),
        flat(s.shadeMode == D3DSHADE_FLAT),
        textured(withTexture && (fvf & D3DFVF_TEX1) && s.colorOp != D3DTOP_DISABLE),
        needsLevel(textured && (s.mipFilter != D3DTEXF_NONE || s.minFilter != s.magFilter ||
                                s.minFilter == D3DTEXF_ANISOTROPIC)),
        manySamples(textured && s.minFilter == D3DTEXF_ANISOTROPIC),
        alphaFunc(s.alphaTestEnable ? s.alphaFunc : D3DCMP_ALWAYS),
        colorOp(s.colorOp),
        colorArg1(s.colorArg1),
        colorArg2(s.colorArg2),
        alphaOp(s.alphaOp),
        alphaArg1(s.alphaArg1),
        alphaArg2(s.alphaArg2) {}

  uint64_t key() const {
    uint64_t result = 0;
    for (const uint32_t part : {uint32_t{lit}, uint32_t{hasNormal}, uint32_t{hasColor}, uint32_t{flat},
                                uint32_t{textured}, uint32_t{needsLevel}, uint32_t{manySamples}, alphaFunc}) {
      result = result << 4 | part;
    }
    if (!textured) return result;
    for (const uint32_t part : {colorOp, colorArg1, colorArg2, alphaOp, alphaArg1, alphaArg2})
      result = result << 4 | part;
    return result;
  }

  std::string text() const {
    std::string result = "#version 330 core\n";
    result += flat ? "#define INTERPOLATION flat\n" : "#define INTERPOLATION smooth\n";
    const auto constant = [&](const char* type, const char* name, const std::string& value) {
      result += std::string("const ") + type + " " + name + " = " + value + ";\n";
    };
    const auto flag = [&](const char* name, bool value) { constant("bool", name, value ? "true" : "false"); };
    const auto number = [&](const char* name, uint32_t value) {
      constant("int", name, std::to_string(value));
    };
    flag("lit", lit);
    flag("hasNormal", hasNormal);
    flag("hasColor", hasColor);
    flag("textured", textured);
    flag("needsLevel", needsLevel);
    flag("manySamples", manySamples);
    number("alphaFunc", alphaFunc);
    number("colorOp", colorOp);
    number("colorArg1", colorArg1);
    number("colorArg2", colorArg2);
    number("alphaOp", alphaOp);
    number("alphaArg1", alphaArg1);
    number("alphaArg2", alphaArg2);
    number("textureArg", D3DTA_TEXTURE);
    number("selectArg1", D3DTOP_SELECTARG1);
    number("selectArg2", D3DTOP_SELECTARG2);
    number("modulate", D3DTOP_MODULATE);
    number("modulate2x", D3DTOP_MODULATE2X);
    return result;
  }
};

GLuint compile(GLuint program, GLenum stage, const std::string& head, const char* body) {
  const std::string text = head + body;
  const char* source = text.c_str();
  const GLuint shader = glCreateShader(stage);
  glShaderSource(shader, 1, &source, nullptr);
  glCompileShader(shader);
  glAttachShader(program, shader);
  return shader;
}

/// 0 when the driver refuses it.
GLuint makeProgram(const Variant& variant) {
  const std::string head = variant.text();
  const GLuint program = glCreateProgram();
  const GLuint vertex = compile(program, GL_VERTEX_SHADER, head, vertexText);
  const GLuint fragment = compile(program, GL_FRAGMENT_SHADER, head, fragmentText);
  glLinkProgram(program);
  glDeleteShader(vertex);
  glDeleteShader(fragment);
  GLint linked = GL_FALSE;
  glGetProgramiv(program, GL_LINK_STATUS, &linked);
  if (linked) return program;
  glDeleteProgram(program);
  return 0;
}

/// Lighting happens in world space: a directional light needs no view.
void setLight(GLuint program, const DeviceStates& s) {
  const auto vector = [&](const char* name, float x, float y, float z) {
    glUniform3f(glGetUniformLocation(program, name), x, y, z);
  };
  const D3DVECTOR direction = lightDirection(s);
  const D3DCOLORVALUE ambient = ambientOf(s), own = s.material.Diffuse;
  const D3DCOLORVALUE light = s.lightEnabled ? s.light.Diffuse : D3DCOLORVALUE{};
  vector("toLight", -direction.x, -direction.y, -direction.z);
  vector("lightDiffuse", light.r, light.g, light.b);
  vector("ambient", ambient.r, ambient.g, ambient.b);
  glUniform4f(glGetUniformLocation(program, "materialDiffuse"), own.r, own.g, own.b, own.a);
  std::array<float, 9> normals;
  const D3DMATRIX matrix = normalMatrix(s.world);
  for (size_t i = 0; i < normals.size(); ++i) normals[i] = matrix.m[i / 3][i % 3];
  glUniformMatrix3fv(glGetUniformLocation(program, "normalTransform"), 1, GL_FALSE, normals.data());
}

}  // namespace

bool GlPrograms::use(const DeviceStates& states, uint32_t fvf, bool textured, uint32_t targetWidth,
                     uint32_t targetHeight) {
  const Variant variant(states, fvf, textured);
  const auto [place, added] = programs_.try_emplace(variant.key(), 0);
  if (added) place->second = makeProgram(variant);
  const GLuint program = place->second;
  if (program == 0) return false;
  glUseProgram(program);
  // Rows of a row-vector matrix are the columns of OpenGL's.
  const D3DMATRIX transform = multiply(multiply(states.world, states.view), states.projection);
  glUniformMatrix4fv(glGetUniformLocation(program, "transform"), 1, GL_FALSE, transform.m[0].data());
  glUniform2f(glGetUniformLocation(program, "pixel"), 1 / static_cast<float>(targetWidth),
              1 / static_cast<float>(targetHeight));
  glUniform1f(glGetUniformLocation(program, "alphaRef"), static_cast<float>(states.alphaRef & 0xFF));
  if (variant.manySamples)
    glUniform1f(glGetUniformLocation(program, "maxAnisotropy"), static_cast<float>(states.maxAnisotropy));
  if (variant.lit) setLight(program, states);
  return true;
}

void GlPrograms::release() {
  for (const auto& [key, program] : programs_) glDeleteProgram(program);
  programs_.clear();
}

}  // namespace facet
