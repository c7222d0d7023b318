#include "device/gl/gl_resources.h"

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
uniform float alphaRef;
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

void main() {
  result = diffuse;
  if (textured) {
    vec4 texel = needsLevel ? leveled() : texture(image, uv);
    result = vec4(modulate ? texel.rgb * diffuse.rgb : texel.rgb, texel.a);
  }
  if (alphaTest && !(floor(result.a * 255.0 + 0.5) > alphaRef)) discard;
}
)";

/// What a program's text depends on.
struct Flag {
  const char* name;
  bool value;
};
using Flags = std::array<Flag, 8>;

Flags flagsOf(const DeviceState& state, const VertexShape& shape) {
  const bool textured = state.texture && shape.uv != VertexShape::none;
  const bool anisotropic = state.filter == D3DTEXF_ANISOTROPIC;
  return {{{"lit", state.lighting},
           {"hasNormal", shape.normal != VertexShape::none},
           {"hasColor", shape.color != VertexShape::none},
           {"textured", textured},
           {"needsLevel", textured && (anisotropic || state.mipFilter != D3DTEXF_NONE)},
           {"manySamples", textured && anisotropic},
           {"modulate", textured && state.colorOp == D3DTOP_MODULATE},
           {"alphaTest", state.alphaTestEnable}}};
}

std::string headOf(const Flags& flags, bool flat) {
  std::string text = "#version 330 core\n#define INTERPOLATION ";
  text += flat ? "flat\n" : "smooth\n";
  for (const Flag& flag : flags)
    text += std::string("const bool ") + flag.name + (flag.value ? " = true;\n" : " = false;\n");
  return text + "const float maxAnisotropy = " + std::to_string(GlPrograms::largestAnisotropy) + ".0;\n";
}

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
GLuint makeProgram(const std::string& head) {
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

void setLight(GLuint program, const DeviceState& state) {
  const auto vector = [&](const char* name, float x, float y, float z) {
    glUniform3f(glGetUniformLocation(program, name), x, y, z);
  };
  const D3DVECTOR direction = lightDirection(state);
  const D3DCOLORVALUE ambient = ambientOf(state), light = lightOf(state), own = state.material.Diffuse;
  vector("toLight", -direction.x, -direction.y, -direction.z);
  vector("lightDiffuse", light.r, light.g, light.b);
  vector("ambient", ambient.r, ambient.g, ambient.b);
  glUniform4f(glGetUniformLocation(program, "materialDiffuse"), own.r, own.g, own.b, own.a);
  std::array<float, 9> normals;
  const D3DMATRIX matrix = normalMatrix(state);
  for (size_t i = 0; i < normals.size(); ++i) normals[i] = matrix.m[i / 3][i % 3];
  glUniformMatrix3fv(glGetUniformLocation(program, "normalTransform"), 1, GL_FALSE, normals.data());
}

}  // namespace

bool GlPrograms::use(const DeviceState& state, const VertexShape& shape, uint32_t targetWidth,
                     uint32_t targetHeight) {
  const Flags flags = flagsOf(state, shape);
  const bool flat = state.shadeMode == D3DSHADE_FLAT;
  uint32_t key = flat;
  for (const Flag& flag : flags) key = key << 1 | uint32_t{flag.value};
  const auto [place, added] = programs_.try_emplace(key, 0);
  if (added) place->second = makeProgram(headOf(flags, flat));
  const GLuint program = place->second;
  if (program == 0) return false;
  glUseProgram(program);
  // Rows of a row-vector matrix are the columns of OpenGL's.
  const D3DMATRIX transform = clipMatrix(state);
  glUniformMatrix4fv(glGetUniformLocation(program, "transform"), 1, GL_FALSE, transform.m[0].data());
  glUniform2f(glGetUniformLocation(program, "pixel"), 1 / static_cast<float>(targetWidth),
              1 / static_cast<float>(targetHeight));
  glUniform1f(glGetUniformLocation(program, "alphaRef"), static_cast<float>(state.alphaRef));
  if (state.lighting) setLight(program, state);
  return true;
}

void GlPrograms::release() {
  for (const auto& [key, program] : programs_) glDeleteProgram(program);
  programs_.clear();
}

}  // namespace facet
