#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "host/HostProgramEnd.h"

namespace pulsemod::test {
namespace {

std::string contentOf(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ProgramEnd, EndsAtOnceWithSuccessAndKeepsOutput) {
  const QTemporaryDir folder;
  const std::string path = folder.path().toStdString() + "/output";
  EXPECT_EXIT(
      {
        std::atexit([] { std::_Exit(3); });
        std::FILE* output = std::fopen(path.c_str(), "w");
        std::fputs("last words", output);
        HostProgramEnd().endProgram();
      },
      testing::ExitedWithCode(0), "");
  EXPECT_EQ(contentOf(path), "last words");
}

}  // namespace
}  // namespace pulsemod::test
