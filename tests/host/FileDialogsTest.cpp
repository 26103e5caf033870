#include <gtest/gtest.h>

#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>

#include "ModalScript.h"
#include "host/QtFileDialogs.h"

namespace pulsemod::test {
namespace {

namespace fs = std::filesystem;

class FileDialogsTest : public testing::Test {
 protected:
  static void accept(QFileDialog& dialog) { static_cast<QDialog&>(dialog).accept(); }

  static void choose(QFileDialog& dialog, const fs::path& name) {
    auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
    ASSERT_NE(edit, nullptr);
    edit->setText(QString::fromStdString(name));
    accept(dialog);
  }

  QTemporaryDir folder;
  const fs::path root = folder.path().toStdString();
  QtFileDialogs dialogs;
  ModalScript user;
};

TEST_F(FileDialogsTest, OpenGivesAnExistingFile) {
  const fs::path file = root /
                        "tr\xc3\xa4"
                        "ce.txt";
  std::ofstream(file) << "x";
  user.then<QFileDialog>([&file](QFileDialog& dialog) {
    EXPECT_EQ(dialog.objectName(), "openFileDialog");
    EXPECT_EQ(dialog.windowTitle(), "Open Second Profile");
    EXPECT_EQ(dialog.nameFilters(), QStringList{"*.txt"});
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
    choose(dialog, file);
  });
  EXPECT_EQ(dialogs.askOpenFile("Open Second Profile"), file.string());
}

TEST_F(FileDialogsTest, OpenRefusesAFileThatIsNotThere) {
  user.then<QFileDialog>([this](QFileDialog& dialog) { choose(dialog, root / "none.txt"); });
  user.then<QMessageBox>([](QMessageBox& box) { box.accept(); });
  user.then<QFileDialog>([](QFileDialog& dialog) { dialog.close(); });
  EXPECT_EQ(dialogs.askOpenFile("Open"), "");
}

TEST_F(FileDialogsTest, CancellingGivesNoName) {
  user.then<QFileDialog>([](QFileDialog& dialog) { dialog.close(); });
  EXPECT_EQ(dialogs.askOpenFile("Open"), "");
  user.then<QFileDialog>([](QFileDialog& dialog) { dialog.close(); });
  EXPECT_EQ(dialogs.askSaveFile("Save"), "");
}

TEST_F(FileDialogsTest, SaveGivesANewNameAndMakesNoFile) {
  const fs::path file = root / "trace.dat";
  user.then<QFileDialog>([&file](QFileDialog& dialog) {
    EXPECT_EQ(dialog.objectName(), "saveFileDialog");
    EXPECT_EQ(dialog.windowTitle(), "Save");
    EXPECT_EQ(dialog.nameFilters(), QStringList{"*.txt"});
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
    choose(dialog, file);
  });
  EXPECT_EQ(dialogs.askSaveFile("Save"), file.string());
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(FileDialogsTest, ANameWithoutSuffixGetsOne) {
  user.then<QFileDialog>([this](QFileDialog& dialog) { choose(dialog, root / "trace"); });
  EXPECT_EQ(dialogs.askSaveFile("Save"), (root / "trace.txt").string());
}

TEST_F(FileDialogsTest, ReplacingAFileIsAskedForUnderTheCompletedName) {
  std::ofstream(root / "trace.txt") << "x";
  user.then<QFileDialog>([this](QFileDialog& dialog) { choose(dialog, root / "trace"); });
  user.then<QMessageBox>([](QMessageBox& box) {
    EXPECT_TRUE(box.text().contains("trace.txt")) << box.text().toStdString();
    box.button(QMessageBox::No)->click();
  });
  user.then<QFileDialog>([](QFileDialog& dialog) { accept(dialog); });
  user.then<QMessageBox>([](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); });
  EXPECT_EQ(dialogs.askSaveFile("Save"), (root / "trace.txt").string());
}

}  // namespace
}  // namespace pulsemod::test
