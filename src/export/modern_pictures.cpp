#include "export/modern_pictures.h"

#include <algorithm>
#include <functional>
#include <new>
#include <stdexcept>

#include "picture/image.h"
#include "platform/files.h"
#include "platform/parallel.h"
#include "platform/system.h"
#include "platform/text.h"

namespace facet {

namespace fs = std::filesystem;

// Making a picture.

namespace {

struct MadePicture {
  std::vector<std::byte> bytes;
  std::string error;

  std::string_view view() const { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }
};

/// Premultiplied colours that lie over what is behind with this coverage, as usual blending takes them. Where
/// they are brighter than the coverage allows, it grows with them.
void makeGlow(std::vector<uint8_t>& rgba, PictureKind kind) {
  for (size_t i = 0; i < rgba.size(); i += 4) {
    uint8_t* pixel = &rgba[i];
    const int coverage = kind == PictureKind::lightPlane ? pixel[3] : 255 - pixel[3];
    const int alpha = std::max(coverage, int{*std::max_element(pixel, pixel + 3)});
    for (int c = 0; c < 3; ++c)
      pixel[c] = alpha == 0 ? uint8_t{0} : static_cast<uint8_t>((pixel[c] * 255 + alpha / 2) / alpha);
    pixel[3] = static_cast<uint8_t>(alpha);
  }
}

std::vector<std::byte> wholeFile(const std::string& path, std::string& error) {
  const std::unique_ptr<ByteSource> file = openFile(path, &error);
  if (!file) return {};
  std::vector<std::byte> bytes(file->size());
  if (!file->read(bytes.data(), bytes.size())) error = "its bytes cannot be read";
  return bytes;
}

MadePicture makePicture(const PictureKey& key) {
  MadePicture made;
  made.bytes = wholeFile(key.file, made.error);
  if (!made.error.empty()) return made;
  ImageResult source = decodeImage(made.bytes);
  made.error = source.error;
  if (!source.image || key.kind == PictureKind::copy) return made;
  if (key.kind == PictureKind::png && source.image->info.ImageFileFormat == D3DXIFF_PNG) return made;
  made.bytes = {};
  const uint32_t width = source.image->info.Width, height = source.image->info.Height;
  std::vector<uint8_t> rgba = imagePixels(*source.image, 0);
  source.image = nullptr;
  if (key.kind != PictureKind::png) makeGlow(rgba, key.kind);
  made.bytes = encodePng(rgba, width, height);
  if (made.bytes.empty()) made.error = "it cannot be packed as PNG";
  return made;
}

/// Makes the pictures that has(i) does not find, and hands each to take(i, made) in order.
void makePictures(const std::vector<PictureKey>& keys, const std::function<bool(size_t)>& has,
                  const std::function<void(size_t, const MadePicture&)>& take) {
  struct Piece {
    size_t number = 0;
    MadePicture made;
  };
  size_t next = 0;
  orderedPipeline<Piece>(
      keys.size(),
      [&](Piece& piece) {
        while (next < keys.size() && has(next)) ++next;
        piece.number = next++;
        return piece.number < keys.size();
      },
      [&](Piece& piece) {
        try {
          piece.made = makePicture(keys[piece.number]);
        } catch (const std::bad_alloc&) {
          piece.made = {{}, "it is too large for the memory"};
        }
      },
      [&](Piece& piece) {
        take(piece.number, piece.made);
        piece.made = {};
        return true;
      });
}

/// Adds the warning once for each file.
void warn(const std::string& file, const std::string& reason, std::vector<std::string>& warnings) {
  const std::string line = utf8FromPath(fileName(file)) + ": cannot be read: " + reason + "; left out";
  if (!std::ranges::count(warnings, line)) warnings.push_back(line);
}

}  // namespace

bool isOpaquePng(std::string_view file) {
  constexpr size_t colorType = 25;  // after the signature, and size and name of the header, 9 bytes of it
  constexpr char rgb = 2;
  return file.size() > colorType && file[colorType] == rgb;
}

namespace {

// Names.

/// Letters, digits and the signs that are safe on every disk.
std::string safeName(std::string_view name) {
  constexpr size_t mostLetters = 80;
  std::string safe(name.substr(0, mostLetters));
  for (char& c : safe) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (!letter && c != '.' && c != '_' && c != '-') c = '_';
  }
  const size_t first = safe.find_first_not_of('.');
  return first == std::string::npos ? "" : safe.substr(first, safe.find_last_not_of('.') - first + 1);
}

/// Windows opens a device under these names, whatever their extension.
bool isDevice(std::string_view name) {
  const std::string device = lowerCase(name.substr(0, name.find('.')));
  if (device == "con" || device == "prn" || device == "aux" || device == "nul") return true;
  return device.size() == 4 && (device.starts_with("com") || device.starts_with("lpt")) && device[3] >= '0' &&
         device[3] <= '9';
}

/// The names that a picture may get, best first: its own, with its folder's, with a number.
std::string candidate(const PictureKey& key, std::string_view extension, size_t attempt) {
  const fs::path file(key.file);
  std::string stem = safeName(file.stem().string());
  if (stem.empty()) stem = "texture";
  const std::string folder = safeName(file.parent_path().filename().string());
  if (attempt == 1 && !folder.empty()) stem = safeName(folder + '_' + stem);
  if (attempt > 1) stem += '-' + std::to_string(attempt);
  if (isDevice(stem)) stem.insert(0, "_");
  const bool glows = key.kind == PictureKind::lightPlane || key.kind == PictureKind::selfLight;
  return stem + (glows ? "-glow" : "") + std::string(extension);
}

bool holds(const fs::path& path, std::string_view bytes) {
  std::error_code error;
  if (fs::file_size(path, error) != bytes.size() || error) return false;
  std::string whyNot;
  const std::vector<std::byte> there = wholeFile(path.string(), whyNot);
  return whyNot.empty() && std::ranges::equal(std::as_bytes(std::span(bytes)), there);
}

}  // namespace

// The store.

/// The name of what stands in the folder under this name in any letter case.
std::optional<std::string> PictureStore::standing(const std::string& name) {
  if (!listing_) {
    listing_.emplace();
    std::vector<FolderEntry> entries;
    listFolder(folder_, entries);  // one that cannot be listed is told when a file is opened there
    for (FolderEntry& entry : entries) listing_->emplace(lowerCase(entry.name), entry.name);
  }
  std::error_code ignored;
  if (fs::exists(fs::symlink_status(folder_ / name, ignored))) return name;
  const auto found = listing_->find(lowerCase(name));
  if (found == listing_->end()) return {};
  return found->second;
}

void PictureStore::chooseName(Picture& picture, const PictureKey& key, std::string_view extension,
                              std::string_view bytes) {
  for (size_t attempt = 0;; ++attempt) {
    const std::string name = candidate(key, extension, attempt);
    if (given_.contains(lowerCase(name))) continue;
    const std::optional<std::string> there = standing(name);
    if (there && !holds(folder_ / *there, bytes)) continue;
    picture.stands = there.has_value();
    picture.name = there.value_or(name);
    given_.insert(lowerCase(name));
    return;
  }
}

PictureStore::Picture* PictureStore::use(const PictureKey& key) {
  const std::lock_guard lock(mutex_);
  const auto found = pictures_.find(key);
  if (found == pictures_.end() || !found->second.stands) return nullptr;
  ++found->second.users;
  return &found->second;
}

PictureStore::Reserved PictureStore::reserve(const PictureKey& key, std::string_view extension,
                                             std::string_view bytes) {
  const std::lock_guard lock(mutex_);
  Picture& picture = pictures_[key];
  if (picture.name.empty()) {  // once: others read it without the lock
    picture.opaque = isOpaquePng(bytes);
    chooseName(picture, key, extension, bytes);
  }
  ++picture.users;
  if (picture.stands) return {&picture, nullptr};
  std::error_code ignored;
  if (fs::create_directories(folder_, ignored)) madeFolder_ = true;
  return {&picture, std::make_unique<OutputFile>(folder_ / picture.name)};
}

bool PictureStore::commit(Picture& picture, OutputFile& file) {
  const std::lock_guard lock(mutex_);
  if (picture.stands || !file.commit()) return false;
  picture.stands = picture.made = true;
  return true;
}

void PictureStore::release(Picture& picture, bool keep) {
  const std::lock_guard lock(mutex_);
  picture.kept |= keep;
  if (--picture.users > 0 || picture.kept) return;
  std::error_code ignored;
  if (picture.made) {
    fs::remove(folder_ / picture.name, ignored);
    picture.stands = picture.made = false;
  }
  if (madeFolder_ && fs::remove(folder_, ignored)) madeFolder_ = false;  // only where it is empty
}

// The pictures of one output.

StoredPictures::~StoredPictures() {
  for (PictureStore::Reserved& used : used_) {
    used.file = nullptr;
    store_.release(*used.picture, kept_);
  }
}

ScenePictures StoredPictures::make(const std::vector<PictureKey>& keys, std::vector<std::string>& warnings) {
  ScenePictures pictures(keys.size());
  used_.reserve(keys.size());
  const auto refer = [&](size_t i) {
    const PictureStore::Picture& picture = *used_.back().picture;
    pictures[i] = ScenePicture{picture.name, pathOf(picture), 0, picture.opaque};
  };
  std::mutex mutex;  // one picture is looked up while another is taken
  const auto has = [&](size_t i) {
    PictureStore::Picture* picture = store_.use(keys[i]);
    if (picture == nullptr) return false;
    const std::lock_guard lock(mutex);
    used_.push_back({picture, nullptr});
    refer(i);
    return true;
  };
  const auto take = [&](size_t i, const MadePicture& made) {
    const std::lock_guard lock(mutex);
    if (!made.error.empty()) return warn(keys[i].file, made.error, warnings);
    const bool copies = keys[i].kind == PictureKind::copy;
    const std::string own = safeName(fs::path(keys[i].file).extension().string());
    const std::string extension = copies ? (own.empty() ? "" : '.' + own) : ".png";
    used_.push_back(store_.reserve(keys[i], extension, made.view()));
    refer(i);
    OutputFile* file = used_.back().file.get();
    if (file == nullptr) return;
    file->write(made.view());
    if (!file->close()) throw std::runtime_error(pictures[i]->path + ": " + file->error());
  };
  makePictures(keys, has, take);
  return pictures;
}

void StoredPictures::commit(ModernResult& result) {
  for (PictureStore::Reserved& used : used_) {
    if (used.file == nullptr) continue;
    if (store_.commit(*used.picture, *used.file)) {
      result.files.push_back((store_.folder() / used.picture->name).string());
      result.bytes += used.file->bytesWritten();
    } else if (!used.file->error().empty()) {
      throw std::runtime_error(pathOf(*used.picture) + ": " + used.file->error());
    }
  }
}

ScenePictures EmbeddedPictures::make(const std::vector<PictureKey>& keys,
                                     std::vector<std::string>& warnings) {
  ScenePictures pictures(keys.size());
  if (keys.empty()) return pictures;
  file_.reset(std::tmpfile());
  if (!file_) throw std::runtime_error("no temporary file can be made");
  OutputStream out(file_.get());
  const auto take = [&](size_t i, const MadePicture& made) {
    if (!made.error.empty()) return warn(keys[i].file, made.error, warnings);
    out.write(made.view());
    if (!out.error().empty()) throw std::runtime_error("temporary file: " + out.error());
    pictures[i] =
        ScenePicture{fs::path(keys[i].file).stem().string(), {}, made.bytes.size(), isOpaquePng(made.view())};
  };
  makePictures(
      keys, [](size_t) { return false; }, take);
  std::rewind(file_.get());
  return pictures;
}

}  // namespace facet
