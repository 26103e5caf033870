#include <QApplication>
#include <QIcon>
#include <QTimer>

#include "Program.h"

namespace {

QIcon windowIcon() {
  QIcon icon;
  for (const int size : {16, 32, 48, 128}) icon.addFile(QStringLiteral(":/icons/%1.png").arg(size));
  return icon;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  // The name of the installed desktop file: it is how a desktop finds the program's name and icon.
  QApplication::setDesktopFileName(QStringLiteral("org.pelmora.PulseMod"));
  // The first window stands before its icon is decoded, which would take a tenth of the start.
  constexpr int firstWindowMs = 200;
  QTimer::singleShot(firstWindowMs, [] { QApplication::setWindowIcon(windowIcon()); });
  return pulsemod::runProgram(application);
}
