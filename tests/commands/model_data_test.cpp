#include "commands/model_data.h"

#include <gmock/gmock.h>

#include "platform/text.h"
#include "support/model_builder.h"
#include "support/recording_desktop.h"

namespace facet {
namespace {

/// A tree as lines, each a blank deeper than its parent; a '+' marks an expanded item.
std::string lines(const TextTree& tree, const std::string& indent = "") {
  std::string text = indent + (tree.expanded ? "+" : "") + tree.text + "\n";
  for (const TextTree& child : tree.children) text += lines(child, indent + " ");
  return text;
}

TEST(ModelData, ShowsMaterialsAndMeshes) {
  Model model = triangleModel();
  model.name = "C:\\ship.vxm";
  model.materials[0].color = {0xA0 / 255.0f, 0xB0 / 255.0f, 0xC0 / 255.0f, 1.0f};
  model.materials[0].hasTexture = 1;
  model.materials[0].renderFlags = 11;
  model.center = {1.5f, -2.005f, 3};
  Mesh& mesh = model.meshes[0];
  mesh.boundsMin = {1, 2, 3};
  mesh.boundsMax = {7, 8, 10};
  mesh.center = {4, 5, 6.5f};
  mesh.radius = 12.345f;
  mesh.visibility = 1;

  RecordingDesktop desktop;
  showModelData(model);
  ASSERT_EQ(desktop.listsAndTrees.size(), 1u);
  const ListAndTree& shown = desktop.listsAndTrees[0];
  EXPECT_EQ(shown.title, "VXMViewer - ModelData");
  std::string sky;
  for (unsigned n = 0; n < skyMaterialCount; ++n)
    sky +=
        formatted("   #%03u (sky\\sky%u, default) ID: 000, flags: 0x00\n    Color: 0x00000000\n", n + 1, n);
  EXPECT_EQ(lines(shown.tree),
            "+TREE_ROOT\n"
            " +Model 'C:\\ship.vxm'\n"
            "  +Materials\n"
            "   #000 (stone, default) ID: 001, flags: 0x0B\n"
            "    Color: 0xFFA0B0C0\n" +
                sky +
                "  Meshes\n"
                "   #00000 (v: 3, i: 3, mNum :000), visible = 1\n"
                "    Center 4.00, 5.00, 6.50\n"
                "    BBoxMin 1.00, 2.00, 3.00\n"
                "    BBoxMax 7.00, 8.00, 10.00\n"
                "    Radius 12.35\n"
                "  Scene (v: 3, i: 3, meshes: 1, materials: 7)\n"
                "   Type 0x4444 Center 1.50, -2.01, 3.00\n");
  ASSERT_EQ(shown.list.size(), 9u);
  EXPECT_EQ(shown.list[0], "LIST_ROOT");
  EXPECT_EQ(shown.list[1], "Materials");
  EXPECT_EQ(shown.list[2], "#000 (stone, default) ID: 001, flags: 0x0B");
  EXPECT_EQ(shown.list[8], "#006 (sky\\sky5, default) ID: 000, flags: 0x00");
}

}  // namespace
}  // namespace facet
