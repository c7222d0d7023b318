#include <gmock/gmock.h>

#include <cctype>
#include <regex>

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

/// All that the expression's first group matches in the text.
std::vector<std::string> found(const std::string& text, const char* expression) {
  std::vector<std::string> matches;
  const std::regex pattern(expression);
  for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match)
    matches.push_back((*match)[1]);
  return matches;
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
  EXPECT_THAT(document("packaging/completions/facetbench.bash"), HasSubstr("'" + joined(" ") + " all'"));
  EXPECT_THAT(document("packaging/completions/_facetbench"), HasSubstr("(" + joined(" ") + " all)"));
  EXPECT_THAT(document("README.md"),
              HasSubstr("OBJ, SMD, ASE, POV-Ray, COLLADA, DXF, STL, MilkShape 3D, `VXM`, and glTF (`glb`)"));
}

TEST(Documents, NameEveryInputFormat) {
  const std::string types = document("packaging/facetbench.mime.xml");
  const std::string help = document("src/app/command_line.cpp");
  for (const std::string& pattern : found(std::string(allModelPatterns), "([^;]+)")) {
    const std::string extension = pattern.substr(2);
    EXPECT_EQ(types.find("<glob pattern=\"" + pattern + "\"") != types.npos, extension != "dds") << pattern;
    for (const char* completion :
         {"packaging/completions/facetbench.bash", "packaging/completions/_facetbench"})
      EXPECT_TRUE(std::regex_search(document(completion), std::regex("[(|]" + extension + "[)|]")))
          << completion;
    std::string upper = extension;
    for (char& c : upper) c = static_cast<char>(std::toupper(c));
    EXPECT_THAT(help, HasSubstr(upper));
  }
  EXPECT_EQ(found(types, "glob pattern=\"([^\"]+)\"").size(),
            found(std::string(allModelPatterns), "([^;]+)").size() - 1);
  const std::string entry = document("packaging/io.github.facetbench.vxmviewer.desktop"),
                    thumbnails = document("packaging/facetbench.thumbnailer");
  for (const std::string& type : found(types, "mime-type type=\"([^\"]+)\"")) {
    EXPECT_THAT(entry, HasSubstr(type + ";"));
    EXPECT_THAT(thumbnails, HasSubstr(type + ";"));
  }
}

TEST(Documents, PatternsOfAllFileTypesAreThoseOfEach) {
  std::vector<std::string> each;
  for (const ModelFileType& type : modelFileTypes())
    for (const std::string& pattern : found(std::string(type.pattern), "([^;]+)")) each.push_back(pattern);
  EXPECT_THAT(found(std::string(allModelPatterns), "([^;]+)"), testing::UnorderedElementsAreArray(each));
}

}  // namespace
}  // namespace facet
