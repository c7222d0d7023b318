#include "export/mesh_text.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <new>
#include <string>
#include <thread>

#include "export/corners.h"
#include "support/model_builder.h"

namespace facet {
namespace {

/// Gives `count` jobs, each of which puts its number.
std::function<TextJob()> countingJobs(int count, std::function<void(int)> before) {
  return [count, before, number = 0]() mutable -> TextJob {
    if (number == count) return {};
    return {[before, own = number++](TextBuffer& text) {
      before(own);
      text.put(own, '\n');
    }};
  };
}

TEST(WritePieces, KeepsTheOrderOfJobs) {
  OutputString out;
  writePieces(4, out, countingJobs(100, [](int number) {
                if (number % 7 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
              }));
  std::string expected;
  for (int i = 0; i < 100; ++i) expected += std::to_string(i) + '\n';
  EXPECT_EQ(out.text(), expected);
}

TEST(WritePieces, LetsAJobWaitForOneWithoutText) {
  OutputString out;
  std::promise<int> promise;
  int given = 0;
  writePieces(2, out, [&]() -> TextJob {
    switch (given++) {
      case 0:
        return {[&](TextBuffer&) { promise.set_value(42); }, false};
      case 1:
        return {[&](TextBuffer& text) { text.put(promise.get_future().get()); }};
      default:
        return {};
    }
  });
  EXPECT_EQ(out.text(), "42");
}

TEST(WritePieces, HandsOnWhatAWorkerThrows) {
  OutputString out;
  const auto jobs = countingJobs(100, [](int number) {
    if (number > 20) throw std::bad_alloc();
  });
  EXPECT_THROW(writePieces(3, out, jobs), std::bad_alloc);
}

class FailingOutput : public Output {
  std::string writeSome(std::string_view) override { return "disk full"; }
};

TEST(WritePieces, StopsWhenTheOutputFails) {
  FailingOutput out;
  std::atomic<int> run = 0;
  writePieces(3, out, countingJobs(100, [&](int) { ++run; }));
  EXPECT_EQ(out.error(), "disk full");
  EXPECT_LT(run, 100);
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
