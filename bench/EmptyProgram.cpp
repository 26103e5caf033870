// The least that a Qt Widgets program can be: what ours is compared with at start.

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QWidget window;
  window.resize(420, 320);
  window.show();
  return QApplication::exec();
}
