#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Expected.h"

namespace endtoend {

/// All that a session tells the meter, writes and shows, but for the time of day, the rate, and how
/// often a pass of the acquisition is repeated.
struct Record {
  Texts messages;
  /// What it is, and its text or its bytes.
  std::vector<std::pair<std::string, std::string>> items;
};

/// One user's day with the unmodified program, under one locale: a first start with its options,
/// the profile with all its edits and files, a second start and the CCDF with its own. The meter's
/// traces and readings are always the same.
class Session : public Bench {
 public:
  Session(Link link, std::string locale) : link_(link), locale_(std::move(locale)) {}

  Record run();

 private:
  void TestBody() override {}

  void firstStart();
  void expectLocaleInForce();
  void profile();
  void editLabels();
  void dragEdge();
  void useDialog();
  void settingsFiles();
  void readouts();
  void traceFiles();
  void storeOptions();
  void ccdf();
  void dragCursor();
  void curveFiles();

  /// Reads passes until told to stop; `first` begins each.
  void acquire(const std::string& window, const std::string& first);
  /// Waits until the meter has been told all that was asked for.
  void settle();
  void settleCCDF();
  void awaitOneMore(const std::string& window, const std::string& keys,
                    const std::vector<std::string>& texts);
  void enter(const std::string& control, const std::string& text);
  void confirmMessage();
  void turnTo(const std::string& keys, const std::string& control);
  void chooseFile(const std::string& dialog, const std::string& name);
  void click(const std::string& control) { hands().click("frmProperties/" + control); }
  int widthOf(const std::string& control);

  void keep(const std::string& what, const std::string& text) {
    record_.items.emplace_back(what, text);
  }
  void keepText(const std::string& control) { keep(control, hands().get(control, "text")); }
  void keepFile(const std::string& name);
  void keepPicture(const std::string& control);

  Link link_;
  std::string locale_;
  Record record_;
};

}  // namespace endtoend
