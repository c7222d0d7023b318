#pragma once

#include <string>

#include "export/export.h"

namespace facet {

/// What a writer makes of a model, as one text.
inline std::string written(WriteModel& write, Model model, std::string_view fileName = "model.out") {
  OutputString out;
  write(model, fileName, out);
  return out.text();
}

}  // namespace facet
