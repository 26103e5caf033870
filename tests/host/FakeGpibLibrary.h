#pragma once

/// What a test sets and reads inside the loaded stand-in, by way of its exported functions.
struct FakeGpibState {
  int status = 0x100;
  int error = 0;
  long longCount = 0;
  int foundDescriptor = 17;
  short statusByte = 0;
  const char* reply = "";
};
