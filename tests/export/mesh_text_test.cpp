#include "export/mesh_text.h"

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <string>

#include "export/corners.h"
#include "support/model_builder.h"

namespace facet {
namespace {

/// A model that several threads are started for.
Model largeModel() {
  ModelBuilder builder;
  for (int i = 0; i < 60; ++i) builder.grid(0, 40);
  return builder.build();
}

TEST(WriteMeshTexts, KeepsMeshOrder) {
  const Model model = largeModel();
  OutputString out;
  writeMeshTexts(model, out, [](uint32_t first, uint32_t end, TextBuffer& text) {
    for (uint32_t m = first; m < end; ++m) text.put(m, '\n');
  });
  std::string expected;
  for (uint32_t m = 0; m < model.meshCount; ++m) expected += std::to_string(m) + '\n';
  EXPECT_EQ(out.text(), expected);
}

TEST(WriteMeshSections, WritesEachHeadOnceAndEveryItemInOrder) {
  const Model model = largeModel();
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

TEST(WriteMeshTexts, HandsOnWhatAWorkerThrows) {
  const Model model = largeModel();
  OutputString out;
  EXPECT_THROW(writeMeshTexts(model, out,
                              [](uint32_t first, uint32_t, TextBuffer&) {
                                if (first > 20) throw std::bad_alloc();
                              }),
               std::bad_alloc);
}

class FailingOutput : public Output {
  std::string writeSome(std::string_view) override { return "disk full"; }
};

TEST(WriteMeshTexts, StopsWhenTheOutputFails) {
  const Model model = largeModel();
  FailingOutput out;
  std::atomic<uint32_t> formatted = 0;
  writeMeshTexts(model, out, [&](uint32_t first, uint32_t end, TextBuffer& text) {
    formatted += end - first;
    text.put("mesh");
  });
  EXPECT_EQ(out.error(), "disk full");
  EXPECT_LT(formatted, model.meshCount);
}

}  // namespace
}  // namespace facet
