#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/belk_fixture.h"

namespace tarvo::test {

/// The program and its main window. The module on COM1 is a Belk, release 3, on 9600,n,8,1 at address 1.
class ShellFixture : public ProgramBench {
 protected:
  static constexpr int kIdentity = 40001;
  static constexpr int kFilter = 40008;
  static constexpr int kFlags = 40009;

  /// Another line with a module at its other end.
  struct Played {
    Played(core::Scheduler& scheduler, int address) : line(scheduler), module(scheduler, line, address) {}
    MemoryLine line;
    MemoryModule module;
  };

  ShellFixture() { MakeBelk(module); }

  static void MakeBelk(MemoryModule& belk) {
    belk[kIdentity] = 0x0103;
    belk[kFilter] = 10;
    belk[40010] = 0x0101;
  }

  /// Starts the program without a search, the module on COM1.
  void OpenQuietly() {
    ports.Connect(1, line);
    values.Keep("AUTOSCAN", "FALSE");
    OpenProgram();
  }

  std::string PageName() const {
    const view::Window* page = program.GetScreen().Page();
    return page == nullptr ? std::string() : page->Name();
  }
  std::string Panel1() const { return Text("MDIForm1.StatusBar1(1)"); }
  std::string Panel2() const { return Text("MDIForm1.StatusBar1(2)"); }
  void SetPanel(std::string_view name, std::string_view text) const {
    dynamic_cast<view::Panel&>(At(name)).Text = text;
  }
  bool InSession() const { return State().StartComm == state::kTrue; }
  /// On the Belk page, which is opened when it is not.
  void StartSession() {
    if (PageName() != "Belk") Click("MDIForm1.labBelk");
    Click("Belk.StartBelk");
    ASSERT_TRUE(InSession());
    module.ForgetLog();
  }
};

inline constexpr char kNothingFound[] = "No devices on line";
inline constexpr char kScanning[] = "Check if a device is on line...";

}  // namespace tarvo::test
