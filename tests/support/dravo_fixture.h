#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "pages/device_page.h"
#include "support/page_fixture.h"

namespace tarvo::test {

inline constexpr char kDravoPoll[] = "reads 40002 x12";
inline constexpr char kNotADravo[] = "ERROR! Module is not Dravo or communication failed";

/// The page `Dravo` with its module on COM1: firmware release 3, 9600,n,8,1, address 1, millivolts from 0 to 10000 on
/// a user scale alike, no flag set.
class DravoFixture : public PageFixture {
 protected:
  static constexpr int kInput = 40002;
  /// The first of six.
  static constexpr int kValue = 40003;
  static constexpr int kCommunication = 40009;
  static constexpr int kFlags = 40010;
  static constexpr int kUserValue = 40011;
  static constexpr int kMeasured = 40012;
  static constexpr int kStatus = 40013;
  static constexpr int kReset = 40013;
  static constexpr int kStoredCommunication = 40073;  ///< address and rate: the page takes them from here
  static constexpr int kValues = 6;
  static constexpr int kLamps = 6;

  /// Element of `PollBuffer`.
  static constexpr std::size_t kPolledFlags = 8;

  /// Colours of a lamp.
  static constexpr int kLit = 255;
  static constexpr int kButtonFace = static_cast<int>(0x8000000F);

  DravoFixture() : PageFixture("Dravo") {
    SetRelease(3);
    Set(kInput, 0x0100);
    SetValues({10000, 0, 10000, 0, 10000, 0});
    Set(kCommunication, 0x0101);
    Set(kStoredCommunication, 0x0101);
    OpenPage();
  }

  void SetRelease(int release) { Set(kIdentity, 0x0300 | release); }
  /// Any value that fits 16 bits with or without sign.
  void Set(int number, int value) { module[number] = static_cast<std::uint16_t>(value); }
  /// The six values from 40003 on.
  void SetValues(std::initializer_list<int> six) {
    int number = kValue;
    for (const int value : six) Set(number++, value);
  }

  static std::string Value(int index) { return Member("ValueDravo", index); }
  static std::string Lamp(int index) { return Member("StatusDravo", index); }
  std::vector<std::string> ValueTexts() const {
    std::vector<std::string> texts;
    for (int i = 0; i < kValues; ++i) texts.push_back(Text(Value(i)));
    return texts;
  }
  /// The lamps that are lit; the others must be dark.
  std::vector<int> LitLamps() const {
    std::vector<int> lit;
    for (int i = 0; i < kLamps; ++i) {
      if (BackColor(Lamp(i)) == kLit) {
        lit.push_back(i);
      } else {
        EXPECT_EQ(BackColor(Lamp(i)), kButtonFace) << i;
      }
    }
    return lit;
  }

  pages::DevicePage& Dravo() const { return dynamic_cast<pages::DevicePage&>(*program.FindWindow("Dravo")); }
  /// The page's own reading of its module, without a session.
  void ReadEEPromFlags() {
    bool ended = false;
    Dravo().Spawn(ReadAndTell(&Dravo(), &ended));
    ASSERT_TRUE(RunUntil([&] { return ended; }));
  }
  /// Edits a value of the page by its dialog.
  void Edit(const std::string& control, const std::string& text) {
    Click(control);
    AnswerChangeValue(text);
    ASSERT_TRUE(NothingInFront());
  }
  /// A search from its button up to its end.
  void Search() {
    Click("MDIForm1.buttCheckDevice");
    ASSERT_TRUE(RunUntil([this] { return State().SearchRunning != state::kTrue; }));
    Run(core::milliseconds(10));
    ASSERT_TRUE(NothingInFront());
  }
  /// What the session's gestures brought over the line: all but its polls.
  std::vector<std::string> Exchanges() { return TakeExchanges(kDravoPoll); }

 private:
  static core::Task<> ReadAndTell(pages::DevicePage* page, bool* ended) {
    co_await page->ReadEEPromFlags();
    *ended = true;
  }
};

}  // namespace tarvo::test
