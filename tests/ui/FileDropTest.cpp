#include <QDialog>
#include <QMimeData>
#include <QUrl>

#include "WindowTest.h"
#include "link/Fault.h"
#include "support/FakeWorld.h"
#include "ui/FileDrop.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// A window that files are dropped on, and what it was told to open.
struct Target {
  FakeWorld world;
  QWidget window;
  std::vector<std::string> opened;

  Target() {
    new FileDrop(&window, [this](const std::string& path) {
      opened.push_back(path);
      if (path.ends_with("bad.txt")) throw Fault("cannot be read");
    });
    window.resize(200, 100);
    window.show();
  }

  /// Drags the data in, over the window and drops it; whether each was accepted.
  QList<bool> drop(const QMimeData& data, Qt::DropActions offered = Qt::CopyAction,
                   Qt::KeyboardModifiers keys = Qt::NoModifier) {
    QDragEnterEvent enter(QPoint(5, 5), offered, &data, Qt::LeftButton, keys);
    QDragMoveEvent move(QPoint(9, 9), offered, &data, Qt::LeftButton, keys);
    QDropEvent dropped(QPointF(9, 9), offered, &data, Qt::LeftButton, keys);
    QList<bool> accepted;
    for (QDropEvent* event :
         {static_cast<QDropEvent*>(&enter), static_cast<QDropEvent*>(&move), &dropped}) {
      QCoreApplication::sendEvent(&window, event);
      accepted << event->isAccepted();
      actions << event->dropAction();
    }
    return accepted;
  }

  QList<Qt::DropAction> actions;
};

constexpr auto file = "file:///data/settings.txt";

}  // namespace

class FileDropTest : public QObject {
  Q_OBJECT

 private slots:
  void oneFileIsOpenedAfterTheDrop();
  void refused_data();
  void refused();
  void pathKeepsItsLetters();
  void isCopiedEvenWhereItCouldBeMoved();
  void nothingIsTakenWhileAnotherWindowIsModal();
  void fileWaitsForTheEndOfABoxThatCameUpAfterItsDrop();
  void aModalWindowTakesItsOwn();
  void faultIsReported();
  void windowThatIsGoneOpensNothing();
};

void FileDropTest::oneFileIsOpenedAfterTheDrop() {
  Target target;
  QVERIFY(target.window.acceptDrops());
  QMimeData data;
  data.setUrls({QUrl(file)});
  QCOMPARE(target.drop(data), (QList<bool>{true, true, true}));
  QVERIFY(target.opened.empty());
  QCoreApplication::processEvents();
  QCOMPARE(target.opened, std::vector<std::string>{"/data/settings.txt"});
}

void FileDropTest::refused_data() {
  QTest::addColumn<QStringList>("urls");
  QTest::addColumn<QString>("text");
  QTest::newRow("two files") << QStringList{file, "file:///data/other.txt"} << "";
  QTest::newRow("page of the web") << QStringList{"http://example.com/settings.txt"} << "";
  QTest::newRow("text") << QStringList() << "/data/settings.txt";
  QTest::newRow("nothing") << QStringList() << "";
}

void FileDropTest::refused() {
  QFETCH(QStringList, urls);
  QFETCH(QString, text);
  Target target;
  QMimeData data;
  QList<QUrl> list;
  for (const QString& url : urls) list << QUrl(url);
  if (!list.isEmpty()) data.setUrls(list);
  if (!text.isEmpty()) data.setText(text);
  QCOMPARE(target.drop(data), (QList<bool>{false, false, false}));
  QCoreApplication::processEvents();
  QVERIFY(target.opened.empty());
}

void FileDropTest::pathKeepsItsLetters() {
  Target target;
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QString::fromUtf8("/data/gr\xc3\xbc n%20#1.txt"))});
  target.drop(data);
  QCoreApplication::processEvents();
  QCOMPARE(target.opened, std::vector<std::string>{"/data/gr\xc3\xbc n%20#1.txt"});
}

/// The file manager would else delete it.
void FileDropTest::isCopiedEvenWhereItCouldBeMoved() {
  Target target;
  QMimeData data;
  data.setUrls({QUrl(file)});
  // The key with which file managers move.
  target.drop(data, Qt::MoveAction | Qt::CopyAction, Qt::ShiftModifier);
  QCOMPARE(target.actions, (QList<Qt::DropAction>{Qt::CopyAction, Qt::CopyAction, Qt::CopyAction}));
}

void FileDropTest::nothingIsTakenWhileAnotherWindowIsModal() {
  Target target;
  QDialog box;
  box.setModal(true);
  box.show();
  QCOMPARE(QApplication::activeModalWidget(), &box);
  QMimeData data;
  data.setUrls({QUrl(file)});
  QCOMPARE(target.drop(data), (QList<bool>{false, false, false}));
  box.close();
  QCOMPARE(target.drop(data), (QList<bool>{true, true, true}));
  QCoreApplication::processEvents();
  QCOMPARE(target.opened.size(), std::size_t{1});
}

void FileDropTest::fileWaitsForTheEndOfABoxThatCameUpAfterItsDrop() {
  Target target;
  QMimeData data;
  data.setUrls({QUrl(file)});
  target.drop(data);
  QDialog box(&target.window);
  box.open();
  QCoreApplication::processEvents();
  QVERIFY(target.opened.empty());
  box.accept();
  QCoreApplication::processEvents();
  QCOMPARE(target.opened, std::vector<std::string>{"/data/settings.txt"});
  QCoreApplication::processEvents();
  QCOMPARE(target.opened.size(), std::size_t{1});
}

void FileDropTest::aModalWindowTakesItsOwn() {
  Target target;
  target.window.hide();
  target.window.setWindowModality(Qt::ApplicationModal);
  target.window.show();
  QMimeData data;
  data.setUrls({QUrl(file)});
  QCOMPARE(target.drop(data), (QList<bool>{true, true, true}));
  QCoreApplication::processEvents();
  QCOMPARE(target.opened.size(), std::size_t{1});
}

void FileDropTest::faultIsReported() {
  Target target;
  QMimeData data;
  data.setUrls({QUrl("file:///data/bad.txt")});
  target.drop(data);
  QCoreApplication::processEvents();
  QCOMPARE(target.world.dialogs.messages.size(), std::size_t{1});
  QVERIFY((target.world.dialogs.messages[0] ==
           ShownBox{"cannot be read", "Pelmora", MessageIcon::exclamation, {}}));
}

void FileDropTest::windowThatIsGoneOpensNothing() {
  std::vector<std::string> opened;
  QMimeData data;
  data.setUrls({QUrl(file)});
  {
    QWidget window;
    new FileDrop(&window, [&opened](const std::string& path) { opened.push_back(path); });
    QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &enter);
    QDropEvent dropped(QPointF(1, 1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &dropped);
    QVERIFY(dropped.isAccepted());
  }
  QCoreApplication::processEvents();
  QVERIFY(opened.empty());
}

QTEST_MAIN(FileDropTest)
#include "FileDropTest.moc"
