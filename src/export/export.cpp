#include "export/export.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>

#include "export/writers.h"
#include "platform/files.h"
#include "platform/text.h"

namespace facet {

namespace {

constexpr std::array<ExportFormat, 10> formats{{
    {"obj", "Wavefront Object (*.OBJ)", "*.obj", "Wavefront OBJ file created.", exportObj, nullptr, true},
    {"smd", "Valve Software HalfLife (*.SMD)", "*.smd", "Valve Software SMD file created.", exportSmd,
     nullptr},
    {"ase", "Ascii Scene Export (*.ASE)", "*.ase", "3DSMAX ASCIIEXPORT file created.", exportAse, nullptr},
    {"pov", "Pov-Ray (*.POV)", "*.pov", "Pov-Ray 3.6+ POV file created.", exportPov, nullptr, true},
    {"dae", "Collada XML (*.DAE)", "*.dae", "COLLADA DAE file created.", exportDae, nullptr},
    {"dxf", "Autodesk drawing (*.DXF)", "*.dxf", "Autodesk DXF file created.", exportDxf, nullptr},
    {"stl", "Stereolitho (*.STL)", "*.stl", "STEREOLITHO ASCII file created.", exportStl, nullptr},
    {"ms3d", "MilkShape 3D (*.MS3D)", "*.ms3d", "MILKSHAPE3D MS3D file created.", exportMs3d, refuseMs3d},
    {"vxm", "Vantor SDK mesh (*.VXM)", "*.vxm", "VANTOR SDK mesh VXM file created.", exportVxm, refuseVxm},
    {"glb", "glTF binary (*.GLB)", "*.glb", "glTF GLB file created.", exportGlb, nullptr, false, true},
}};
constexpr size_t classicCount = 9;

}  // namespace

std::span<const ExportFormat> exportFormats() {
  return formats;
}

std::span<const ExportFormat> saveDialogFormats() {
  return exportFormats().first(classicCount);
}

const ExportFormat* findExportFormat(std::string_view name) {
  const auto found = std::ranges::find(formats, lowerCase(name), &ExportFormat::name);
  return found == formats.end() ? nullptr : &*found;
}

ExportResult exportModel(const ExportFormat& format, const std::string& path, Model& model) {
  ExportResult result;
  if (format.refusal != nullptr) result.error = format.refusal(model);
  if (!result.error.empty()) return result;

  OutputFile file(path);
  result.created = file.isOpen();
  try {
    if (file.isOpen()) format.write(model, fileName(path), file);
    if (!file.commit()) result.error = file.error();
  } catch (const std::bad_alloc&) {
    result = {.error = "out of memory"};
  } catch (const std::exception& error) {
    result = {.error = error.what()};
  }
  result.bytes = file.bytesWritten();
  return result;
}

void saveModelAs(uint32_t filterIndex, const std::string& path, Model& model) {
  if (filterIndex < 1 || filterIndex > classicCount) return;
  const ExportFormat& format = formats[filterIndex - 1];
  const ExportResult result = exportModel(format, path, model);
  if (!result.error.empty()) statusPrint("%s: %s", std::string(fileName(path)).c_str(), result.error.c_str());
  if (result.created) messageBox(format.successMessage, path, MB_OK | MB_ICONINFORMATION | MB_SYSTEMMODAL);
}

}  // namespace facet
