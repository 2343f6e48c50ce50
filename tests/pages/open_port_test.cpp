#include <cerrno>

#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

constexpr char kReason[] = "/dev/ttyUSB0 is held by minicom (process 7). Close that and try again.";

class OpenPort : public BelkFixture {
 protected:
  OpenPort() { ports.SetFault(1, core::Fault(core::kPortAlreadyOpen, EBUSY, "/dev/ttyUSB0", kReason)); }

  void ExpectRefusal(const std::string& text) {
    Click("StartBelk");
    EXPECT_THAT(BoxInFront(), IsBox(kNotABelk, view::Icon::kCritical));
    EXPECT_EQ(Passing(), text);
    AnswerOk();
    EXPECT_EQ(Passing(), text);
  }
  std::string Passing() const { return Text("StatusBar1(1)"); }
};

TEST_F(OpenPort, TellsInPanel1WhyThePortStaysClosedBesideTheMessageBox) {
  ExpectRefusal(kReason);
  EXPECT_EQ(Text("StatusBar1(2)"), "");
}

TEST_F(OpenPort, ShowsTheReasonOfTheLatestRefusal) {
  ExpectRefusal(kReason);
  ports.SetFault(1, core::Fault(core::kDeviceNotFound, ENOENT, "/dev/ttyUSB0", "/dev/ttyUSB0 is not there."));
  ExpectRefusal("/dev/ttyUSB0 is not there.");
}

TEST_F(OpenPort, ClearsAFormerRefusalWhenThePortOpens) {
  ExpectRefusal(kReason);
  ports.SetFault(1, "");
  StartSession();
  EXPECT_EQ(Passing(), "");
}

TEST_F(OpenPort, ClearsTheRefusalAlsoWhenTheModuleThenDoesNotAnswer) {
  ExpectRefusal(kReason);
  ports.SetFault(1, "");
  module.Always(ModuleFault::Silent());
  ExpectRefusal("");
}

TEST_F(OpenPort, LeavesAnyOtherTextInPanel1) {
  ExpectRefusal(kReason);
  ports.SetFault(1, "");
  dynamic_cast<view::Panel&>(At("StatusBar1(1)")).Text = "unable to write 40009";
  StartSession();
  EXPECT_EQ(Passing(), "unable to write 40009");
}

TEST_F(OpenPort, NamesThePortWhenNothingMoreIsKnown) {
  ports.SetFault(1, core::kDeviceUnavailable);
  ExpectRefusal("COM1 cannot be opened: Device unavailable.");
}

TEST_F(OpenPort, TellsLineSettingsThatMeanNothing) {
  ports.SetFault(1, "");
  State().PCSettings = "fast";
  ExpectRefusal("COM1 cannot be opened: Device unavailable.");
}

}  // namespace
}  // namespace tarvo::test
