// The settings of the Dravo page that wait for the commit: input type, values, address, rate.

#include <ostream>

#include "support/dravo_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct InputType {
  int position;
  int lower;
  int upper;
  const char* unit;
  int startLower;  ///< of the start scale
};
void PrintTo(const InputType& type, std::ostream* out) {
  *out << type.position;
}

constexpr InputType kTypes[] = {{0, 50, 10000, "mV", -10000}, {1, 350, 15000, "Ohm", 0}, {2, 2000, 20000, "uA", 0},
                                {3, -200, 600, "°C", -200},   {4, -60, 180, "°C", -60},  {5, -200, 1000, "°C", -200},
                                {6, -250, 1200, "°C", -250},  {7, 0, 1750, "°C", 0},     {8, 0, 1750, "°C", 0},
                                {9, -200, 400, "°C", -200},   {10, 0, 1800, "°C", 0},    {11, -200, 800, "°C", -200},
                                {12, -200, 1300, "°C", -200}};

class DravoType : public DravoFixture, public testing::WithParamInterface<InputType> {
 protected:
  bool Electrical() const { return GetParam().position <= 2; }
  void ExpectBounds(const std::string& value, int minimum, int maximum) {
    Click(value);
    ASSERT_EQ(WindowInFront(), "ChangeValue");
    EXPECT_EQ(Text("MinValue"), "Min Value :" + std::to_string(minimum));
    EXPECT_EQ(Text("MaxValue"), "Max Value :" + std::to_string(maximum));
    AnswerChangeValue(std::to_string(maximum + 1));
    EXPECT_EQ(Text("Text1"), std::to_string(maximum));
    AnswerChangeValue(std::to_string(minimum - 1));
    EXPECT_EQ(Text("Text1"), std::to_string(minimum));
    Click("ChangeValue.OK");
    EXPECT_EQ(Text(value), std::to_string(minimum));
  }
};

INSTANTIATE_TEST_SUITE_P(Positions, DravoType, testing::ValuesIn(kTypes),
                         [](const auto& given) { return std::to_string(given.param.position); });

TEST_P(DravoType, RewritesTheScaleFields) {
  Set(kInput, 0x0700);
  SetValues({11, 12, 13, 14, 9515, 16});
  StartSession();
  Choose("InputTypeDravo", GetParam().position);
  const std::string lower = std::to_string(GetParam().lower);
  const std::string upper = std::to_string(GetParam().upper);
  if (Electrical()) {
    EXPECT_THAT(ValueTexts(), ElementsAre(upper, "0", "13", "14", "9515", "16"));
  } else {
    EXPECT_THAT(ValueTexts(), ElementsAre(upper, lower, upper, lower, "9515", "16"));
  }
}

TEST_P(DravoType, ShowsItsUnit) {
  Choose("InputTypeDravo", GetParam().position);
  EXPECT_EQ(Text("UnitaMisuraDravo1"), GetParam().unit);
}

TEST_P(DravoType, ShowsItsUnitBesideTheStartScaleForAnElectricalInputOnly) {
  Choose("InputTypeDravo", GetParam().position == 1 ? 2 : 1);
  const std::string before = Text("UnitaMisuraDravo2");
  EXPECT_EQ(before, GetParam().position == 1 ? "uA" : "Ohm");
  Choose("InputTypeDravo", GetParam().position);
  EXPECT_EQ(Text("UnitaMisuraDravo2"), Electrical() ? GetParam().unit : before);
}

TEST_P(DravoType, DisablesNoValue) {
  Choose("InputTypeDravo", GetParam().position);
  for (int i = 0; i < kValues; ++i) EXPECT_TRUE(Enabled(Value(i))) << i;
}

TEST_P(DravoType, BoundsTheFullScale) {
  Choose("InputTypeDravo", GetParam().position);
  ExpectBounds(Value(0), GetParam().lower, GetParam().upper);
}

TEST_P(DravoType, BoundsTheStartScale) {
  Choose("InputTypeDravo", GetParam().position);
  ExpectBounds(Value(1), GetParam().startLower, GetParam().upper);
}

TEST_P(DravoType, SaysNothingToTheModule) {
  StartSession();
  Choose("InputTypeDravo", GetParam().position);
  Run(std::chrono::seconds(1));
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_EQ(module[kInput], 0x0100);
  EXPECT_EQ(ListIndex("InputTypeDravo"), GetParam().position);
}

TEST_P(DravoType, IsCommittedWithEachFilter) {
  StartSession();
  Choose("InputTypeDravo", GetParam().position);
  for (int filter = 0; filter < 7; ++filter) {
    Choose("InputFilterDravo", filter);
    module.ForgetLog();
    Click("WEEPDravo");
    AnswerOk();
    EXPECT_THAT(Exchanges(), testing::Contains(Writing(40066, (GetParam().position + 1) << 8 | filter)));
  }
}

struct ValueCase {
  const char* name;
  const char* control;
  int minimum;
  int maximum;
};

/// A value with bounds of its own.
class DravoValue : public DravoFixture, public testing::WithParamInterface<ValueCase> {};

INSTANTIATE_TEST_SUITE_P(Labels, DravoValue,
                         testing::Values(ValueCase{"UserFullScale", "ValueDravo(2)", -32000, 32000},
                                         ValueCase{"UserStartScale", "ValueDravo(3)", -32000, 32000},
                                         ValueCase{"Span", "ValueDravo(4)", 9000, 11000},
                                         ValueCase{"Zero", "ValueDravo(5)", -1000, 1000},
                                         ValueCase{"Address", "AddressDravo", 1, 255}),
                         [](const auto& given) { return given.param.name; });

TEST_P(DravoValue, HasItsBounds) {
  const auto& [name, control, minimum, maximum] = GetParam();
  Click(control);
  EXPECT_EQ(Text("MinValue"), "Min Value :" + std::to_string(minimum));
  EXPECT_EQ(Text("MaxValue"), "Max Value :" + std::to_string(maximum));
  AnswerChangeValue(std::to_string(maximum + 1));
  EXPECT_EQ(Text("Text1"), std::to_string(maximum));
  AnswerChangeValue(std::to_string(minimum - 1));
  EXPECT_EQ(Text("Text1"), std::to_string(minimum));
}

TEST_P(DravoValue, KeepsItsBoundsWithEachInputType) {
  for (int position = 0; position < 13; ++position) {
    Choose("InputTypeDravo", position);
    Click(GetParam().control);
    EXPECT_EQ(Text("MinValue"), "Min Value :" + std::to_string(GetParam().minimum));
    EXPECT_EQ(Text("MaxValue"), "Max Value :" + std::to_string(GetParam().maximum));
    Click("ChangeValue.Cancel");
  }
}

TEST_P(DravoValue, IsEditedWithoutASession) {
  for (const int value : {GetParam().minimum, GetParam().maximum}) {
    Edit(GetParam().control, std::to_string(value));
    EXPECT_EQ(Text(GetParam().control), std::to_string(value));
  }
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_P(DravoValue, IsEditedInASessionWithoutAWordOnTheLine) {
  StartSession();
  const std::string value = std::to_string(GetParam().maximum - 1);
  Edit(GetParam().control, value);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(GetParam().control), value);
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_TRUE(TimersRun());
}

class DravoScale : public DravoFixture, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Indices, DravoScale, testing::Values(0, 1));

TEST_P(DravoScale, IsEditedInASessionWithoutAWordOnTheLine) {
  StartSession();
  Edit(Value(GetParam()), "4321");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(Value(GetParam())), "4321");
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(DravoScale, IsLeftAsItIsWhenTheDialogIsCancelled) {
  StartSession();
  const std::string before = Text(Value(GetParam()));
  Click(Value(GetParam()));
  Type("ChangeValue.Text1", "4321");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text(Value(GetParam())), before);
}

class DravoLists : public DravoFixture {};

TEST_F(DravoLists, FilterAndRateAreChosenWithoutAWordOnTheLine) {
  StartSession();
  Choose("InputFilterDravo", 6);
  Choose("BaudDravo", 0);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("InputFilterDravo"), "60 Sec");
  EXPECT_EQ(Text("BaudDravo"), "1200");
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_F(DravoLists, AFilterRewritesNoScale) {
  StartSession();
  SetValues({1, 2, 3, 4, 5, 6});
  Choose("InputFilterDravo", 3);
  EXPECT_THAT(ValueTexts(), ElementsAre("10000", "0", "10000", "0", "10000", "0"));
}

TEST_F(DravoLists, TheSameTypeChosenAgainRewritesTheScale) {
  SetValues({123, 45, 6, 7, 9999, 0});
  StartSession();
  Choose("InputTypeDravo", 0);
  EXPECT_EQ(Text(Value(0)), "10000");
  EXPECT_EQ(Text(Value(1)), "0");
}

}  // namespace
}  // namespace tarvo::test
