#include "host/QtFiles.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace pulsemod {

namespace {

namespace fs = std::filesystem;

constexpr auto notRegular = "It is not a regular file";

/// At the end of the links that `path` may be. The toolkit takes ".." in a link for the folder by
/// name, which is another one if the way there is a link itself; so it is not left to follow them.
fs::path endOfLinks(fs::path path, std::error_code& failure) {
  constexpr int mostLinks = 40;
  for (int links = 0; fs::is_symlink(fs::symlink_status(path, failure)); ++links) {
    if (links == mostLinks) {
      failure = std::make_error_code(std::errc::too_many_symbolic_link_levels);
      return path;
    }
    path = path.parent_path() / fs::read_symlink(path, failure);
    if (failure) return path;
  }
  failure.clear();
  return path;
}

QString toQString(const fs::path& path) {
  const std::u8string name = path.u8string();
  return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

/// The toolkit passes over permissions that cannot be set. Where all files have the same, it is no
/// loss.
bool permissionsAreLost(const QSaveFile& file, const QFileInfo& old) {
  if (!old.exists() || file.error() != QFileDevice::PermissionsError) return false;
  // By its number, since it may have no name yet; without those of the present user, which only a
  // name can tell.
  QFile unfinished;
  if (!unfinished.open(file.handle(), QIODevice::WriteOnly)) return true;
  const QFile::Permissions difference = unfinished.permissions() ^ old.permissions();
  return (difference & ~(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser)) != 0;
}

/// A write may be cut short without a word; only the next one says why.
bool writeAll(QSaveFile& file, std::string_view content) {
  while (!content.empty()) {
    const qint64 written = file.write(content.data(), static_cast<qint64>(content.size()));
    if (written <= 0) return false;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

/// Some disks say only now that they have no room, and the toolkit, which asks them too, does not
/// listen. A file system that cannot be asked is trusted.
std::string bringToDisk(const QSaveFile& file) {
#ifdef Q_OS_UNIX
  int result = 0;
  do {
    result = ::fsync(file.handle());
  } while (result != 0 && errno == EINTR);
  if (result != 0 && errno != EINVAL && errno != EROFS && errno != ENOTSUP) {
    return std::strerror(errno);
  }
#else
  static_cast<void>(file);
#endif
  return {};
}

std::string replaceRegular(const QFileInfo& old, std::string_view content) {
  QSaveFile file(old.filePath());
  // Unbuffered, so that each write tells at once whether it came through.
  if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
    return file.errorString().toStdString();
  }
  if (permissionsAreLost(file, old)) return file.errorString().toStdString();
  if (!writeAll(file, content)) return file.errorString().toStdString();
  std::string failure = bringToDisk(file);
  if (!failure.empty()) return failure;
  // Everything is on the disk: that the file could not be closed is of no consequence any more.
  if (file.commit()) return {};
  // Of one step, an unfinished file's getting any name at all, the toolkit does not know why.
  if (file.error() == QFileDevice::UnspecifiedError) return "It cannot be given its name";
  return file.errorString().toStdString();
}

}  // namespace

std::string QtFiles::read(const std::string& path, std::string& content) {
  QFile file(QString::fromStdString(path));
  // Before it is opened, since opening a pipe waits for its other end.
  const QFileInfo info(file);
  if (info.exists() && !info.isFile()) return notRegular;
  if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
    return file.errorString().toStdString();
  }
  std::string all;
  std::array<char, 65536> part{};
  // To the end, whatever the size is said to be: a read may be cut short without a word, and only
  // the next one says why.
  for (;;) {
    const qint64 size = file.read(part.data(), part.size());
    if (size < 0) return file.errorString().toStdString();
    if (size == 0) break;
    all.append(part.data(), static_cast<std::size_t>(size));
    if (all.size() > largestFile) return "It is too large";
  }
  content = std::move(all);
  return {};
}

std::string QtFiles::replace(const std::string& path, std::string_view content) {
  std::error_code failure;
  const fs::path end = endOfLinks(std::u8string(path.begin(), path.end()), failure);
  if (failure) return failure.message();
  const QFileInfo old(toQString(end));
  if (old.exists() && !old.isFile()) return notRegular;
  return replaceRegular(old, content);
}

}  // namespace pulsemod
