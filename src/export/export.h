#pragma once

#include <span>
#include <string>
#include <string_view>

#include "model/model.h"
#include "platform/output.h"

// One writer for each output format, and the reasons of those that do not take every model.

namespace facet {

/// Writes a whole model in one format. `fileName` is the name of the file without its folders. The materials
/// that count are ownMaterials(model). OBJ and POV leave the model's values snapped; others change nothing.
using WriteModel = void(Model& model, std::string_view fileName, Output& out);

/// One output format: a row of the Save dialog, of the tool's --to, of help, completions and documents.
struct ExportFormat {
  std::string_view name;            ///< "obj": what the tool calls it, also the extension without its dot
  std::string_view description;     ///< "Wavefront Object (*.OBJ)"
  std::string_view pattern;         ///< "*.obj"
  std::string_view successMessage;  ///< shown once after a file was written
  WriteModel* write;                ///< throws std::exception where a model cannot be written after all
  /// The reason why a model cannot be written in this format, or an empty text; none where all can.
  std::string (*refusal)(const Model& model);
  bool snapsModel = false;     ///< the model's values stay snapped to six decimals
  bool holdsPictures = false;  ///< the textures' pictures go into it, so a load must decode them
};

/// All formats, those of the Save dialog first.
std::span<const ExportFormat> exportFormats();

/// The file types of the Save dialog in its order; its filter index counts from 1.
std::span<const ExportFormat> saveDialogFormats();

/// The format of this name in any letter case, or none.
const ExportFormat* findExportFormat(std::string_view name);

struct ExportResult {
  uint64_t bytes = 0;
  std::string error;  ///< empty when the whole file stands under its name
  bool created =
      false;  ///< false when the model was refused, no file could be created, or the writer gave up
};

/// Writes the model to `path`, which gets the whole file or stays as it was. Shows nothing.
ExportResult exportModel(const ExportFormat& format, const std::string& path, Model& model);

/// The same to an output that somebody else opened and closes; `fileName` is what a file would be called.
ExportResult exportModel(const ExportFormat& format, std::string_view fileName, Model& model, Output& out);

/// What the save command does with the dialog's answer: writes the model in the format of the 1-based filter
/// index under exactly this path and shows the writer's message. A refused model or a file that cannot be
/// created shows no box; what could not be written whole is told on the status line, and returned. Other
/// indexes write nothing.
std::string saveModelAs(uint32_t filterIndex, const std::string& path, Model& model);

WriteModel exportObj, exportSmd, exportAse, exportPov, exportDae, exportDxf, exportStl, exportMs3d, exportVxm,
    exportGlb;

/// Counts are 16 bits wide.
std::string refuseMs3d(const Model& model);

/// A visual needs a mesh, and sizes are 32 bits wide.
std::string refuseVxm(const Model& model);

}  // namespace facet
