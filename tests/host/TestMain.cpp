#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

/// Each run has a configuration folder of its own, which other users may enter: some tests act as
/// one.
int main(int argc, char** argv) {
  const QTemporaryDir configuration;
  QFile::setPermissions(configuration.path(), QFile::ReadOwner | QFile::WriteOwner |
                                                  QFile::ExeOwner | QFile::ReadOther |
                                                  QFile::ExeOther);
  qputenv("XDG_CONFIG_HOME", configuration.path().toLocal8Bit());
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
