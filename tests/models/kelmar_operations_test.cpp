// Routines of the Kelmar page that take what no flow gives.

#include "models/kelmar.h"
#include "support/kelmar_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class KelmarOperations : public KelmarFixture {
 protected:
  models::Kelmar& Kelmar() const { return dynamic_cast<models::Kelmar&>(Page()); }

  /// A session that shows 5000 on each input and two lamps.
  void BeginWithValues() {
    Set(kStatus, 0x1200);
    for (int input = 0; input < kInputs; ++input) Set(kValue1 + input, 5000);
    StartSession();
    RunThroughADecode();
  }
  void ExpectClean() const {
    EXPECT_THAT(LitLamps(), IsEmpty());
    for (int input = 0; input < kInputs; ++input) {
      EXPECT_EQ(Text(Value(input)), "0");
      EXPECT_EQ(Percent(Bar(input)), 0);
    }
  }
};

TEST_F(KelmarOperations, EnableInputsEnablesForMode1Alone) {
  for (const int mode : {0, 2, -1}) {
    Kelmar().EnableInputs(1);
    ExpectSettingsEnabled(true);
    Kelmar().EnableInputs(mode);
    ExpectSettingsEnabled(false);
    for (const char* name : {"StartKelmar", "StopKelmar", "OptionKelmar1", "OptionKelmar2"}) {
      EXPECT_TRUE(Enabled(name)) << name;
    }
  }
}

TEST_F(KelmarOperations, CleanKelmarClearsLampsBarsAndValues) {
  BeginWithValues();
  const int colour = FillColor(0);
  Kelmar().CleanKelmar();
  ExpectClean();
  EXPECT_EQ(FillColor(0), colour);
  EXPECT_EQ(Text("MessageKelmar"), "OK");
}

TEST_F(KelmarOperations, KelmarCommLabelsClearsForAnyStateButMinus1) {
  BeginWithValues();
  for (const int state : {0, 1, -2}) {
    RunThroughADecode();
    SetPanel(2, "Connected");
    ASSERT_EQ(Text("MessageKelmar"), "OK");
    Kelmar().KelmarCommLabels(state);
    ExpectClean();
    EXPECT_EQ(Text("MessageKelmar"), "");
    EXPECT_EQ(Text("FirmwKelmar"), "Firmware rel: ");
    EXPECT_EQ(Panel(2), "");
  }
}

TEST_F(KelmarOperations, KelmarCommLabelsClearsNothingForMinus1) {
  BeginWithValues();
  Kelmar().KelmarCommLabels(-1);
  EXPECT_EQ(Text("MessageKelmar"), "OK");
  EXPECT_EQ(Text(Value(0)), "5000");
  EXPECT_EQ(Percent(Bar(0)), 31);
  EXPECT_THAT(LitLamps(), ElementsAre(1, 4));
}

}  // namespace
}  // namespace tarvo::test
