// Operations of the pages of RTD inputs that nobody calls.

#include <array>
#include <string>

#include "models/nerith.h"
#include "models/oswin.h"
#include "support/nerith_fixture.h"
#include "support/oswin_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;

class NerithOperations : public NerithFixture {
 protected:
  models::Nerith& Model() { return dynamic_cast<models::Nerith&>(*program.FindWindow("frmNerith")); }
};

class OswinOperations : public OswinFixture {
 protected:
  models::Oswin& Model() { return dynamic_cast<models::Oswin&>(*program.FindWindow("frmOswin")); }
};

TEST_F(NerithOperations, CheckFWVersionTellsAPellorAndItsThreeChannels) {
  Model().CheckFWVersion(state::Word(0x0912));
  EXPECT_EQ(Text("StatusBar1(1)"), "Pellor, only 3 channels available");
  const std::array<std::string, 5> fourth = {"cbSensorType(3)", "cbDumpFactor(3)", "chkConv(3)", "chkBurnedSensor(3)",
                                             "cbRangePT100(3)"};
  for (const std::string& name : fourth) EXPECT_FALSE(Enabled(name)) << name;
}

TEST_F(NerithOperations, CheckFWVersionRewritesTheSensorLists) {
  Model().CheckFWVersion(state::Word(0x0811));
  for (const view::ComboBox& type : Model().cbSensorType) EXPECT_THAT(type.List(), ElementsAre("PT100", "NI100"));
  EXPECT_TRUE(Enabled("cbSensorType(3)"));
}

TEST_F(NerithOperations, CheckFWVersionTouchesNoRegister) {
  Model().CheckFWVersion(state::Word(0x0912));
  EXPECT_THAT(module.TakeLog(), testing::IsEmpty());
}

TEST_F(NerithOperations, ResetFormSelectsTheFirstEntries) {
  models::Nerith& page = Model();
  page.cbBaudRate.ListIndex = 5;
  page.cbUnits.ListIndex = 2;
  page.cbDecimalNumbers.ListIndex = 1;
  page.cbDumpFactor[3].ListIndex = 4;
  page.cbSensorType[0].ListIndex = 1;
  page.ResetForm();
  EXPECT_EQ(page.cbBaudRate.ListIndex(), 0);
  EXPECT_EQ(page.cbUnits.ListIndex(), 0);
  EXPECT_EQ(page.cbDecimalNumbers.ListIndex(), 0);
  EXPECT_EQ(page.cbDumpFactor[3].ListIndex(), 0);
  EXPECT_EQ(page.cbSensorType[0].ListIndex(), 0);
}

TEST_F(NerithOperations, CheckFWVersionEnablesNothingOnAModuleOfFourChannels) {
  Model().cbSensorType[3].Enabled = false;
  Model().CheckFWVersion(state::Word(0x0812));
  EXPECT_FALSE(Enabled("cbSensorType(3)"));
}

TEST_F(OswinOperations, ResetFormSelectsTheFirstEntries) {
  models::Oswin& page = Model();
  page.cbBaudRate.ListIndex = 5;
  page.cbSensorType[2].ListIndex = 3;
  page.cbFilter[1].ListIndex = 2;
  page.cbUnits[3].ListIndex = 1;
  page.ResetForm();
  EXPECT_EQ(page.cbBaudRate.ListIndex(), 0);
  EXPECT_EQ(page.cbSensorType[2].ListIndex(), 0);
  EXPECT_EQ(page.cbFilter[1].ListIndex(), 0);
  EXPECT_EQ(page.cbUnits[3].ListIndex(), 0);
}

TEST_F(OswinOperations, CheckFWVersionFillsTheListsAndTouchesNoRegister) {
  models::Oswin& page = Model();
  page.cbUnits[1].SetRows({});
  page.CheckFWVersion(state::Word(0x1603));
  EXPECT_THAT(page.cbUnits[1].List(), ElementsAre("°C", "ohm"));
  EXPECT_THAT(page.cbSensorType[0].List(), ElementsAre("0-PT100", "1-PT500", "2-PT1000", "3-NI100"));
  EXPECT_THAT(module.TakeLog(), testing::IsEmpty());
}

}  // namespace
}  // namespace tarvo::test
