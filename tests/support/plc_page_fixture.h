#pragma once

#include <array>
#include <string>

#include "support/input_page_fixture.h"

namespace tarvo::test {

/// A page of the family "OTHER DEVICES!" with its module on COM1: firmware release 1, 9600,n,8,1, address 1, all else
/// 0. The module's line is fixed, its flags say what goes to a PLC.
class PlcPageFixture : public InputPageFixture {
 protected:
  static constexpr int kStoredFlags = 40067;

  /// Bits of the flags: those of the six boxes, input 1 to 4 at 1 to 4, then those of the controls beside them.
  static constexpr std::array kMasks = {0x0002, 0x0100, 0x0200, 0x0400, 0x0800, 0x1000};
  static constexpr int kBoxes = static_cast<int>(kMasks.size());
  static constexpr int kRawData = 0x2000;
  static constexpr int kReversed = 0x4000;

  explicit PlcPageFixture(const InputPage& page) : InputPageFixture(page) {}

  std::string Box(int index) const { return Own("Check", index); }
  std::string BitOrder() const { return Own("Check") + "BitOrder"; }
  std::string ScaledData() const { return Own("Option") + "1"; }
  std::string RawData() const { return Own("Option") + "2"; }
  static int Mask(int box) { return kMasks.at(static_cast<std::size_t>(box)); }

  void BeginWithFlags(int flags) {
    Set(kFlags, flags);
    Begin();
    RunUntilTheBusIsFree();
    module.ForgetLog();
  }
  /// A session that has come and gone, so that the page shows what its module has.
  void ReadModule() {
    Begin();
    Click(Own("Stop"));
    module.ForgetLog();
  }
  /// Makes a control that the page locks in a session take clicks there.
  void Unlock(const std::string& name) { At(name).Enabled = true; }

  void SetPanel(int panel, const char* text) {
    dynamic_cast<view::Panel&>(At(Member("MDIForm1.StatusBar1", panel))).Text = text;
  }
  std::string Panel(int panel) const { return Text(Member("MDIForm1.StatusBar1", panel)); }
};

}  // namespace tarvo::test
