#include "models/gaven.h"
#include "support/gaven_fixture.h"

namespace tarvo::test {
namespace {

/// The enabling routine, which nothing calls yet.
class GavenEnabling : public GavenFixture {
 protected:
  models::Gaven& Gaven() { return dynamic_cast<models::Gaven&>(*program.FindWindow("Gaven")); }

  static std::vector<std::string> Edits() {
    std::vector<std::string> edits = {"OptionGaven1", "OptionGaven2", "BaudGaven",
                                      "AddressGaven", "WEEPGaven",    "ResetGaven"};
    for (int i = 0; i < kElements; ++i) edits.push_back(Value(i));
    for (int i = 0; i < kInputs; ++i) edits.push_back(Member("FilterGaven", i));
    for (int i = 0; i < 3; ++i) edits.push_back(Member("CheckGaven", i));
    return edits;
  }
};

TEST_F(GavenEnabling, DisablesAllThatEditsForAnyModeBut1) {
  Click("CheckGaven(2)");
  for (const int mode : {0, 2, -1}) {
    Gaven().GavenEnableControls(1);
    Gaven().GavenEnableControls(mode);
    for (const std::string& edit : Edits()) EXPECT_FALSE(Enabled(edit)) << edit << ' ' << mode;
    EXPECT_TRUE(Enabled("StartGaven"));
    EXPECT_TRUE(Enabled("StopGaven"));
  }
}

TEST_F(GavenEnabling, EnablesThemAgainForMode1) {
  Click("CheckGaven(2)");
  Gaven().GavenEnableControls(0);
  Gaven().GavenEnableControls(1);
  for (const std::string& edit : Edits()) EXPECT_TRUE(Enabled(edit)) << edit;
}

}  // namespace
}  // namespace tarvo::test
