// Enabling routines of the Hollin page that take what no flow gives.

#include "models/hollin.h"
#include "support/hollin_fixture.h"

namespace tarvo::test {
namespace {

class HollinEnabling : public HollinFixture {
 protected:
  models::Hollin& Hollin() const { return dynamic_cast<models::Hollin&>(Page()); }

  static std::vector<std::string> Interface() {
    return {"CheckHollin(1)", "CheckHollin(2)",      "CheckHollin(3)", "CheckHollin(4)",
            "CheckHollin(5)", "CheckHollinBitOrder", "OptionHollin1",  "OptionHollin2"};
  }
  static std::vector<std::string> Others() {
    std::vector<std::string> names = {"CheckHollin(0)", "WEEPHollin", "ResetHollin"};
    for (const Row& row : kRows) names.insert(names.end(), {Value(row.start), Value(row.full)});
    for (int i = 0; i < kInputs; ++i) names.push_back(Filter(i));
    return names;
  }
};

TEST_F(HollinEnabling, HollinEnableControlsDisablesForMode0Alone) {
  for (const int mode : {1, 2, -1}) {
    Hollin().HollinEnableControls(0);
    for (const std::string& name : Interface()) EXPECT_FALSE(Enabled(name)) << name;
    for (const std::string& name : Others()) EXPECT_FALSE(Enabled(name)) << name;
    Hollin().HollinEnableControls(mode);
    for (const std::string& name : Interface()) EXPECT_TRUE(Enabled(name)) << name << ' ' << mode;
    for (const std::string& name : Others()) EXPECT_TRUE(Enabled(name)) << name << ' ' << mode;
  }
  EXPECT_TRUE(Enabled("StartHollin"));
  EXPECT_TRUE(Enabled("StopHollin"));
}

TEST_F(HollinEnabling, HollinEnableInterfaceTouchesItsOwnGroupAlone) {
  Hollin().HollinEnableInterface(false);
  for (const std::string& name : Interface()) EXPECT_FALSE(Enabled(name)) << name;
  for (const std::string& name : Others()) EXPECT_TRUE(Enabled(name)) << name;
  Hollin().HollinEnableControls(0);
  Hollin().HollinEnableInterface(true);
  for (const std::string& name : Interface()) EXPECT_TRUE(Enabled(name)) << name;
  for (const std::string& name : Others()) EXPECT_FALSE(Enabled(name)) << name;
}

}  // namespace
}  // namespace tarvo::test
