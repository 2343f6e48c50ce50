// Open and Save in the File menu: when they can be chosen, their dialogs, and what becomes of a dialog that fails.

#include <optional>
#include <vector>

#include "config/page_file_fixture.h"
#include "core/task.h"

namespace tarvo {
namespace {

using test::FileOf;
using test::FilePageOf;
using test::IsBox;
using view::Icon;

class FileMenu : public test::PageFileFixture {
 protected:
  bool OpenIsOn() const { return Enabled("MDIForm1.OpenMNU"); }
  bool SaveIsOn() const { return Enabled("MDIForm1.SaveMNU"); }
};

TEST_F(FileMenu, OffersNoFilesAtTheStart) {
  EXPECT_FALSE(OpenIsOn());
  EXPECT_FALSE(SaveIsOn());
  EXPECT_THAT(RefusalOf("MDIForm1.OpenMNU"), testing::Not(testing::IsEmpty()));
}

TEST_F(FileMenu, OffersFilesOnDevicePagesOnly) {
  for (const test::FilePage& page : test::FilePages()) {
    OpenPage(page.model);
    EXPECT_TRUE(OpenIsOn()) << page.model;
    EXPECT_TRUE(SaveIsOn()) << page.model;
    Click(page.number % 2 == 0 ? "MDIForm1.LabHome" : "MDIForm1.LabPCSetup");
    EXPECT_FALSE(OpenIsOn());
    EXPECT_FALSE(SaveIsOn());
  }
}

TEST_F(FileMenu, FollowsTheMenuItemsOfThePagesToo) {
  Click("MDIForm1.MenuBelk");
  EXPECT_TRUE(OpenIsOn());
  EXPECT_TRUE(SaveIsOn());
  Click("MDIForm1.MenuPCSetup");
  EXPECT_FALSE(OpenIsOn());
  EXPECT_FALSE(SaveIsOn());
  Click("MDIForm1.MenuCobin");
  Click("MDIForm1.MenuHome");
  EXPECT_FALSE(OpenIsOn());
  EXPECT_FALSE(SaveIsOn());
}

TEST_F(FileMenu, AsksForAFileToOpen) {
  OpenPage("Belk");
  Click("MDIForm1.OpenMNU");
  ASSERT_NE(FileDialogInFront(), nullptr);
  EXPECT_FALSE(FileDialogInFront()->save);
  EXPECT_EQ(FileDialogInFront()->filter, test::kOpenFilter);
}

TEST_F(FileMenu, AsksForAFileToSave) {
  OpenPage("Belk");
  Click("MDIForm1.SaveMNU");
  ASSERT_NE(FileDialogInFront(), nullptr);
  EXPECT_TRUE(FileDialogInFront()->save);
  EXPECT_EQ(FileDialogInFront()->filter, test::kSaveFilter);
}

TEST_F(FileMenu, EndsWithoutAWordWhenTheDialogIsCancelled) {
  OpenPage("Belk");
  const View before = ViewOf("Belk");
  for (const char* item : {"MDIForm1.OpenMNU", "MDIForm1.SaveMNU"}) {
    for (const char* answer : {"Cancel", ""}) {
      Click(item);
      Answer(answer);
      EXPECT_TRUE(NothingInFront()) << item << " answered \"" << answer << '"';
    }
    Click(item);
    Close();
    EXPECT_TRUE(NothingInFront()) << item << " closed";
  }
  EXPECT_EQ(files.Reads(), 0);
  EXPECT_EQ(files.Writes(), 0);
  EXPECT_EQ(ViewOf("Belk"), before);
  LoadFields("Belk", FilePageOf("Belk").fields);
}

TEST_F(FileMenu, TakesThePathAsItStands) {
  OpenPage("Belk");
  const std::string path = "/bench/my module, 2nd \"floor\"";
  Click("MDIForm1.SaveMNU");
  Answer(path);
  EXPECT_EQ(files.Content(path), FileOf("Belk", {"1", "0", "257"}));
  Click("MDIForm1.OpenMNU");
  Answer(path);
  EXPECT_THAT(BoxInFront(), IsBox(test::Loaded("Belk"), Icon::kInformation));
}

TEST_F(FileMenu, AsksForNoFileInASession) {
  OpenPage("Belk");
  module[40001] = 0x0103;
  Click("StartBelk");
  State().NrFinestra = 12;  // a page without files is told so too
  for (const char* item : {"MDIForm1.OpenMNU", "MDIForm1.SaveMNU"}) {
    Click(item);
    EXPECT_EQ(FileDialogInFront(), nullptr);
    EXPECT_THAT(BoxInFront(), IsBox(test::kStopFirst, Icon::kExclamation));
    AnswerOk();
  }
}

TEST_F(FileMenu, RestsWhileAPageTalksOutsideASession) {
  OpenPage("Belk");
  module[40001] = 0x0103;
  ClickAndGoOn("WEEPBelk");
  ASSERT_TRUE(Hourglass());
  EXPECT_THAT(RefusalOf("MDIForm1.OpenMNU"), testing::Not(testing::IsEmpty()));
  EXPECT_THAT(RefusalOf("MDIForm1.SaveMNU"), testing::Not(testing::IsEmpty()));
}

// A dialog that fails.

using Asked = core::Task<std::optional<std::string>>;

/// What a dialog does, one entry a call; behind the last, the last again.
struct DialogScript {
  std::vector<std::optional<core::Fault>> faults;
  std::string path;
  std::vector<std::string> asked;
};

Asked RunDialog(DialogScript* script, bool save, std::string filter) {
  const std::size_t call = std::min(script->asked.size(), script->faults.size() - 1);
  script->asked.push_back((save ? "save " : "open ") + filter);
  if (script->faults[call]) throw core::Fault(*script->faults[call]);
  co_return script->path;
}

class FailingDialog : public FileMenu {
 protected:
  FailingDialog() {
    OpenPage("Belk");
    files[kPath] = FileOf("Belk", FilePageOf("Belk").fields);
    program.Files().AskForPath = [this](bool save, std::string filter) {
      return RunDialog(&script, save, std::move(filter));
    };
  }
  void Script(std::vector<std::optional<core::Fault>> faults) { script = {std::move(faults), kPath, {}}; }
  void ExpectUntouched() const {
    EXPECT_EQ(files.Reads(), 0);
    EXPECT_EQ(files.Writes(), 0);
  }
  /// The channel is not touched by it.
  void ExpectThatAGoodDialogWorks() {
    Script({std::nullopt});
    Click("MDIForm1.OpenMNU");
    EXPECT_THAT(BoxInFront(), IsBox(test::Loaded("Belk"), Icon::kInformation));
    AnswerOk();
  }
  /// The box of a disk that is not there.
  void ExpectInsertDisk() const {
    ASSERT_NE(BoxInFront(), nullptr);
    EXPECT_EQ(BoxInFront()->text, "Insert Disk and click OK");
    EXPECT_EQ(BoxInFront()->caption, "Tarvo");
    EXPECT_THAT(BoxInFront()->buttons, testing::ElementsAre("OK", "Cancel"));
    EXPECT_EQ(BoxInFront()->defaultButton, 1U);
  }

  DialogScript script;
};

TEST_F(FailingDialog, IsAskedWithTheFilterOfItsKind) {
  Script({std::nullopt});
  Click("MDIForm1.OpenMNU");
  EXPECT_THAT(BoxInFront(), IsBox(test::Loaded("Belk"), Icon::kInformation));
  AnswerOk();
  Click("MDIForm1.SaveMNU");
  EXPECT_THAT(script.asked,
              testing::ElementsAre(std::string("open ") + test::kOpenFilter, std::string("save ") + test::kSaveFilter));
}

TEST_F(FailingDialog, OfADiskNotReadyIsRepeatedAtOk) {
  for (const char* item : {"MDIForm1.OpenMNU", "MDIForm1.SaveMNU"}) {
    const core::Fault notReady("Disk not ready", 71);
    Script({notReady, notReady, std::nullopt});
    Click(item);
    ExpectInsertDisk();
    AnswerOk();
    ExpectInsertDisk();
    AnswerOk();
    EXPECT_EQ(script.asked.size(), 3U);
    if (item == std::string("MDIForm1.OpenMNU")) {
      EXPECT_THAT(BoxInFront(), IsBox(test::Loaded("Belk"), Icon::kInformation));
      AnswerOk();
    }
    EXPECT_TRUE(NothingInFront());
  }
  EXPECT_EQ(files.Reads(), 1);
  EXPECT_EQ(files.Writes(), 1);
}

TEST_F(FailingDialog, OfADiskNotReadyIsGivenUpAtCancel) {
  for (const char* item : {"MDIForm1.OpenMNU", "MDIForm1.SaveMNU"}) {
    Script({core::Fault("Disk not ready", 71)});
    Click(item);
    ExpectInsertDisk();
    Answer("Cancel");
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(script.asked.size(), 1U);
  }
  ExpectUntouched();
  ExpectThatAGoodDialogWorks();
}

TEST_F(FailingDialog, OfAnUnavailableDeviceSaysThatThePathIsNotThere) {
  for (const char* item : {"MDIForm1.OpenMNU", "MDIForm1.SaveMNU"}) {
    Script({core::Fault(core::kDeviceUnavailable, 68)});
    Click(item);
    EXPECT_THAT(BoxInFront(), IsBox("Path or drive not found", Icon::kExclamation));
    AnswerOk();
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(script.asked.size(), 1U);
  }
  ExpectUntouched();
  ExpectThatAGoodDialogWorks();
}

TEST_F(FailingDialog, ThatWasCancelledByAnErrorSaysNothing) {
  for (const char* item : {"MDIForm1.OpenMNU", "MDIForm1.SaveMNU"}) {
    Script({core::Fault("Cancel was selected.", 32755)});
    Click(item);
    EXPECT_TRUE(NothingInFront());
  }
  ExpectUntouched();
  ExpectThatAGoodDialogWorks();
}

TEST_F(FailingDialog, OfAnyOtherKindTellsNumberAndDescription) {
  for (const char* item : {"MDIForm1.OpenMNU", "MDIForm1.SaveMNU"}) {
    Script({core::Fault("Out of memory", 7)});
    Click(item);
    EXPECT_THAT(BoxInFront(), IsBox("Unexpected Error # 7: Out of memory", Icon::kNone));
    AnswerOk();
    EXPECT_TRUE(NothingInFront());
    Script({core::Fault(core::kPathNotFound, 76)});
    Click(item);
    EXPECT_THAT(BoxInFront(), IsBox("Unexpected Error # 76: Path not found", Icon::kNone));
    AnswerOk();
    EXPECT_TRUE(NothingInFront());
  }
  ExpectUntouched();
  ExpectThatAGoodDialogWorks();
}

}  // namespace
}  // namespace tarvo
