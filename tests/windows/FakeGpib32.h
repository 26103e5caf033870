#pragma once

/// What a test sets and reads inside the loaded stand-in, by way of its exported functions.
struct FakeGpib32State {
  /// What each call writes into the registered variables.
  int status = 0x100;
  int error = 0;
  int count = 0;
  long longCount = 0;

  /// A registration gives this number and keeps the variables, unless it is `asUsual`: then it
  /// gives 0 and keeps them, or 1 and keeps the earlier ones.
  static constexpr int asUsual = -1000;
  int registrationResult = asUsual;

  int foundDescriptor = 17;
  short statusByte = 0;
  const char* reply = "";
};
