#pragma once

#include <string>
#include <vector>

#include "support/page_fixture.h"

namespace tarvo::test {

inline constexpr char kFerrunFirstBlock[] = "reads 40002 x10";
inline constexpr char kFerrunPoll[] = "reads 40011 x12";
inline constexpr char kNotAFerrun[] = "ERROR! Module is not Ferrun or communication failed";

/// An input type as the page's list has it.
struct FerrunInput {
  const char* text;
  int lower;
  int upper;
  const char* unit;
  bool scaled;  ///< its scales can be edited; those of a temperature are fixed
};

inline constexpr FerrunInput kFerrunInputs[] = {
    {"mV (50 .. 10000)", 50, 10000, "mV", true},
    {"Ohm (350 .. 15000)", 350, 15000, "Ohm", true},
    {"uA (2000 .. 20000)", 2000, 20000, "uA", true},
    {"PT100 (-200.0 .. 600.0 °C)", -200, 600, "°C", false},
    {"NI100 (-60 .. 180.0 °C)", -60, 180, "°C", false},
    {"TC-J (-200.0 .. 1000.0 °C)", -200, 1000, "°C", false},
    {"TC-K (-250.0 .. 1200.0 °C)", -250, 1200, "°C", false},
    {"TC-R (0 .. 1750.0 °C)", 0, 1750, "°C", false},
    {"TC-S (0 .. 1750.0 °C)", 0, 1750, "°C", false},
    {"TC-T (-200.0 .. 400.0 °C)", -200, 400, "°C", false},
    {"TC-B (0 .. 1800.0 °C)", 0, 1800, "°C", false},
    {"TC-E (-200.0 .. 800.0 °C)", -200, 800, "°C", false},
    {"TC-N (-200.0 .. 1300.0 °C)", -200, 1300, "°C", false},
};
inline constexpr int kFerrunInputCount = 13;

/// A check box of the flags, 40011.
struct FerrunFlag {
  const char* box;
  int mask;
};

inline constexpr FerrunFlag kFerrunFlags[] = {
    {"CheckDelay", 0x0004},    {"checkParity", 0x0008},   {"CheckSquareRoot", 0x0100}, {"CheckBurnOUt", 0x0200},
    {"CheckAuto", 0x0400},     {"CheckInv", 0x0800},      {"CheckReload", 0x1000},     {"Check_4_20", 0x2000},
    {"Check_4_wires", 0x4000}, {"CheckResetonTx", 0x8000}};

/// The page `Ferrun` with its module: firmware release 3, input 0 to 10000 mV, safe time 50, no flag set.
class FerrunFixture : public PageFixture {
 protected:
  static constexpr int kInput = 40002;
  static constexpr int kMeasureFull = 40003;
  static constexpr int kSafeTime = 40010;
  static constexpr int kFlags = 40011;
  static constexpr int kSetpoint = 40012;
  static constexpr int kOutput = 40019;
  static constexpr int kUserValue = 40020;
  static constexpr int kMeasured = 40021;
  static constexpr int kStatus = 40022;  ///< written, it is the reset
  static constexpr int kStoredCommunication = 40073;
  static constexpr int kStoredOutput = 40083;
  static constexpr int kValues = 14;

  /// Elements of `PollBuffer`, which holds the second block in a session.
  static constexpr std::size_t kPolledFlags = 0;
  static constexpr std::size_t kPolledOutput = 8;

  FerrunFixture() : PageFixture("Ferrun") {
    MakeFerrun(module);
    OpenPage();
  }

  /// What the session's clicks brought over the line: all but its polls.
  std::vector<std::string> Exchanges() { return TakeExchanges(kFerrunPoll); }
  void SetPolled(std::size_t element, int word) {
    State().PollBuffer.at(element) = state::Word(static_cast<unsigned>(word));
  }

  static void MakeFerrun(MemoryModule& ferrun) {
    ferrun[kIdentity] = 0x0403;
    ferrun[kInput] = 0x0100;
    ferrun[kMeasureFull] = 10000;
    ferrun[40005] = 1000;
    ferrun[40007] = 10000;
    ferrun[40009] = 0x0101;
    ferrun[kSafeTime] = 50;
    ferrun[40017] = 10000;
    ferrun[kStoredCommunication] = 0x0101;
  }

  void SetRelease(int release) { module[kIdentity] = static_cast<std::uint16_t>(0x0400 | release); }
  /// A negative word too.
  void Set(int number, int word) { module[number] = static_cast<std::uint16_t>(word); }

  static std::string Value(int index) { return Member("ValueFerrun", index); }
  /// Edits a value of the page by its dialog.
  void Edit(std::string_view control, std::string_view text) {
    Click(control);
    AnswerChangeValue(text);
    ASSERT_TRUE(NothingInFront());
  }
  std::string Panel1() const { return Text("MDIForm1.StatusBar1(1)"); }
  std::string Panel2() const { return Text("MDIForm1.StatusBar1(2)"); }
};

}  // namespace tarvo::test
