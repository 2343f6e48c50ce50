#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "state/word.h"

namespace tarvo::state {

/// Booleans of the system: 16 bits, -1 for true and 0 for false.
inline constexpr std::int16_t kTrue = -1;
inline constexpr std::int16_t kFalse = 0;

/// The values that the whole program shares, under the system's names.
struct SharedState {
  std::string PCSettings = "9600,n,8,1";  ///< baud, parity letter, data bits, stop bits
  int PCPort = 1;                         ///< COM port, 1 to 4
  int ModuleAddress = 1;                  ///< slave address, 1 to 255

  std::int16_t StartComm = kFalse;  ///< -1 while a session or a search runs
  int NrFinestra = -1;              ///< number of the current page in the page table, -1 for none
  Register PollRegister{40001};     ///< first register of the poll
  int PollCount = 0;                ///< registers that the poll reads
  std::array<Word, 20> PollBuffer{};
  std::array<Word, 9> PollBufferA{};  ///< of a poll in two steps: the first one's block
  std::array<Word, 9> PollBufferB{};
  int RunKind = 0;
  int ReadStep = 0;
  int EscPressed = 0;
  int GearStep = 1;  ///< phase of the gears picture, 1 to 5

  std::int16_t FamilyShown = kTrue;     ///< -1 for "Vesk DEVICES", 0 for the others
  std::int16_t AutoScan = 1;            ///< 1 to search for a device when the program starts
  std::int16_t SearchRunning = kFalse;  ///< -1 during a search
  std::int16_t pageReadDone = kFalse;   ///< -1 once a page that reads its module by itself has done so
  std::int16_t pageEntered = kFalse;    ///< -1 once a page that works on an open port has been entered

  std::array<std::string, 21> FileFields;  ///< of the settings file; numbered from 1, the first is not used

  std::array<std::int16_t, 4> FullScaleTC{};  ///< counts that fill the bar of each thermocouple input

  std::int32_t ChangeValueMin = 0;
  std::int32_t ChangeValueMax = 0;
  std::string ChangeValueResult;
  std::int16_t ChangeValueOk = kFalse;  ///< -1 when `ChangeValue` was accepted
  std::string NewValueText;             ///< what `dlgSetNewValue` accepted
};

}  // namespace tarvo::state
