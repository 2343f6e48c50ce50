#pragma once

#include <array>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "pages/device_page.h"
#include "support/page_fixture.h"
#include "support/run_task.h"

namespace tarvo::test {

/// A page of four analogue inputs, each with a lamp for its overflow.
struct InputPage {
  const char* model;
  const char* label;  ///< what brings the page to the screen
  const char* menu;
  const char* commit;  ///< buttons, but for the model
  const char* reset;
  int number;   ///< `NrFinestra`
  int runKind;  ///< of its session
  int code;     ///< high byte of the identity
  int release;  ///< of the firmware, where a test asks for no other
  int resetRegister;
  int firstCount;  ///< registers of the first block, which begins at 40002
  int pollRegister;
  int pollCount;
  const char* poll;
  /// What the first Start brings over the line; empty behind the last.
  std::array<const char*, 4> start;

  friend std::ostream& operator<<(std::ostream& out, const InputPage& page) { return out << page.model; }
};

inline constexpr char kCommitted[] = "EEProm updated! Please reset module to apply changes.";

inline constexpr InputPage kGaven = {.model = "Gaven",
                                     .label = "labGaven",
                                     .menu = "MenuGaven",
                                     .commit = "WEEP",
                                     .reset = "Reset",
                                     .number = 4,
                                     .runKind = 5,
                                     .code = 0x07,
                                     .release = 2,
                                     .resetRegister = 40016,
                                     .firstCount = 11,
                                     .pollRegister = 40013,
                                     .pollCount = 12,
                                     .poll = "reads 40013 x12",
                                     .start = {"reads 40001", "reads 40002 x11", "reads 40066", "reads 40013 x12"}};
inline constexpr InputPage kHollin = {.model = "Hollin",
                                      .label = "MenuHollin",
                                      .menu = "MenuHollin",
                                      .commit = "WEEP",
                                      .reset = "Reset",
                                      .number = 8,
                                      .runKind = 6,
                                      .code = 0x0B,
                                      .release = 1,
                                      .resetRegister = 40016,
                                      .firstCount = 11,
                                      .pollRegister = 40013,
                                      .pollCount = 12,
                                      .poll = "reads 40013 x12",
                                      .start = {"reads 40001", "reads 40002 x11", "reads 40013 x12", ""}};
inline constexpr InputPage kJorun = {.model = "Jorun",
                                     .label = "labJorun",
                                     .menu = "menuJorun",
                                     .commit = "buttWEEP",
                                     .reset = "buttReset",
                                     .number = 5,
                                     .runKind = 6,
                                     .code = 0x06,
                                     .release = 3,
                                     .resetRegister = 40012,
                                     .firstCount = 10,
                                     .pollRegister = 40012,
                                     .pollCount = 5,
                                     .poll = "reads 40012 x5",
                                     .start = {"reads 40001", "reads 40001", "reads 40002 x10", "reads 40066"}};
inline constexpr InputPage kKelmar = {.model = "Kelmar",
                                      .label = "menuKelmar",
                                      .menu = "menuKelmar",
                                      .commit = "WEEP",
                                      .reset = "Reset",
                                      .number = 7,
                                      .runKind = 6,
                                      .code = 0x0C,
                                      .release = 1,
                                      .resetRegister = 40012,
                                      .firstCount = 10,
                                      .pollRegister = 40012,
                                      .pollCount = 5,
                                      .poll = "reads 40012 x5",
                                      .start = {"reads 40001", "reads 40002 x10", "reads 40012 x5", ""}};

/// What the first Start of a page brings over the line.
inline std::vector<std::string> StartReads(const InputPage& page) {
  std::vector<std::string> reads(page.start.begin(), page.start.end());
  std::erase(reads, "");
  return reads;
}

/// Such a page with its module on COM1: 9600,n,8,1, address 1, all else 0.
class InputPageFixture : public PageFixture {
 protected:
  static constexpr int kCommunication = 40002;
  static constexpr int kFlags = 40003;
  static constexpr int kStoredCommunication = 40066;
  static constexpr int kInputs = 4;
  static constexpr int kLamps = 8;

  static constexpr int kNegativeColour = 255;
  static constexpr int kPositiveColour = 0xFF8080;

  explicit InputPageFixture(const InputPage& page)
      : PageFixture(PageNames{.model = page.model, .label = page.label, .menu = page.menu}), inputs_(page) {
    SetRelease(page.release);
    Set(kCommunication, 0x0101);
    Set(kStoredCommunication, 0x0101);
    OpenPage();
  }

  void SetRelease(int release) { Set(kIdentity, inputs_.code << 8 | release); }
  /// Any value that fits 16 bits with or without sign.
  void Set(int number, int value) { module[number] = static_cast<std::uint16_t>(value); }

  /// "Start" gives "StartHollin".
  std::string Own(const char* control) const { return std::string(control) + inputs_.model; }
  std::string Own(const char* array, int index) const { return Member(Own(array).c_str(), index); }
  std::string Label() const { return Own("MDIForm1.lab"); }
  std::string Menu() const { return std::string("MDIForm1.") + inputs_.menu; }
  std::string Lamp(int element) const { return Own("Overflow", element); }
  std::string Bar(int input) const { return Own("Barg", input); }
  int FillColor(int input) const { return Number(Bar(input), "FillColor"); }

  /// A session that has just begun, after the one before it, if any.
  void Begin() {
    if (InSession()) Click(Own("Stop"));
    Click(Own("Start"));
    ASSERT_TRUE(InSession());
  }

  /// A commit up to its box, and the answer to it; gives what went over the line.
  std::vector<std::string> Commit() {
    module.ForgetLog();
    Click(Own(inputs_.commit));
    EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
    std::vector<std::string> exchanges = Exchanges();
    AnswerOk();
    return exchanges;
  }
  /// What the search makes the page on the screen do.
  void ReadEEPromFlags() { RunTask(scheduler, dynamic_cast<pages::DevicePage&>(Page()).ReadEEPromFlags()); }

  /// What went over the line, the polls of a session left out.
  std::vector<std::string> Exchanges() { return TakeExchanges(inputs_.poll); }

  /// The lamps that are lit; the others must be dark.
  std::vector<int> LitLamps() const {
    std::vector<int> lit;
    for (int lamp = 0; lamp < kLamps; ++lamp) {
      const int colour = BackColor(Lamp(lamp));
      if (colour == 255) {
        lit.push_back(lamp);
      } else {
        EXPECT_EQ(colour, 64) << lamp;
      }
    }
    return lit;
  }

  /// Which of the page's controls take gestures.
  std::map<std::string, bool> Enabling() const {
    std::map<std::string, bool> enabled;
    for (const view::Control* control : Page().Controls()) enabled[control->Name()] = control->Enabled();
    return enabled;
  }
  void ExpectOffline() const {
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(line.IsOpen());
    for (const char* button : {"Start", inputs_.commit, inputs_.reset}) EXPECT_TRUE(Enabled(Own(button))) << button;
    EXPECT_TRUE(Enabled(Label()));
    EXPECT_TRUE(Enabled(Menu()));
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
  }
  void ExpectNothingOnTheLine() {
    Run(std::chrono::seconds(1));
    EXPECT_EQ(ports.Attempts(), 0);
    EXPECT_THAT(module.TakeLog(), testing::IsEmpty());
  }

 private:
  const InputPage& inputs_;
};

}  // namespace tarvo::test
