#include "host/QtSettingsStore.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>
#include <QStringList>

namespace pulsemod {

namespace {

class UserSettings : public QSettings {
 public:
  UserSettings()
      : QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Pelmora PulseMod")) {
    setFallbacksEnabled(false);
  }
};

std::string entryName(const std::string& section, const std::string& key) {
  return section + "/" + key;
}

/// Tries the steps of replacing the file, with more bytes than it will have, and leaves it alone;
/// gives the system's words for the step that failed. The settings class itself neither says why it
/// failed nor, on a full disk, that it did: it would leave a file that is cut short.
QString obstacleToWriting(const QString& path) {
  // The settings class makes the folder when it is not there.
  QDir().mkpath(QFileInfo(path).path());
  constexpr qint64 roomForChanges = 4096;
  const QByteArray bytes(QFileInfo(path).size() + roomForChanges, '\n');
  QSaveFile trial(path);
  const bool written =
      trial.open(QIODevice::WriteOnly) && trial.write(bytes) == bytes.size() && trial.flush();
  QString words = written ? QString() : trial.errorString();
  trial.cancelWriting();
  return words;
}

}  // namespace

std::optional<std::string> QtSettingsStore::read(const std::string& section,
                                                 const std::string& key) const {
  const std::string name = entryName(section, key);
  for (const auto& [unwrittenName, value] : unwritten_) {
    if (unwrittenName == name) return value;
  }
  const QVariant value = UserSettings().value(QString::fromStdString(name));
  if (!value.isValid()) return std::nullopt;
  // A hand-written comma has made a list of the text.
  return value.toStringList().join(QStringLiteral(", ")).toStdString();
}

void QtSettingsStore::write(const std::string& section, const std::string& key,
                            const std::string& value) {
  const std::string name = entryName(section, key);
  std::erase_if(unwritten_, [&name](const auto& entry) { return entry.first == name; });
  unwritten_.emplace_back(name, value);
}

bool QtSettingsStore::flush() {
  UserSettings settings;
  const QString path = settings.fileName();
  QString obstacle = obstacleToWriting(path);
  if (obstacle.isEmpty()) {
    for (const auto& [name, value] : unwritten_) {
      settings.setValue(QString::fromStdString(name), QString::fromStdString(value));
    }
    settings.sync();
    if (settings.status() == QSettings::NoError) {
      unwritten_.clear();
      failureReason_.clear();
      return true;
    }
    obstacle = QStringLiteral("its present content could not be read or replaced");
  }
  failureReason_ = QStringLiteral("The settings could not be written to %1: %2.")
                       .arg(QDir::toNativeSeparators(path), obstacle)
                       .toStdString();
  return false;
}

}  // namespace pulsemod
