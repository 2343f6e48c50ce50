#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "pages/device_page.h"
#include "support/page_fixture.h"

namespace tarvo::test {

// The two blocks that a session polls in turn.
inline constexpr char kLumetFirstPoll[] = "reads 40002 x9";
inline constexpr char kLumetSecondPoll[] = "reads 40011 x9";
inline constexpr char kNotALumet[] = "ERROR! Module is not Lumet or communication failed";
inline constexpr char kLumetOldFirmware[] = "FW Version  :1, down counters, delay, parity  checkboxes are disabled";

/// The page `frmLumet` with its module on COM1: firmware release 2, 9600,n,8,1, address 1, both measures the frequency
/// of input 1, filter 10, no flag set.
class LumetFixture : public PageFixture {
 protected:
  static constexpr int kStates = 40002;
  static constexpr int kCounter1 = 40003;
  static constexpr int kTotal9 = 40011;  ///< the low word, the high one behind it
  static constexpr int kTotal10 = 40013;
  static constexpr int kOverflows = 40015;
  static constexpr int kMeasure1 = 40016;
  static constexpr int kMeasureSetup = 40018;
  static constexpr int kFilter = 40019;
  static constexpr int kFlags = 40020;
  static constexpr int kCommunication = 40021;
  static constexpr int kReset = 40022;
  static constexpr int kStoredMeasureSetup = 40082;
  static constexpr int kStoredFilter = 40083;
  static constexpr int kStoredFlags = 40084;
  static constexpr int kStoredCommunication = 40085;  ///< address and rate: the page takes them from here
  static constexpr int kInputs = 10;
  static constexpr int kNarrow = 8;  ///< inputs with a counter of 16 bits

  LumetFixture() : PageFixture("Lumet") {
    SetRelease(2);
    Set(kMeasureSetup, 0x0101);
    Set(kFilter, 10);
    Set(kCommunication, 0x0101);
    Set(kStoredCommunication, 0x0101);
    OpenPage();
  }

  void SetRelease(int release) { Set(kIdentity, 0x0A00 | release); }
  void Set(int number, int word) { module[number] = static_cast<std::uint16_t>(word); }
  void SetPolled(std::size_t element, int word) {
    State().PollBuffer.at(element) = state::Word(static_cast<unsigned>(word));
  }

  /// Time for a poll of each block and the paint after it.
  void RunThroughBothSteps() { Run(core::milliseconds(600)); }

  /// A session with the module as it is, ended again.
  void Visit() {
    StartSession();
    Click("StopLumet");
  }
  void Visit(int release) {
    SetRelease(release);
    Visit();
  }
  /// What went over the line since the last call, the polls of a session left out.
  std::vector<std::string> Exchanges() {
    std::vector<std::string> exchanges = TakeExchanges(kLumetFirstPoll);
    std::erase(exchanges, kLumetSecondPoll);
    return exchanges;
  }

  /// Edits a value of the page by its dialog.
  void Edit(std::string_view control, std::string_view text) {
    Click(control);
    AnswerChangeValue(text);
    ASSERT_TRUE(NothingInFront());
  }
  /// Makes a value of the page say what no dialog accepts, as a file can.
  void Force(std::string_view label, const char* text) { dynamic_cast<view::Label&>(At(label)).Caption = text; }

  // Inputs count from 0 here, the bars' names from 1.
  static std::string Stato(int input) { return Member("StatoIN", input); }
  static std::string Total(int input) { return Member("TotIN", input); }
  static std::string Overflow(int input) { return Member("OverFlowIN", input); }
  static std::string Bar(int input) { return "BargLumet" + std::to_string(input + 1); }
  static std::string Ingresso(int channel) { return Member("cbIngresso", channel); }
  static std::string TipoMisura(int channel) { return Member("cbTipoMisura", channel); }
  static std::string Misura(int channel) { return Member("tbMisura", channel); }

  std::vector<std::string> Totals() const {
    std::vector<std::string> totals;
    for (int i = 0; i < kInputs; ++i) totals.push_back(Text(Total(i)));
    return totals;
  }

  void ExpectFiveRates() const {
    EXPECT_THAT(List("BaudLumet"), testing::ElementsAre("4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("BaudLumet"), testing::ElementsAre(0, 1, 2, 3, 4));
  }
  void ExpectSevenRates() const {
    EXPECT_THAT(List("BaudLumet"), testing::ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("BaudLumet"), testing::ElementsAre(6, 7, 0, 1, 2, 3, 4));
  }
  /// The page without a session, and quiet.
  void ExpectOffline() {
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(Enabled("TimerIngranaggi"));
    EXPECT_FALSE(Enabled("TimerControllo"));
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(line.IsOpen());
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
    for (const char* name : {"StartLumet", "WEEPLumet", "ResetLumet", "MDIForm1.labLumet", "MDIForm1.mnuLumet",
                             "MDIForm1.buttCheckDevice"}) {
      EXPECT_TRUE(Enabled(name)) << name;
    }
    module.ForgetLog();
    Run(std::chrono::seconds(1));
    EXPECT_THAT(module.TakeLog(), testing::IsEmpty());
  }

  pages::DevicePage& Lumet() const { return dynamic_cast<pages::DevicePage&>(*program.FindWindow("frmLumet")); }
  /// The page's own reading of its module, without a session.
  void ReadEEPromFlags() {
    bool ended = false;
    Lumet().Spawn(ReadAndTell(&Lumet(), &ended));
    ASSERT_TRUE(RunUntil([&] { return ended; }));
  }

 private:
  static core::Task<> ReadAndTell(pages::DevicePage* page, bool* ended) {
    co_await page->ReadEEPromFlags();
    *ended = true;
  }
};

}  // namespace tarvo::test
