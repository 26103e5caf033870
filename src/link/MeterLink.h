#pragma once

#include <string>

#include "link/CommsSettings.h"

/// Every exchange with the meter, over GPIB or RS232 as `LinkSettings.commsType` says; with any
/// other comms type an operation does nothing and fails.
///
/// Framing. GPIB: the text as it is, ended by newline with EOI; of each chunk of a reply the last
/// character, its terminator, is dropped. RS232: the text and a carriage return; a reply is "R",
/// the text, and a line feed, and its carriage return stays in the text.
///
/// All operations are synchronous and let the user interface run while they wait. They show no
/// message: a failure is a `false` and the caller decides. They open no conversation
/// (link/Conversation.h): whoever starts an exchange has done so.

namespace pulsemod {

/// The settings of the link. Start-up copies them once from `EditedComms` when the user has chosen
/// how to begin; later edits do not touch them.
extern CommsSettings LinkSettings;

/// A meter over RS232 that has been silent for so long can be given up.
inline constexpr int replyPatienceMs = 2000;

/// While true, the user can give up waiting for a reply over RS232 by closing `frmPleaseWait`: a
/// meter that has been silent for `replyPatienceMs` is then not waited for any longer. Set by
/// start-up, while no other window is there that could be closed instead.
extern bool ReplyMayBeGivenUp;

/// A reply was given up, so what still comes of it would be taken for the reply to the next query:
/// every later exchange over RS232 fails at once.
extern bool LinkGivenUp;

/// GPIB: clears the interface and the meter and gives it half a second, during which no event runs.
/// RS232: nothing. That a library call failed shows at the first exchange.
void OpenMeterLink();

/// RS232 only: closes the port if it is open and gives it the settings "<baud>,N,8,1" and the port
/// number. It does not open the port.
void ConfigureSerialPort();

/// Takes the GPIB board offline, whatever the comms type is.
void CloseMeterLink();

/// The serial port of an RS232 link is closed: it could not be opened, or was lost. Never for GPIB.
bool linkIsLost();

/// Why the link does not work, in words for the user; empty when nothing is known.
std::string linkFailureReason();

/// Sends a command. GPIB: true when it was sent. RS232: returns when the last character has left,
/// and always false; no caller relies on it.
bool SendCommand(const std::string& command);

/// Sends a query and reads its reply. On false, `reply` holds what had come until then. An error
/// that the meter reports while it is polled (also one of an earlier command) is cleared with
/// "*CLS" and makes the query fail.
bool QueryMeter(const std::string& command, std::string& reply);

/// As `QueryMeter`, for a query that the meter answers only when something has happened: on GPIB
/// the meter is polled every 100 ms, without limit, until its message is available.
bool QueryMeterWhenReady(const std::string& command, std::string& reply);

/// Sends `command` + "; *OPC?". GPIB: true when the meter answers 1. RS232: reads the reply, and is
/// always false, although the meter has completed the command.
bool WaitOperationComplete(const std::string& command);

/// GPIB: sends the device clear to the meter, then waits 100 ms. Before each acquisition start.
void ClearMeter();

/// Waits so many milliseconds while the user interface runs. The argument is overwritten with the
/// reading of the clock that ends the wait (seconds since midnight): give each call a variable of
/// its own.
void DelayMs(float& milliseconds);

}  // namespace pulsemod
