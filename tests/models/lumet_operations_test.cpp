// Operations of the Lumet page that nobody calls yet, and its pause.

#include "models/lumet.h"
#include "support/lumet_fixture.h"

namespace tarvo::test {
namespace {

class LumetOperations : public LumetFixture {
 protected:
  models::Lumet& Model() const { return dynamic_cast<models::Lumet&>(Lumet()); }

  static core::Task<> PauseAndTell(models::Lumet* page, float seconds, bool* ended) {
    co_await page->Pause(seconds);
    *ended = true;
  }
};

constexpr const char* kSettings[] = {"CheckLumet2",     "CheckLumet3",     "CheckLumet4",   "CheckLumet5",
                                     "CheckLumet6",     "FilterLumet",     "AddressLumet",  "BaudLumet",
                                     "ResetLumet",      "WEEPLumet",       "cbIngresso(0)", "cbIngresso(1)",
                                     "cbTipoMisura(0)", "cbTipoMisura(1)", "cbCombIngressi"};

TEST_F(LumetOperations, LumetEnableControlsDisablesAllThatEdits) {
  Click("CheckLumet6");
  Model().LumetEnableControls(false);
  for (const char* name : kSettings) EXPECT_FALSE(Enabled(name)) << name;
  EXPECT_FALSE(Enabled("OptionLumet1"));
  EXPECT_FALSE(Enabled("OptionLumet2"));
  EXPECT_TRUE(Enabled("StartLumet"));
  EXPECT_TRUE(Enabled("StopLumet"));
}

TEST_F(LumetOperations, LumetEnableControlsEnablesTheOptionsOnlyWithParityOn) {
  for (const bool parity : {false, true}) {
    if (parity) Click("CheckLumet6");
    Model().LumetEnableControls(false);
    Model().LumetEnableControls(true);
    for (const char* name : kSettings) EXPECT_TRUE(Enabled(name)) << name;
    EXPECT_EQ(Enabled("OptionLumet1"), parity);
    EXPECT_EQ(Enabled("OptionLumet2"), parity);
  }
}

TEST_F(LumetOperations, PauseWaitsThatManySecondsAndLetsTheRestGoOn) {
  StartSession();
  for (const float seconds : {0.25F, 2.0F}) {
    module.ForgetLog();
    bool ended = false;
    Model().Spawn(PauseAndTell(&Model(), seconds, &ended));
    Run(core::milliseconds(static_cast<int>(seconds * 1000) - 10));
    EXPECT_FALSE(ended) << seconds;
    Run(core::milliseconds(20));
    EXPECT_TRUE(ended) << seconds;
    EXPECT_GE(module.Log().size(), static_cast<std::size_t>(seconds * 16));
  }
}

}  // namespace
}  // namespace tarvo::test
