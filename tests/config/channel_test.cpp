// The one channel of the program, and the staging fields that outlive every file.

#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using core::Fault;
using test::FileOf;
using test::FilePageOf;
using test::IsBox;
using view::Icon;

class FileChannel : public test::PageFileFixture {
 protected:
  FileChannel() { OpenPage("Belk"); }

  void Open(const std::string& path) {
    Click("MDIForm1.OpenMNU");
    Answer(path);
  }
  void SaveTo(const std::string& path) {
    Click("MDIForm1.SaveMNU");
    Answer(path);
  }
  /// From now to the end of the program.
  void ExpectOpen() {
    files[kPath] = FileOf("Belk", FilePageOf("Belk").fields);
    files.ReadFault.reset();
    files.WriteFault.reset();
    const int writes = files.Writes();
    for (const std::string model : {"Belk", "Cobin"}) {
      OpenPage(model);
      for (int i = 0; i < 2; ++i) {
        Open(kPath);
        EXPECT_THAT(BoxInFront(), IsBox(core::kFileAlreadyOpen, Icon::kExclamation));
        AnswerOk();
        SaveTo("/bench/new.txt");
        EXPECT_THAT(BoxInFront(), IsBox(core::kFileAlreadyOpen, Icon::kNone));
        AnswerOk();
        EXPECT_TRUE(NothingInFront());
      }
    }
    EXPECT_EQ(files.Writes(), writes);
  }
};

TEST_F(FileChannel, StaysOpenAfterAMissingFile) {
  Open("/bench/missing.txt");
  EXPECT_THAT(BoxInFront(), IsBox(core::kFileNotFound, Icon::kExclamation));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  ExpectOpen();
}

TEST_F(FileChannel, StaysOpenAfterAFaultOfReading) {
  files.ReadFault = Fault(core::kPermissionDenied, 70);
  Open(kPath);
  EXPECT_THAT(BoxInFront(), IsBox(core::kPermissionDenied, Icon::kExclamation));
  AnswerOk();
  ExpectOpen();
}

TEST_F(FileChannel, StaysOpenAfterAFaultOfWriting) {
  files.WriteFault = Fault(core::kPathNotFound, 76);
  SaveTo("/nowhere/module.txt");
  EXPECT_THAT(BoxInFront(), IsBox(core::kPathNotFound, Icon::kNone));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  ExpectOpen();
}

TEST_F(FileChannel, OfItsOwnFaultTellsWhatTheDialogNeverDoes) {
  files.ReadFault = Fault(core::kDeviceUnavailable, 68);
  Open(kPath);
  EXPECT_THAT(BoxInFront(), IsBox(core::kDeviceUnavailable, Icon::kExclamation));
}

TEST_F(FileChannel, IsClosedAfterAGoodLoadASaveAndAWrongHeader) {
  for (int i = 0; i < 3; ++i) {
    LoadFields("Belk", FilePageOf("Belk").fields);
    EXPECT_EQ(Save(), FileOf("Belk", FilePageOf("Belk").again));
    Load(FileOf("Cobin", FilePageOf("Cobin").fields));
    EXPECT_THAT(BoxInFront(), IsBox(test::kWrongFormat, Icon::kCritical));
    AnswerOk();
  }
}

TEST_F(FileChannel, ThatIsOpenLeavesTheViewOnALoad) {
  Open("/bench/missing.txt");
  AnswerOk();
  const View before = ViewOf("Belk");
  const auto staged = FileFields();
  Load(FileOf("Belk", FilePageOf("Belk").fields));
  AnswerOk();
  EXPECT_EQ(ViewOf("Belk"), before);
  EXPECT_EQ(FileFields(), staged);
}

TEST_F(FileChannel, ThatIsOpenStillLetsASaveGatherItsFields) {
  Open("/bench/missing.txt");
  AnswerOk();
  Edit("FilterBelk", "77");
  SaveTo("/bench/new.txt");
  EXPECT_THAT(BoxInFront(), IsBox(core::kFileAlreadyOpen, Icon::kNone));
  AnswerOk();
  EXPECT_EQ(FileField(1), "77");
  EXPECT_EQ(files.Content("/bench/new.txt"), std::nullopt);
}

TEST_F(FileChannel, ThatIsOpenIsNoMatterToAPageWithoutFiles) {
  Open("/bench/missing.txt");
  AnswerOk();
  State().NrFinestra = 12;
  Open(kPath);
  EXPECT_TRUE(NothingInFront());
  SaveTo(kPath);
  EXPECT_TRUE(NothingInFront());
}

TEST_F(FileChannel, ThatIsOpenLetsASessionRun) {
  module[40008] = 99;
  Open("/bench/missing.txt");
  AnswerOk();
  RunSession("Belk", 1);
  EXPECT_EQ(Text("FilterBelk"), "99");
}

// The staging fields.

TEST_F(FileChannel, OfAllPagesShareTheStagingFields) {
  OpenPage("Ferrun");
  LoadFields("Ferrun", FilePageOf("Ferrun").fields);
  OpenPage("Belk");
  LoadFields("Belk", {"200", "255", "785"});
  EXPECT_EQ(FileField(1), "200");
  EXPECT_EQ(FileField(2), "255");
  EXPECT_EQ(FileField(3), "785");
  for (std::size_t i = 4; i <= 18; ++i) EXPECT_EQ(FileField(i), FilePageOf("Ferrun").fields[i - 1]) << i;
  EXPECT_EQ(FileField(19), "");
  EXPECT_EQ(FileField(20), "");
  OpenPage("Cobin");
  Edit("SafetimeCobin", "9");
  SetBuffer(1, 3);
  SetBuffer(3, 4);
  Save();
  const test::Fields expected = {"3", "9", "4", "257", FilePageOf("Ferrun").fields[4]};
  for (std::size_t i = 1; i <= expected.size(); ++i) EXPECT_EQ(FileField(i), expected[i - 1]) << i;
}

TEST_F(FileChannel, ThatMeetsAnEndTooSoonLeavesTheOtherStagingFields) {
  LoadFields("Belk", {"200", "255", "785"});
  Load(FileOf("Belk", {"16"}));
  AnswerOk();
  EXPECT_EQ(FileField(1), "16");
  EXPECT_EQ(FileField(2), "255");
  EXPECT_EQ(FileField(3), "785");
}

}  // namespace
}  // namespace tarvo
