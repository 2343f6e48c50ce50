// A calibration by the dialog, looked up in what the simulated module then measures.

#include "e2e/jorun_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kNothing;

const std::string kDialog = R"({"window":"dlgCalForm"})";

class JorunCalibration : public test::JorunBench {
 protected:
  /// Opens the dialog for an input, 0 to 3, and waits until it has filled itself.
  void OpenCalibration(int input) {
    EXPECT_EQ(Do("click buttCal(" + std::to_string(input) + ")"), kDialog);
    Until("buttRead(0).Enabled = true");
  }
  void ReadPoint(int input, int index, int signal) {
    Set(40013 + input, signal);
    EXPECT_EQ(Do("click buttRead(" + std::to_string(index) + ")"), kDialog);
  }
  void Want(const std::string& low, const std::string& high) {
    EXPECT_EQ(Do("type tbValueToSet(0) \"" + low + "\""), kDialog);
    EXPECT_EQ(Do("type tbValueToSet(1) \"" + high + "\""), kDialog);
  }
  void CloseCalibration() { EXPECT_EQ(Do("click OKButton"), kNothing); }
};

TEST_F(JorunCalibration, BringsTheReadingToTheWantedOne) {
  StartSimulator("jorun:40006=2");
  OpenJorun();
  OpenCalibration(2);
  EXPECT_EQ(Get("tbZero.Text"), "0");
  EXPECT_EQ(Get("tbSpan.Text"), "10000");
  ReadPoint(2, 0, 200);
  ReadPoint(2, 1, 8200);
  EXPECT_EQ(Get("tbActualValue(0).Text"), "200");
  EXPECT_EQ(Get("tbActualValue(1).Text"), "8200");
  Want("250", "8450");
  EXPECT_EQ(Do("click buttCalibra"), kDialog);
  EXPECT_EQ(Get("tbZero.Text"), "45");
  EXPECT_EQ(Get("tbSpan.Text"), "10250");
  EXPECT_EQ(Get("dlgCalForm.StatusBar1(1).Text"), "Calculated values : Zero = 45 , Span =10250");
  CloseCalibration();
  EXPECT_FALSE(console->Process().HasOpen(Device()));
  for (const int image : {0, 64}) {
    EXPECT_EQ(Held(40023 + image), "45");
    EXPECT_EQ(Held(40027 + image), "10250");
  }

  // Both points, and one between them.
  StartJorun();
  Until("ValueJorun(2).Caption = 8450");
  Set(40015, 200);
  Until("ValueJorun(2).Caption = 250");
  Set(40015, 4200);
  Until("ValueJorun(2).Caption = 4350");
  // The other inputs are as they were.
  Set(40014, 4200);
  Until("ValueJorun(1).Caption = 4200");
  StopJorun();

  // It outlives a restart.
  EXPECT_EQ(Do("click buttResetJorun"), test::kResetBox);
  EXPECT_EQ(Do("answer OK"), kNothing);
  AwaitRestart();
  StartJorun();
  Until("ValueJorun(2).Caption = 4350");
}

TEST_F(JorunCalibration, BringsANegativeZero) {
  StartSimulator("jorun:40004=1");
  OpenJorun();
  OpenCalibration(0);
  ReadPoint(0, 0, 1000);
  ReadPoint(0, 1, 9000);
  Want("1090", "9890");
  EXPECT_EQ(Do("click buttCalibra"), kDialog);
  EXPECT_EQ(Held(40021), "65526");
  CloseCalibration();
  StartJorun();
  Until("ValueJorun(0).Caption = 9890");
  Set(40013, 1000);
  Until("ValueJorun(0).Caption = 1090");
}

TEST_F(JorunCalibration, ResetsACalibratedInputBeforeItReadsIt) {
  StartSimulator("jorun:40022=65000,40026=11500,40014=1000");
  OpenJorun();
  OpenCalibration(1);
  EXPECT_EQ(Get("tbZero.Text"), "-536");
  EXPECT_EQ(Get("tbSpan.Text"), "11500");
  const std::string question =
      R"({"window":"MsgBox","text":"Warning: you have to reset the module before read, do you want reset  the module?",)"
      R"("caption":"Tarvo","icon":"question","buttons":["Yes","No"]})";
  EXPECT_EQ(Do("click buttRead(0)"), question);
  EXPECT_EQ(Do("answer No"), kDialog);
  EXPECT_EQ(Held(40026), "11500");
  EXPECT_EQ(Do("click buttRead(0)"), question);
  EXPECT_EQ(Do("answer Yes"), kDialog);
  EXPECT_EQ(Get("tbActualValue(0).Text"), "1000");
  EXPECT_EQ(Held(40022), "0");
  EXPECT_EQ(Held(40026), "10000");
  EXPECT_EQ(Held(40086), "0");
  EXPECT_EQ(Held(40090), "10000");
  Until("tbSpan.Text = 10000");
  EXPECT_EQ(Get("tbZero.Text"), "0");
}

TEST_F(JorunCalibration, SetsTypedValues) {
  StartSimulator("jorun:40016=1000");
  OpenJorun();
  OpenCalibration(3);
  Do("type tbSpan \"20000\"");
  Do("type tbZero \"-7\"");
  EXPECT_EQ(Do("click buttSet"), kDialog);
  EXPECT_EQ(Held(40092), "20000");
  EXPECT_EQ(Held(40088), "65529");
  CloseCalibration();
  StartJorun();
  Until("ValueJorun(3).Caption = 1993");
}

TEST_F(JorunCalibration, TellsAModuleThatFallsSilent) {
  StartSimulator("jorun");
  OpenJorun();
  OpenCalibration(0);
  EXPECT_EQ(simulator->Order("com1 silence"), "ok com1 silence");
  EXPECT_EQ(Do("click buttRead(0)"), kDialog);
  EXPECT_EQ(Get("dlgCalForm.StatusBar1(1).Text"), "Unable to Read value");
  EXPECT_EQ(Get("MousePointer"), "default");
  simulator->Order("com1 clear");
  EXPECT_EQ(Do("click buttRead(0)"), kDialog);
  EXPECT_EQ(Get("tbActualValue(0).Text"), "0");
}

TEST_F(JorunCalibration, IsRefusedByEachModuleThatHasNone) {
  const std::string none = "Calibration impossible, ";
  StartSimulator("jorun:fw=2");
  OpenJorun();
  EXPECT_EQ(Do("click buttCal(0)"), BoxJson(none + "firmware version is too old ", "critical"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  StartSimulator("belk");
  EXPECT_EQ(Do("click buttCal(0)"), BoxJson(none + " module is not Jorun", "critical"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  simulator.reset();
  EXPECT_EQ(Do("click buttCal(0)"), BoxJson(none + "unable to read", "critical"));
  EXPECT_EQ(Do("answer OK"), kNothing);
}

}  // namespace
}  // namespace tarvo
