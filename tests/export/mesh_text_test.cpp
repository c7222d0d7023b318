#include "export/mesh_text.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "support/model_builder.h"

namespace facet {
namespace {

class FailingOutput : public Output {
  std::string writeSome(std::string_view) override { return "disk full"; }
};

TEST(WritePieces, StopsWhenTheOutputFails) {
  FailingOutput out;
  int given = 0;
  writePieces(3, out, [&]() -> MakeText {
    ++given;
    return [](TextBuffer& text) { text.put("piece"); };
  });
  EXPECT_EQ(out.error(), "disk full");
  EXPECT_LT(given, 10);
}

TEST(WriteMeshSections, WritesEachHeadOnceAndEveryItemInOrder) {
  // Large enough for several threads, with meshes below and above a piece.
  ModelBuilder builder;
  for (uint32_t cells = 0; cells < 80; ++cells) builder.grid(0, cells);
  const Model model = builder.build();
  constexpr std::array<MeshSection, 3> sections{{
      {[](const MeshRef& mesh, TextBuffer& text) { text.put("mesh ", mesh.number, '\n'); }, nullptr, nullptr},
      {[](const MeshRef&, TextBuffer& text) { text.put("vertices\n"); }, vertexCount,
       [](const MeshRef&, uint32_t first, uint32_t end, TextBuffer& text) {
         for (uint32_t i = first; i < end; ++i) text.put(i, '\n');
       }},
      {nullptr, triangleCount,
       [](const MeshRef&, uint32_t first, uint32_t end, TextBuffer& text) {
         for (uint32_t i = first; i < end; ++i) text.put("t", i, '\n');
       }},
  }};
  OutputString out;
  writeMeshSections(model, out, sections);
  std::string expected;
  for (uint32_t m = 0; m < model.meshCount; ++m) {
    expected += "mesh " + std::to_string(m) + "\nvertices\n";
    for (uint32_t i = 0; i < model.meshes[m].vertexCount; ++i) expected += std::to_string(i) + '\n';
    for (uint32_t i = 0; i < model.meshes[m].indexCount / 3; ++i) expected += 't' + std::to_string(i) + '\n';
  }
  EXPECT_EQ(out.text(), expected);
}

}  // namespace
}  // namespace facet
