#pragma once

#include <optional>
#include <string>
#include <vector>

#include "OracleLink.h"
#include "Outcome.h"

namespace pulsemod::test {

/// A second, small implementation of what the program says to a meter and makes of its replies. It
/// shares the plain structures of the model with the program, and none of its routines.
class Oracle {
 public:
  Oracle(bool serial, const std::vector<std::string>& setup, const Faults& faults)
      : link_(serial, setup, faults) {}

  /// What a workflow comes to.
  template <typename Workflow>
  Outcome follow(const Workflow& workflow);

  // What the user and the loops do, by the names that the program has for it.
  void start(char course);
  void startAcquisition();
  void pass();
  void stop();
  void editCaptureTime(float seconds) { edit(capture_, seconds); }
  void editReference(float level) { edit(reference_, level); }
  void editDelay(float seconds) { edit(delay_, seconds); }
  void editScale(float scale) { edit(scale_, scale); }
  void command(const std::string& text);
  void load();
  void save();
  void editMarker(int number, float seconds);

  void startCcdf();
  void ccdfPass();
  void stopCcdf();
  void editStartPower(float power);
  void editStopPower(float power);
  void replacePowerRange(float start, float stop);
  void requestSource(const std::string& word);
  void switchCursor(bool on);
  void editCursor(float power);

  Outcome model;
  bool infoBoxOpen = false;
  bool cursorShown = false;

 private:
  struct Ended {};
  struct Fault {
    std::string text;
  };
  struct Parameter {
    const char* mnemonic;
    const char* unit;
    const char* queryAtOnce;
    bool anyText;
    float MeasurementSettings::*value;
    bool pending = false;
  };
  enum class Readout { none, notAProfile, read };

  std::string channel() const;
  void box(const std::string& text, const std::string& title = "Pelmora",
           const std::string& icon = "exclamation", const std::string& details = "");
  /// One exchange of a handler, and what follows when it is over.
  template <typename Exchange>
  void talk(const Exchange& exchange);
  void endOfTalk();

  void identify();
  void stopStatistics();
  void readConfiguration();
  void readChannel();
  void readRepeat();
  void readGate(int gate);
  void expandRepeat();
  void readMarkers();
  void readAveraging();
  Readout readPoints();
  void single(const std::string& query, int index, float& value);
  void whole(const std::string& query, int index, std::int16_t& value);
  void writeConfiguration();
  void selectPulseMode();
  void writeGate(int gate);
  void checkCompleted();
  ChannelSettings& activeChannel();

  void readBackAtStart();
  bool readProfile();
  bool storeText(const std::string& reply);
  bool storeBlock(const std::string& reply);
  void readResults();
  void storeResults(const std::string& reply, int first, std::size_t group);
  void readMarkerReadings();
  void stopNow();
  void edit(Parameter& parameter, float value);
  void sendParameter(const Parameter& parameter, float value);
  void carryOut(Parameter& parameter);
  void carryOutPending();

  std::optional<std::string> graphFault(bool labels) const;
  bool drawProfile(bool labels);

  void configureCcdf();
  void readCcdfSettings();
  bool readCurve();
  bool storeCurve(const std::string& reply);
  void readPower(const char* mnemonic, float& power);
  void tellPower(const char* mnemonic, float& power);
  void readCursor(const char* query = "TTMKRO", int powerField = 2, int percentField = 1);
  void sendCursor();
  void changeSource(const std::string& word);
  void readSource();
  void carryOutCcdf();
  void stopCcdfNow();
  void showCursor() { cursorShown = model.ccdf.CursorOn != False16; }
  bool drawCurve();

  OracleLink link_;
  Parameter capture_{"TRCAPT", "PMOD", ",PMOD", true, &MeasurementSettings::CaptureTime};
  Parameter reference_{"PMPREF", "DB", ",DB", false, &MeasurementSettings::ReferenceLevel};
  Parameter delay_{"TRDLYT", "PMOD", "PMOD", false, &MeasurementSettings::TriggerDelay};
  Parameter scale_{"PMPSCAL", "DB", ",DB", false, &MeasurementSettings::ScalePerDivision};
  bool lossTold_ = false;
  bool graphFaultTold_ = false;
  struct {
    bool startPower = false;
    bool stopPower = false;
    bool marker = false;
    bool gate = false;
    bool channel = false;
    bool cursorOn = false;
    bool cursorOff = false;
    bool position = false;
    bool range = false;
  } pending_;
};

template <typename Workflow>
Outcome Oracle::follow(const Workflow& workflow) {
  try {
    workflow(*this);
  } catch (const OracleLink::WaitsForEver&) {
    model.end = Outcome::End::waited;
  } catch (const Ended&) {
    model.end = Outcome::End::ended;
  }
  model.sent = link_.sent;
  return model;
}

template <typename Exchange>
void Oracle::talk(const Exchange& exchange) {
  std::optional<Fault> fault;
  try {
    exchange();
  } catch (const Fault& caught) {
    fault = caught;
  }
  endOfTalk();
  if (fault) throw *fault;
}

}  // namespace pulsemod::test
