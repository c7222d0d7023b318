#include "export/export.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>

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

namespace {

/// Runs the writer; the reason where the model is refused or the writer gives up.
std::string write(const ExportFormat& format, std::string_view name, Model& model, Output& out) {
  try {
    format.write(model, name, out);
    return {};
  } catch (const std::bad_alloc&) {
    return "out of memory";
  } catch (const std::exception& error) {
    return error.what();
  }
}

std::string refusalOf(const ExportFormat& format, const Model& model) {
  return format.refusal == nullptr ? std::string() : format.refusal(model);
}

}  // namespace

ExportResult exportModel(const ExportFormat& format, const std::string& path, Model& model) {
  ExportResult result{.error = refusalOf(format, model)};
  if (!result.error.empty()) return result;
  OutputFile file(path);
  if (file.isOpen()) result.error = write(format, fileName(path), model, file);
  result.created = file.isOpen() && result.error.empty();
  if (result.error.empty() && !file.commit()) result.error = file.error();
  result.bytes = file.bytesWritten();
  return result;
}

ExportResult exportModel(const ExportFormat& format, std::string_view name, Model& model, Output& out) {
  ExportResult result{.error = refusalOf(format, model)};
  if (result.error.empty()) result.error = write(format, name, model, out);
  if (result.error.empty()) result.error = out.error();
  result.bytes = out.bytesWritten();
  return result;
}

std::string saveModelAs(uint32_t filterIndex, const std::string& path, Model& model) {
  if (filterIndex < 1 || filterIndex > classicCount) return {};
  const ExportFormat& format = formats[filterIndex - 1];
  const ExportResult result = exportModel(format, path, model);
  std::string failure;
  if (!result.error.empty()) failure = std::string(fileName(path)) + ": " + result.error;
  if (!failure.empty()) statusPrint("%s", failure.c_str());
  if (result.created) messageBox(format.successMessage, path, MB_OK | MB_ICONINFORMATION | MB_SYSTEMMODAL);
  return failure;
}

}  // namespace facet
