#include "commands/save_model.h"

#include "commands/command_table.h"
#include "commands/current_directory.h"
#include "export/export.h"

namespace facet {

namespace {

FileDialogRequest saveRequest(const std::string& directory) {
  FileDialogRequest request;
  request.title = "Save model file";
  for (const ExportFormat& format : saveDialogFormats())
    request.types.push_back({format.description, format.pattern});
  request.initialDirectory = directory;
  request.defaultExtension = "obj";
  request.flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_CREATEPROMPT;
  return request;
}

}  // namespace

void saveModelFile(Viewer& viewer) {
  Desktop* desktop = currentDesktop();
  if (!viewer.view.model || desktop == nullptr) return;
  const KeptDirectory kept;
  const auto chosen = desktop->saveFileDialog(saveRequest(viewer.lastSaveDirectory));
  if (!chosen) return;
  viewer.lastSaveDirectory = enterFolderOf(chosen->path);
  desktop->setStatusText(idleStatusText);  // what it says of an older save no longer holds
  saveModelAs(chosen->filterIndex, chosen->path, *viewer.view.model);
}

}  // namespace facet
