#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "app/folder_filter.h"
#include "import/texture_search.h"

// Small pictures of models, kept where desktops keep theirs: a file manager shows what was drawn here, and
// the other way round.

namespace facet {

/// How the textures of a folder's models are looked for. Threads may share one.
struct ModelSearch {
  /// Relative base paths start at `folder`, which is absolute.
  ModelSearch(const BasePaths& given, bool near, const std::string& folder);

  BasePaths basePaths;
  std::shared_ptr<TextureSearch> textures;
  QByteArray key;  ///< the same for searches that look in the same places
};

/// What is known of a model's file.
struct Thumbnail {
  QImage picture;                       ///< none where none was asked for, or the model does not load
  std::optional<ModelFigures> figures;  ///< none where it does not load, or the picture was another program's
  QString error;                        ///< why it does not load, empty where it does
  uint64_t bytes = 0;                   ///< of the file
};

/// What is asked about a model's file.
struct ThumbnailRequest {
  std::string path;  ///< absolute
  enum Kind : uint8_t {
    picture,  ///< the picture, and the figures where they come with it
    figures,  ///< the figures, as the disk is now; no picture
  } kind = picture;
};

/// The URI of an absolute path, as desktops write it.
QByteArray uriOf(const std::string& path);

/// The pictures of one size in the desktop's cache. Any thread may use it.
class ThumbnailCache {
 public:
  /// The smallest of the cache's sizes (128, 256, 512, 1024) that has `pixels` on a side, or the largest.
  explicit ThumbnailCache(int pixels);

  int size() const { return size_; }

  /// Answers from the cache where it knows the file as it is now; else loads it, draws it and keeps the
  /// picture, or that it does not load.
  Thumbnail get(const ThumbnailRequest& request, const ModelSearch& search) const;

 private:
  struct File;

  std::optional<Thumbnail> read(const File& file, const ThumbnailRequest& request,
                                const ModelSearch& search) const;
  std::optional<Thumbnail> readFailure(const File& file) const;
  void write(const File& file, const Thumbnail& thumbnail, const ModelSearch& search) const;
  void writeFailure(const File& file, const QString& reason) const;

  QString root_;    ///< of all sizes, with its separator
  QString folder_;  ///< of this size, below it
  int size_;
};

}  // namespace facet
