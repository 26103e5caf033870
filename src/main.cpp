#include <QApplication>

#include "Program.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  return pulsemod::runProgram(application);
}
