// The least that a Qt Widgets program with a text on it can be: the first text has the toolkit look
// for the fonts of the machine.

#include <QApplication>
#include <QLabel>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QLabel window(QStringLiteral("Text"));
  window.resize(420, 320);
  window.show();
  return QApplication::exec();
}
