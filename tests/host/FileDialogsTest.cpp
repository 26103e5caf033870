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

const std::vector<FileKind> pictureKinds{{"PNG picture", "png"}, {"SVG drawing", "svg"}};

TEST_F(FileDialogsTest, KindsAreOfferedAndTheFirstOneCompletesTheName) {
  user.then<QFileDialog>([this](QFileDialog& dialog) {
    EXPECT_EQ(dialog.objectName(), "saveFileDialog");
    EXPECT_EQ(dialog.windowTitle(), "Save Picture");
    EXPECT_EQ(dialog.nameFilters(), (QStringList{"PNG picture (*.png)", "SVG drawing (*.svg)"}));
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
    choose(dialog, root / "pulse");
  });
  EXPECT_EQ(dialogs.askSaveFileOfKind("Save Picture", pictureKinds), (root / "pulse.png").string());
  EXPECT_FALSE(fs::exists(root / "pulse.png"));
}

TEST_F(FileDialogsTest, TheChosenKindCompletesTheName) {
  user.then<QFileDialog>([this](QFileDialog& dialog) {
    dialog.selectNameFilter("SVG drawing (*.svg)");
    emit dialog.filterSelected("SVG drawing (*.svg)");
    choose(dialog, root / "pulse");
  });
  EXPECT_EQ(dialogs.askSaveFileOfKind("Save Picture", pictureKinds), (root / "pulse.svg").string());
}

TEST_F(FileDialogsTest, ATypedSuffixOfAKindStays) {
  for (const char* name : {"pulse.svg", "pulse.SVG", "pulse.png"}) {
    user.then<QFileDialog>([&](QFileDialog& dialog) { choose(dialog, root / name); });
    EXPECT_EQ(dialogs.askSaveFileOfKind("Save Picture", pictureKinds), (root / name).string());
  }
}

TEST_F(FileDialogsTest, ADotInTheNameIsNoSuffixOfAKind) {
  user.then<QFileDialog>([this](QFileDialog& dialog) { choose(dialog, root / "pulse 4.6ms"); });
  EXPECT_EQ(dialogs.askSaveFileOfKind("Save Picture", pictureKinds),
            (root / "pulse 4.6ms.png").string());
}

TEST_F(FileDialogsTest, ANameThatIsCompletedLaterIsAskedForToo) {
  std::ofstream(root / "pulse 4.6ms.png") << "x";
  user.then<QFileDialog>([this](QFileDialog& dialog) { choose(dialog, root / "pulse 4.6ms"); });
  user.then<QMessageBox>([](QMessageBox& box) {
    EXPECT_EQ(box.objectName(), "questionBox");
    EXPECT_EQ(box.windowTitle(), "Pelmora");
    EXPECT_EQ(box.text(), "pulse 4.6ms.png already exists.\nDo you want to replace it?");
    EXPECT_EQ(box.icon(), QMessageBox::Warning);
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
    box.button(QMessageBox::No)->click();
  });
  user.then<QFileDialog>([this](QFileDialog& dialog) { choose(dialog, root / "pulse 4.6ms"); });
  user.then<QMessageBox>([](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); });
  EXPECT_EQ(dialogs.askSaveFileOfKind("Save Picture", pictureKinds),
            (root / "pulse 4.6ms.png").string());
}

TEST_F(FileDialogsTest, CancellingGivesNoNameOfAKind) {
  user.then<QFileDialog>([](QFileDialog& dialog) { dialog.close(); });
  EXPECT_EQ(dialogs.askSaveFileOfKind("Save Picture", pictureKinds), "");
}

}  // namespace
}  // namespace pulsemod::test
