#include "view/ar_metor.h"

#include <limits>

#include "core/fault.h"
#include "view/view_bench.h"

namespace tarvo::view {
namespace {

constexpr Colour kSavedBackColor = static_cast<Colour>(0x80000012);

class Meter : public ViewBench {
 protected:
  ARMetor meter_{page_, "BargBelk", 2};

  /// What the saved form holds, each entry as "name=value".
  Log Saved() const {
    Log saved;
    for (const ARMetor::BagEntry& entry : meter_.WriteProperties()) {
      const auto* number = std::get_if<int>(&entry.value);
      saved.push_back(std::string(entry.name) + "=" +
                      (number ? std::to_string(*number) : std::get<std::string>(entry.value)));
    }
    return saved;
  }
};

TEST_F(Meter, ANewOneIsFullRedAndShowsItsName) {
  EXPECT_EQ(meter_.Percent(), 100);
  EXPECT_EQ(meter_.FillColor(), 255);
  EXPECT_EQ(meter_.Caption(), "BargBelk(2)");
  EXPECT_EQ(meter_.Font(), "");
}

TEST_F(Meter, APercentAboveAHundredIsAFaultAndKeepsTheOldValue) {
  meter_.SetPercent(40);
  try {
    meter_.SetPercent(101);
    FAIL() << "no fault";
  } catch (const core::Fault& fault) {
    EXPECT_EQ(fault.Number(), 0x80040457L);
    EXPECT_EQ(fault.Source(), "Meter::Percent (Let)");
    EXPECT_STREQ(fault.what(), "Percent must be between 0 and 100.");
  }
  EXPECT_EQ(meter_.Percent(), 40);
}

TEST_F(Meter, TheFillGrowsFromEmptyToFull) {
  meter_.SetPercent(0);
  EXPECT_EQ(meter_.ShapeWidth(250.0F), 0.0F);
  meter_.SetPercent(50);
  EXPECT_EQ(meter_.ShapeWidth(250.0F), 125.0F);
  meter_.SetPercent(100);
  EXPECT_EQ(meter_.ShapeWidth(250.0F), 250.0F);
}

TEST_F(Meter, ANegativePercentPasses) {
  meter_.SetPercent(-20);
  EXPECT_EQ(meter_.Percent(), -20);
  EXPECT_EQ(meter_.ShapeWidth(250.0F), -50.0F);
  meter_.SetPercent(std::numeric_limits<int>::min());
  EXPECT_EQ(meter_.Percent(), std::numeric_limits<int>::min());
}

TEST_F(Meter, TheFillsWidthHasSinglePrecision) {
  meter_.SetPercent(33);
  const float width = meter_.ShapeWidth(1001.0F);
  EXPECT_EQ(width, 1001.0F * 33.0F / 100.0F);
  EXPECT_NE(static_cast<double>(width), 1001.0 * 33.0 / 100.0);
}

TEST_F(Meter, OnlyAChangeOfThePercentIsTold) {
  TestWatcher watcher;
  const Screen::Subscription subscription = screen_.Subscribe(watcher);
  scheduler_.RunReady();
  watcher.notices.clear();
  meter_.SetPercent(100);
  scheduler_.RunReady();
  EXPECT_THAT(watcher.notices, IsEmpty());
  meter_.SetPercent(99);
  scheduler_.RunReady();
  EXPECT_THAT(watcher.notices, ElementsAre(ElementsAre("BargBelk(2)")));
}

TEST_F(Meter, SavesInItsOrderWithASecondBackColorOfZero) {
  meter_.Caption = "Total";
  meter_.SetPercent(17);
  meter_.BackColor = 12;
  meter_.Font = "Sans";
  meter_.FillColor = kGreen;
  EXPECT_THAT(Saved(), ElementsAre("Caption=Total", "Percent=17", "BackColor=12", "Font=Sans", "BackColor=0",
                                   "FillColor=65280"));
}

TEST_F(Meter, LoadsWhatItSaved) {
  meter_.Caption = "Total";
  meter_.SetPercent(17);
  meter_.BackColor = 12;
  meter_.Font = "Sans";
  meter_.FillColor = kGreen;
  const auto saved = meter_.WriteProperties();
  ARMetor other(page_, "Other");
  other.ReadProperties(saved);
  EXPECT_EQ(other.Caption(), "Total");
  EXPECT_EQ(other.Percent(), 17);
  EXPECT_EQ(other.BackColor(), 12);
  EXPECT_EQ(other.Font(), "Sans");
  EXPECT_EQ(other.FillColor(), kGreen);
}

TEST_F(Meter, LoadsDefaultsForWhatIsMissing) {
  meter_.SetPercent(17);
  meter_.FillColor = kGreen;
  meter_.Font = "Sans";
  meter_.ReadProperties({});
  EXPECT_EQ(meter_.Caption(), "");
  EXPECT_EQ(meter_.Percent(), 100);
  EXPECT_EQ(meter_.BackColor(), kSavedBackColor);
  EXPECT_EQ(meter_.Font(), "");
  EXPECT_EQ(meter_.FillColor(), 255);
}

TEST_F(Meter, LoadsDefaultsForValuesOfAnotherType) {
  meter_.SetPercent(17);
  meter_.ReadProperties({{"Percent", std::string("17")}, {"Caption", 5}});
  EXPECT_EQ(meter_.Percent(), 100);
  EXPECT_EQ(meter_.Caption(), "");
}

TEST_F(Meter, LoadingAPercentAboveAHundredIsTheFaultAfterAllElseWasLoaded) {
  meter_.SetPercent(17);
  EXPECT_THROW(meter_.ReadProperties({{"Percent", 101}, {"Caption", std::string("Total")}}), core::Fault);
  EXPECT_EQ(meter_.Percent(), 17);
  EXPECT_EQ(meter_.Caption(), "Total");
}

}  // namespace
}  // namespace tarvo::view
