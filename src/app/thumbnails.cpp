#include "app/thumbnails.h"

#include <QCryptographicHash>
#include <QDir>
#include <QImageReader>
#include <QSaveFile>
#include <QStandardPaths>
#include <chrono>
#include <filesystem>
#include <new>

#include "app/dialogs.h"
#include "import/load.h"
#include "picture/image.h"
#include "render/picture_view.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

constexpr const char* failureFolder = "fail/facetbench-" FACET_VERSION;

// Keys of the texts in a thumbnail: the desktop's, and what only this program asks for.
constexpr const char *uriKey = "Thumb::URI", *timeKey = "Thumb::MTime", *sizeKey = "Thumb::Size",
                     *softwareKey = "Software";
constexpr const char *trianglesKey = "X-FacetBench::Triangles", *typeKey = "X-FacetBench::Type",
                     *missingKey = "X-FacetBench::Missing", *searchKey = "X-FacetBench::Search",
                     *reasonKey = "X-FacetBench::Reason";

constexpr const char *noMemory = "out of memory", *noPicture = "the software device gives no picture";

QString md5(const QByteArray& bytes) {
  return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}

/// A text as PNG files hold it, in one line.
std::string latin1(const QString& text) {
  return text.simplified().toLatin1().toStdString();
}

QImage smaller(const QImage& picture, int size) {
  if (picture.width() <= size && picture.height() <= size) return picture;
  return picture.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

/// The smallest level of a picture that is as large as wanted, or the first.
uint32_t levelFor(const Image& image, int size) {
  uint32_t level = 0;
  const auto isEnough = [&](const ImageLevel& one) {
    return std::max(one.width, one.height) >= static_cast<uint32_t>(size);
  };
  while (level + 1 < image.levels.size() && isEnough(image.levels[level + 1])) ++level;
  return level;
}

/// A picture file as it is, without its alpha, which in games seldom is transparency.
void showFlat(Thumbnail& thumbnail, const std::string& path, int size) {
  const ImageResult result = loadImage(path);
  thumbnail.error = toQString(result.error);
  if (!result.image) return thumbnail.figures.reset();
  const uint32_t level = levelFor(*result.image, size);
  const std::vector<uint8_t> pixels = imagePixels(*result.image, level);
  const ImageLevel& chosen = result.image->levels[level];
  const QImage whole(pixels.data(), static_cast<int>(chosen.width), static_cast<int>(chosen.height),
                     static_cast<qsizetype>(chosen.width) * 4, QImage::Format_RGBX8888);
  thumbnail.picture = smaller(whole, size).copy();
}

ModelFigures figuresOf(const Model& model) {
  return {model.totalIndices / 3, static_cast<uint32_t>(model.missingTextures.size()),
          toQString(modelTypeName(model.modelType))};
}

void showDrawn(Thumbnail& thumbnail, PictureView& view, std::unique_ptr<Model> model) {
  drawColors(*model, 0);
  view.show(std::move(model));
  const Picture drawn = view.draw(0);
  if (drawn.pixels.empty()) return;
  const QImage whole(drawn.pixels.data(), static_cast<int>(drawn.width), static_cast<int>(drawn.height),
                     QImage::Format_RGBA8888);
  thumbnail.picture = whole.copy();
}

/// Loads a model, and draws it lit where a size is given, or 0 for none. Its textures are not in the picture.
Thumbnail load(const std::string& path, int size, const ModelSearch& search) {
  PictureSettings settings;
  settings.width = settings.height = static_cast<uint32_t>(std::max(size, 1));
  settings.renderMode = renderLit;
  settings.lightMode = lightHead;
  std::optional<PictureView> view;
  if (size > 0) view.emplace(settings);
  LoadOptions options(view ? view->device() : nullptr);
  options.decodesTextures = false;
  options.textures = search.textures;
  LoadResult loaded = loadModel(path, search.basePaths, options);
  Thumbnail thumbnail;
  thumbnail.error = toQString(loaded.error);
  if (!loaded.model) return thumbnail;
  thumbnail.figures = figuresOf(*loaded.model);
  if (loaded.model->modelType == modelTypeDds && size > 0)
    showFlat(thumbnail, path, size);
  else if (options.device != nullptr)
    showDrawn(thumbnail, *view, std::move(loaded.model));
  if (size > 0 && thumbnail.picture.isNull() && thumbnail.error.isEmpty()) thumbnail.error = noPicture;
  return thumbnail;
}

/// A file that could not be read may be readable the next time, though it has not changed.
bool isLasting(const QString& error) {
  return !error.startsWith("cannot open") && error != noMemory && error != noPicture;
}

}  // namespace

ModelSearch::ModelSearch(const BasePaths& given, bool near, const std::string& folder)
    : textures(std::make_shared<TextureSearch>(near)) {
  QByteArray places(near ? "near" : "");
  for (const std::string& path : given) {
    basePaths.push_back(isRooted(path) ? path : (std::filesystem::path(folder) / path).string());
    places += '\n' + QByteArray::fromStdString(basePaths.back());
  }
  key = md5(places).toLatin1();
}

QByteArray uriOf(const std::string& path) {
  return "file://" + QByteArray::fromStdString(path).toPercentEncoding("/!$&'()*+,:=@");
}

/// A model's file as it is now, and its name in the cache.
struct ThumbnailCache::File {
  explicit File(const std::string& path) : uri(uriOf(path)), name(md5(uri) + ".png") {
    std::error_code error;
    const auto changed = fs::last_write_time(path, error);
    if (!error) bytes = fs::file_size(path, error);
    exists = !error;
    const auto time = std::chrono::file_clock::to_sys(changed).time_since_epoch();
    seconds = QString::number(std::chrono::floor<std::chrono::seconds>(time).count());
  }

  /// True for a picture in the cache that was made of the file as it is now.
  bool isShownBy(const QImage& picture) const {
    const QString size = picture.text(sizeKey);
    return picture.text(uriKey) == QLatin1String(uri) && picture.text(timeKey) == seconds &&
           (size.isEmpty() || size == QString::number(bytes));
  }

  std::vector<PngText> texts() const {
    return {{uriKey, uri.toStdString()},
            {timeKey, seconds.toStdString()},
            {sizeKey, std::to_string(bytes)},
            {softwareKey, "Facet Bench " FACET_VERSION}};
  }

  QByteArray uri;
  QString name, seconds;
  uint64_t bytes = 0;
  bool exists = false;
};

namespace {

/// A picture of the cache with its texts; null where there is none, and where it is larger than it may be.
QImage readPicture(const QString& path, int size) {
  QImageReader reader(path, "png");
  const QSize found = reader.size();
  return found.width() > size || found.height() > size ? QImage() : reader.read();
}

/// Makes the folders of a path below `root`, for their owner only.
void makePrivateFolders(const QString& root, const QString& path) {
  QDir folder(QDir::cleanPath(root));
  folder.mkpath("..");
  constexpr auto own = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
  folder.mkdir(".", own);
  QString below;
  for (const QString& name : path.split('/', Qt::SkipEmptyParts)) {
    below += name + '/';
    folder.mkdir(below, own);
  }
}

/// The cache may be full or protected: then there is nothing to be kept, and the next look draws again.
void writePrivate(const QString& path, const std::vector<std::byte>& bytes) {
  QSaveFile file(path);
  if (bytes.empty() || !file.open(QIODevice::WriteOnly)) return;
  file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
  file.commit();
}

/// The texts of this program, all of them and of the same search; else none.
std::optional<ModelFigures> figuresIn(const QImage& picture, const ModelSearch& search) {
  const QString triangles = picture.text(trianglesKey), missing = picture.text(missingKey),
                type = picture.text(typeKey);
  if (triangles.isEmpty() || missing.isEmpty() || type.isEmpty()) return {};
  if (picture.text(searchKey) != QLatin1String(search.key)) return {};
  return ModelFigures{triangles.toUInt(), missing.toUInt(), type};
}

}  // namespace

ThumbnailCache::ThumbnailCache(int pixels)
    : root_(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + "/thumbnails/") {
  constexpr struct {
    const char* folder;
    int size;
  } sizes[] = {{"normal", 128}, {"large", 256}, {"x-large", 512}, {"xx-large", 1024}};
  for (const auto& row : sizes) {
    folder_ = row.folder;
    size_ = row.size;
    if (size_ >= pixels) break;
  }
}

Thumbnail ThumbnailCache::get(const ThumbnailRequest& request, const ModelSearch& search) const {
  const File file(request.path);
  Thumbnail thumbnail;
  std::optional<Thumbnail> known;
  if (file.exists) known = read(file, request, search);
  if (file.exists && !known) known = readFailure(file);
  const int size = request.kind == ThumbnailRequest::picture ? size_ : 0;
  try {
    thumbnail = known ? *known : load(request.path, size, search);
  } catch (const std::bad_alloc&) {
    thumbnail.error = noMemory;
  }
  thumbnail.bytes = file.bytes;
  if (known || !file.exists) return thumbnail;
  if (!thumbnail.picture.isNull()) write(file, thumbnail, search);
  if (!thumbnail.error.isEmpty() && isLasting(thumbnail.error)) writeFailure(file, thumbnail.error);
  return thumbnail;
}

/// Missing textures may have come meanwhile: whoever asks for figures gets those anew.
std::optional<Thumbnail> ThumbnailCache::read(const File& file, const ThumbnailRequest& request,
                                              const ModelSearch& search) const {
  const QImage picture = readPicture(root_ + folder_ + '/' + file.name, size_);
  if (!file.isShownBy(picture)) return {};
  Thumbnail thumbnail;
  thumbnail.figures = figuresIn(picture, search);
  if (request.kind == ThumbnailRequest::picture)
    thumbnail.picture = picture;
  else if (!thumbnail.figures || thumbnail.figures->missingTextures > 0)
    return {};
  return thumbnail;
}

std::optional<Thumbnail> ThumbnailCache::readFailure(const File& file) const {
  const QImage picture = readPicture(root_ + failureFolder + '/' + file.name, 1);
  if (!file.isShownBy(picture)) return {};
  Thumbnail thumbnail;
  thumbnail.error = picture.text(reasonKey);
  return thumbnail.error.isEmpty() ? std::nullopt : std::optional(thumbnail);
}

void ThumbnailCache::write(const File& file, const Thumbnail& thumbnail, const ModelSearch& search) const {
  std::vector<PngText> texts = file.texts();
  texts.push_back({trianglesKey, std::to_string(thumbnail.figures->triangles)});
  texts.push_back({missingKey, std::to_string(thumbnail.figures->missingTextures)});
  texts.push_back({typeKey, latin1(thumbnail.figures->type)});
  texts.push_back({searchKey, search.key.toStdString()});
  const QImage picture = thumbnail.picture.convertToFormat(QImage::Format_RGBA8888);
  makePrivateFolders(root_, folder_);
  writePrivate(
      root_ + folder_ + '/' + file.name,
      encodePng({picture.constBits(), static_cast<size_t>(picture.sizeInBytes())},
                static_cast<uint32_t>(picture.width()), static_cast<uint32_t>(picture.height()), texts));
}

void ThumbnailCache::writeFailure(const File& file, const QString& reason) const {
  std::vector<PngText> texts = file.texts();
  texts.push_back({reasonKey, latin1(reason)});
  constexpr uint8_t nothing[4] = {};
  makePrivateFolders(root_, failureFolder);
  writePrivate(root_ + failureFolder + '/' + file.name, encodePng(nothing, 1, 1, texts));
}

}  // namespace facet
