// What the file of one page does as that of any other.

#include <algorithm>

#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::Fields;
using test::FileOf;
using test::FilePage;
using test::FilePages;
using test::IsBox;
using test::Loaded;
using view::Icon;

class EveryPageFile : public test::PageFileFixture, public testing::WithParamInterface<FilePage> {
 protected:
  EveryPageFile() {
    // Some pages read their module when they are shown.
    module[40001] = static_cast<std::uint16_t>(page.code << 8 | 3);
    OpenPage(model);
  }

  const FilePage& page = GetParam();
  const std::string& model = page.model;
  const std::string good = FileOf(model, page.fields);
};

TEST_P(EveryPageFile, IsLoadedWithTheWordsOfItsModel) {
  Load(good);
  EXPECT_THAT(BoxInFront(), IsBox(Loaded(model), Icon::kInformation));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
}

TEST_P(EveryPageFile, IsSavedAfterALoadByteForByteAsTold) {
  LoadFields(model, page.fields);
  EXPECT_EQ(Save(), FileOf(model, page.again));
}

TEST_P(EveryPageFile, IsSavedWithoutAWord) {
  LoadFields(model, page.fields);
  Click("MDIForm1.SaveMNU");
  Answer(kPath);
  EXPECT_TRUE(NothingInFront());
}

TEST_P(EveryPageFile, TakesThePlaceOfALongerOne) {
  LoadFields(model, page.fields);
  files[kPath] = std::string(5000, 'x');
  EXPECT_EQ(Save(), FileOf(model, page.again));
}

TEST_P(EveryPageFile, NeverTalksToTheModule) {
  module.ForgetLog();
  LoadFields(model, page.fields);
  Save();
  EXPECT_THAT(module.Log(), testing::IsEmpty());
  EXPECT_FALSE(PortOpen());
}

TEST_P(EveryPageFile, FillsTheStagingFields) {
  LoadFields(model, page.fields);
  for (std::size_t i = 0; i < page.fields.size(); ++i) EXPECT_EQ(FileField(i + 1), page.fields[i]);
  for (std::size_t i = page.fields.size(); i < 20; ++i) EXPECT_EQ(FileField(i + 1), "");
}

TEST_P(EveryPageFile, LeavesTheStagingFieldsBehindItsLastAsTheyWere) {
  for (std::string& field : State().FileFields) field = "old";
  LoadFields(model, page.fields);
  Save();
  for (std::size_t i = 0; i < page.again.size(); ++i) EXPECT_EQ(FileField(i + 1), page.again[i]);
  for (std::size_t i = page.again.size(); i < 20; ++i) EXPECT_EQ(FileField(i + 1), "old");
}

TEST_P(EveryPageFile, MayGoOnBehindItsLastField) {
  Load(good + "\"one more\"\r\n\"and an open quote\r\n,,,");
  EXPECT_THAT(BoxInFront(), IsBox(Loaded(model), Icon::kInformation));
  AnswerOk();
  EXPECT_EQ(Save(), FileOf(model, page.again));
}

TEST_P(EveryPageFile, MayHoldPlainFieldsOnOneLine) {
  std::string content = "DATAFORMAT 1.0 " + model;
  for (const std::string& field : page.fields) content += ", " + field;
  Load(content);
  EXPECT_THAT(BoxInFront(), IsBox(Loaded(model), Icon::kInformation));
  AnswerOk();
  EXPECT_EQ(Save(), FileOf(model, page.again));
}

TEST_P(EveryPageFile, MayEndItsLinesInLfAndLackTheLastEnd) {
  std::string content = good;
  std::erase(content, '\r');
  content.pop_back();
  Load(content);
  EXPECT_THAT(BoxInFront(), IsBox(Loaded(model), Icon::kInformation));
  AnswerOk();
  EXPECT_EQ(Save(), FileOf(model, page.again));
}

TEST_P(EveryPageFile, OfAnotherPageIsRefusedAndThePageUntouched) {
  LoadFields(model, page.fields);
  const auto fieldsBefore = FileFields();
  const auto bufferBefore = State().PollBuffer;
  const View before = ViewOf(page.window);
  for (const FilePage& other : FilePages()) {
    if (other.number == page.number) continue;
    Load(FileOf(other.model, other.fields));
    EXPECT_THAT(BoxInFront(), IsBox(test::kWrongFormat, Icon::kCritical)) << other.model;
    AnswerOk();
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(ViewOf(page.window), before) << other.model;
    EXPECT_EQ(FileFields(), fieldsBefore);
    EXPECT_EQ(State().PollBuffer, bufferBefore);
  }
  // The channel is closed again.
  LoadFields(model, page.fields);
}

TEST_P(EveryPageFile, ThatIsEmptyEndsTooSoon) {
  const View before = ViewOf(page.window);
  Load("");
  EXPECT_THAT(BoxInFront(), IsBox(core::kInputPastEndOfFile, Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(ViewOf(page.window), before);
}

TEST_P(EveryPageFile, IsNeitherOpenedNorSavedInASession) {
  files[kPath] = good;
  Click(page.start);
  ASSERT_EQ(State().StartComm, state::kTrue);
  for (const char* item : {"MDIForm1.OpenMNU", "MDIForm1.SaveMNU"}) {
    Click(item);
    EXPECT_THAT(BoxInFront(), IsBox(test::kStopFirst, Icon::kExclamation));
    AnswerOk();
    EXPECT_TRUE(NothingInFront());
  }
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_EQ(files.Reads(), 0);
  EXPECT_EQ(files.Writes(), 0);
  Click(page.stop);
  Load(good);
  EXPECT_THAT(BoxInFront(), IsBox(Loaded(model), Icon::kInformation));
}

TEST_P(EveryPageFile, IsLoadedIntoAPageThatWasNeverShown) {
  const FilePage& other = FilePages().at(page.number == 0 ? 1U : 0U);
  // A program of its own, so that nothing has touched the page yet.
  test::MemoryLine otherLine(scheduler);
  test::MemoryPorts otherPorts;
  test::MemoryValues otherValues;
  otherValues.Keep("AUTOSCAN", "FALSE");
  shell::Program fresh(shell::Services{scheduler, otherPorts, otherValues, help, files, "/programs/tarvo"});
  fresh.Start();
  scheduler.RunReady();
  view::Screen& screen = fresh.GetScreen();
  view::Window& main = *fresh.FindWindow("MDIForm1");
  ASSERT_TRUE(screen.Click(*main.Find(other.menu)).taken);
  scheduler.RunReady();
  view::Window& target = *fresh.FindWindow(page.window);
  ASSERT_FALSE(target.Loaded());
  fresh.State().NrFinestra = page.number;

  const auto answer = [&](const char* item, const std::string& path) {
    ASSERT_TRUE(screen.Click(*main.Find(item)).taken);
    scheduler.RunReady();
    ASSERT_NE(screen.Front(), nullptr);
    ASSERT_NE(screen.Front()->AsFileDialog(), nullptr);
    ASSERT_TRUE(screen.Answer(path).taken);
    scheduler.RunReady();
  };
  files[kPath] = good;
  answer("OpenMNU", kPath);
  ASSERT_NE(screen.Front(), nullptr);
  EXPECT_THAT(screen.Front()->AsMessageBox(), IsBox(Loaded(model), Icon::kInformation));
  ASSERT_TRUE(screen.Answer("OK").taken);
  scheduler.RunReady();
  EXPECT_TRUE(target.Loaded());
  // It is loaded only, not shown.
  EXPECT_EQ(screen.Page()->Name(), other.window);
  answer("SaveMNU", "/bench/again.txt");
  EXPECT_EQ(files.Content("/bench/again.txt"), FileOf(model, page.again));

  // Its Load does not run again over what was loaded.
  ASSERT_TRUE(screen.Click(*main.Find(page.menu)).taken);
  ASSERT_TRUE(RunUntil([&] { return screen.Idle(); }));
  answer("SaveMNU", "/bench/shown.txt");
  EXPECT_EQ(files.Content("/bench/shown.txt"), FileOf(model, page.again));
}

TEST_P(EveryPageFile, OfAPageWithoutOneDoesNothingBehindTheDialog) {
  files[kPath] = good;
  const View before = ViewOf(page.window);
  for (const int number : {12, -1}) {
    State().NrFinestra = number;
    for (const char* item : {"MDIForm1.OpenMNU", "MDIForm1.SaveMNU"}) {
      Click(item);
      ASSERT_NE(FileDialogInFront(), nullptr);
      Answer("/bench/other.txt");
      EXPECT_TRUE(NothingInFront());
    }
  }
  EXPECT_EQ(ViewOf(page.window), before);
  EXPECT_EQ(files.Content("/bench/other.txt"), std::nullopt);
  EXPECT_EQ(files.Reads(), 0);
  EXPECT_EQ(files.Writes(), 0);
}

// Pages that read as many fields as they have.

class ExactPageFile : public EveryPageFile {};

TEST_P(ExactPageFile, ThatEndsTooSoonChangesNothingOnThePage) {
  const View before = ViewOf(page.window);
  std::vector<std::string> tooShort = page.fields;
  tooShort.pop_back();
  Load(FileOf(model, tooShort));
  EXPECT_THAT(BoxInFront(), IsBox(core::kInputPastEndOfFile, Icon::kExclamation));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(ViewOf(page.window), before);
  // What was read stays in the staging fields, and the channel stays open.
  for (std::size_t i = 0; i < tooShort.size(); ++i) EXPECT_EQ(FileField(i + 1), tooShort[i]);
  EXPECT_EQ(FileField(page.fields.size()), "");
  Load(good);
  EXPECT_THAT(BoxInFront(), IsBox(core::kFileAlreadyOpen, Icon::kExclamation));
}

TEST_P(ExactPageFile, WithNothingButItsHeaderEndsTooSoon) {
  Load(FileOf(model, {}));
  EXPECT_THAT(BoxInFront(), IsBox(core::kInputPastEndOfFile, Icon::kExclamation));
}

// Pages that read their file to its end.

class OpenEndedPageFile : public EveryPageFile {
 protected:
  static constexpr std::size_t kMost = 20;
  const std::size_t last = page.fields.size();

  /// A good file's fields with so many in all.
  Fields Filled(std::size_t count) const {
    Fields fields = page.fields;
    while (fields.size() < count) fields.push_back("more " + std::to_string(fields.size() + 1));
    return fields;
  }
  /// Leaves the fields from `first` to the last one to what was staged before.
  void ExpectTheRestIsTaken(std::size_t first) {
    for (std::size_t i = first; i <= last; ++i) State().FileFields.at(i) = page.fields[i - 1];
    const auto begin = page.fields.begin();
    LoadFields(model, Fields(begin, begin + static_cast<std::ptrdiff_t>(first) - 1));
    EXPECT_EQ(Save(), FileOf(model, page.again));
  }
};

TEST_P(OpenEndedPageFile, StagesWhatStandsBehindItsLastField) {
  LoadFields(model, Filled(last + 2));
  EXPECT_EQ(FileField(last + 1), Filled(last + 2)[last]);
  EXPECT_EQ(FileField(last + 2), Filled(last + 2)[last + 1]);
  EXPECT_EQ(FileField(last + 3), "");
}

TEST_P(OpenEndedPageFile, TakesABlankLineBehindItForAnEmptyField) {
  for (std::size_t i = last + 1; i <= kMost; ++i) State().FileFields.at(i) = "old";
  Load(good + "\r\n");
  EXPECT_THAT(BoxInFront(), IsBox(Loaded(model), Icon::kInformation));
  AnswerOk();
  EXPECT_EQ(FileField(last + 1), "");
  EXPECT_EQ(FileField(last + 2), "old");
  EXPECT_EQ(Save(), FileOf(model, page.again));
}

TEST_P(OpenEndedPageFile, MayHaveTwentyFields) {
  LoadFields(model, Filled(kMost));
  EXPECT_EQ(FileFields(), Filled(kMost));
  EXPECT_EQ(Save(), FileOf(model, page.again));
}

TEST_P(OpenEndedPageFile, OfMoreThanTwentyFieldsChangesNothingOnThePage) {
  const View before = ViewOf(page.window);
  Load(FileOf(model, Filled(kMost + 1)));
  EXPECT_THAT(BoxInFront(), IsBox(core::kSubscriptOutOfRange, Icon::kExclamation));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(ViewOf(page.window), before);
  // What was read stays in the staging fields, and the channel stays open.
  EXPECT_EQ(FileFields(), Filled(kMost));
  Load(good);
  EXPECT_THAT(BoxInFront(), IsBox(core::kFileAlreadyOpen, Icon::kExclamation));
}

TEST_P(OpenEndedPageFile, OfTwentyFieldsAndABlankLineHasOneTooMany) {
  Load(FileOf(model, Filled(kMost)) + "\r\n");
  EXPECT_THAT(BoxInFront(), IsBox(core::kSubscriptOutOfRange, Icon::kExclamation));
}

TEST_P(OpenEndedPageFile, ThatEndsTooSoonTakesItsLastFieldFromTheOneBefore) {
  ExpectTheRestIsTaken(last);
}

TEST_P(OpenEndedPageFile, WithNothingButItsHeaderTakesAllItsFieldsFromTheOneBefore) {
  ExpectTheRestIsTaken(1);
}

const auto kNameOf = [](const testing::TestParamInfo<FilePage>& given) { return given.param.model; };

std::vector<FilePage> FilePagesRead(test::Reading reading) {
  std::vector<FilePage> pages = FilePages();
  std::erase_if(pages, [&](const FilePage& page) { return page.reading != reading; });
  return pages;
}

INSTANTIATE_TEST_SUITE_P(Pages, EveryPageFile, testing::ValuesIn(FilePages()), kNameOf);
INSTANTIATE_TEST_SUITE_P(Pages, ExactPageFile, testing::ValuesIn(FilePagesRead(test::Reading::kExactly)), kNameOf);
INSTANTIATE_TEST_SUITE_P(Pages, OpenEndedPageFile, testing::ValuesIn(FilePagesRead(test::Reading::kToTheEnd)), kNameOf);

}  // namespace
}  // namespace tarvo
