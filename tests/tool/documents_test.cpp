#include <gmock/gmock.h>

#include <cctype>

#include "export/export.h"
#include "import/load.h"
#include "platform/text.h"
#include "support/temp_folder.h"

// What people and desktops are told of the formats, held against the tables.

namespace facet {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string document(const char* name) {
  return readWholeFile(fs::path(TESTS_FOLDER).parent_path() / name);
}

/// Every text in `whole` that stands between the two.
std::vector<std::string> between(const std::string& whole, std::string_view before, char behind) {
  std::vector<std::string> texts;
  for (size_t at = whole.find(before); at != whole.npos; at = whole.find(before, at)) {
    at += before.size();
    texts.push_back(whole.substr(at, whole.find(behind, at) - at));
  }
  return texts;
}

/// The extensions of patterns such as "*.vxm;*.object".
std::vector<std::string> extensionsOf(std::string_view patterns) {
  return between(std::string(patterns), "*.", ';');
}

/// The names of the output formats, divided.
std::string joined(std::string_view divisor) {
  std::string names;
  for (const ExportFormat& format : exportFormats())
    names += (names.empty() ? "" : std::string(divisor)) + std::string(format.name);
  return names;
}

TEST(Documents, NameEveryOutputFormat) {
  EXPECT_THAT(document("packaging/man/facetbench.1"), HasSubstr("(" + joined(", ") + ", all)"));
  EXPECT_THAT(document("packaging/completions/facetbench.bash"), HasSubstr("'" + joined(" ") + " gltf all'"));
  EXPECT_THAT(document("packaging/completions/_facetbench"), HasSubstr("(" + joined(" ") + " gltf all)"));
  EXPECT_THAT(document("README.md"),
              HasSubstr("OBJ, SMD, ASE, POV-Ray, COLLADA, DXF, STL, MilkShape 3D, `VXM`, and glTF (`glb`)"));
}

TEST(Documents, NameEveryInputFormat) {
  const std::string types = document("packaging/facetbench.mime.xml");
  const std::string help = document("src/app/command_line.cpp");
  const std::string completions[] = {document("packaging/completions/facetbench.bash"),
                                     document("packaging/completions/_facetbench")};
  for (const std::string& extension : extensionsOf(allModelPatterns)) {
    const bool isModel = types.find("<glob pattern=\"*." + extension + "\"") != types.npos;
    EXPECT_EQ(isModel, extension != "dds") << extension;
    for (const std::string& completion : completions)
      EXPECT_THAT(completion,
                  testing::AnyOf(HasSubstr("(" + extension + "|"), HasSubstr("|" + extension + "|"),
                                 HasSubstr("|" + extension + ")")));
    std::string upper = extension;
    for (char& c : upper) c = static_cast<char>(std::toupper(c));
    EXPECT_THAT(help, HasSubstr(upper));
  }
  EXPECT_EQ(between(types, "glob pattern=\"", '"').size(), extensionsOf(allModelPatterns).size() - 1);
  const std::string entry = document("packaging/io.github.facetbench.vxmviewer.desktop"),
                    thumbnails = document("packaging/facetbench.thumbnailer");
  for (const std::string& type : between(types, "mime-type type=\"", '"')) {
    EXPECT_THAT(entry, HasSubstr(type + ";"));
    EXPECT_THAT(thumbnails, HasSubstr(type + ";"));
  }
}

TEST(Documents, PatternsOfAllFileTypesAreThoseOfEach) {
  std::vector<std::string> each;
  for (const ModelFileType& type : modelFileTypes())
    for (const std::string& extension : extensionsOf(type.pattern)) each.push_back(extension);
  EXPECT_THAT(extensionsOf(allModelPatterns), testing::UnorderedElementsAreArray(each));
}

}  // namespace
}  // namespace facet
