#pragma once

#include <map>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/program_fixture.h"

namespace tarvo::test {

inline constexpr char kOpenFilter[] = "All Files (*.txt) | *.txt";
inline constexpr char kSaveFilter[] = "Text Files (*.txt) | *.txt";
inline constexpr char kStopFirst[] = "Communication must be stopped";
inline constexpr char kWrongFormat[] = "Error on Data format";

using Fields = std::vector<std::string>;

/// A file as the program writes it: the header and each field in quotes, CR LF after each.
inline std::string FileOf(std::string_view model, const Fields& fields) {
  std::string content = "\"DATAFORMAT 1.0 " + std::string(model) + "\"\r\n";
  for (const std::string& field : fields) content += '"' + field + "\"\r\n";
  return content;
}
/// How many fields an opened file may have.
enum class Reading {
  kExactly,   ///< as many as the page has; what stands behind them is not looked at
  kToTheEnd,  ///< all of the file's, up to the 20 that can be staged
};

/// A page that has files: its name, its number, and a file of it.
struct FilePage {
  std::string model;
  int number = 0;
  int code = 0;   ///< of the module, in its identity
  Fields fields;  ///< of a good file, for the baud list of five rows
  Fields again;   ///< what a save after its load writes
  Reading reading = Reading::kExactly;
  std::string window = model;
  std::string menu = "Menu" + model;
  std::string start = "Start" + model;
  std::string stop = "Stop" + model;
  std::string named = model;  ///< by the words of a good load
};
inline void PrintTo(const FilePage& page, std::ostream* out) {
  *out << page.model;
}

/// In the order of their numbers. Writer and reader of Gaven's and Jorun's second field are one bit apart, as it is
/// meant: what was bit 1 comes back as bit 0. Quenby's reader takes four bits of the address, which is meant as well.
inline const std::vector<FilePage>& FilePages() {
  static const std::vector<FilePage> pages = {
      {"Belk", 0, 1, {"200", "255", "785"}, {"200", "255", "785"}},
      {"Cobin", 1, 2, {"27", "100", "209", "1026"}, {"27", "100", "209", "1026"}},
      {"Dravo",
       2,
       3,
       {"2054", "600", "-200", "1000", "-1000", "10050", "-50", "16916", "1047"},
       {"2054", "600", "-200", "1000", "-1000", "10050", "-50", "16916", "1047"}},
      {"Ferrun",
       3,
       4,
       {"1025", "10000", "-10", "32000", "-32000", "11000", "-1000", "513", "250", "-32764", "5000", "9999", "6000",
        "1", "10000", "9000", "1000", "2500"},
       {"1025", "10000", "-10", "32000", "-32000", "11000", "-1000", "513", "250", "-32764", "5000", "9999", "6000",
        "1", "10000", "9000", "1000", "2500"}},
      {"Gaven",
       4,
       7,
       {"785", "5", "1", "2", "6", "0", "10000", "-10000", "500", "7", "-1", "0", "-9999", "1"},
       {"785", "2", "1", "2", "6", "0", "10000", "-10000", "500", "7", "-1", "0", "-9999", "1"}},
      {.model = "Jorun",
       .number = 5,
       .code = 6,
       .fields = {"785", "5", "8", "0", "3", "1", "6", "0", "2", "1"},
       .again = {"785", "2", "8", "0", "3", "1", "6", "0", "2", "1"},
       .menu = "menuJorun"},
      {.model = "Lumet",
       .number = 6,
       .code = 10,
       .fields = {"65535", "1", "2", "3", "4", "5", "6", "2147483647", "7", "2079", "785", "2595", "254"},
       .again = {"65535", "1", "2", "3", "4", "5", "6", "2147483647", "7", "2079", "785", "2595", "254"},
       .reading = Reading::kToTheEnd,
       .window = "frmLumet",
       .menu = "mnuLumet",
       .named = "Jorun"},
      {.model = "Kelmar",
       .number = 7,
       .code = 12,
       .fields = {"21250", "8", "0", "3", "1", "6", "0", "2", "1"},
       .again = {"21250", "8", "0", "3", "1", "6", "0", "2", "1"},
       .menu = "menuKelmar"},
      {.model = "Hollin",
       .number = 8,
       .code = 11,
       .fields = {"0", "25602", "1", "2", "6", "0", "10000", "-10000", "500", "7", "-1", "0", "-9999", "1"},
       .again = {"0", "25602", "1", "2", "6", "0", "10000", "-10000", "500", "7", "-1", "0", "-9999", "1"}},
      {.model = "Nerith",
       .number = 9,
       .code = 8,
       .fields = {"3601", "42", "1795", "1280", "2", "257"},
       .again = {"3601", "42", "1795", "1280", "2", "257"},
       .reading = Reading::kToTheEnd,
       .window = "frmNerith",
       .menu = "menuNerith",
       .stop = "StopOswin"},
      {.model = "Marlo",
       .number = 10,
       .code = 13,
       .fields = {"778", "4354", "250", "771", "1460"},
       .again = {"778", "4354", "250", "771", "1460"},
       .reading = Reading::kToTheEnd,
       .window = "frmMarlo",
       .menu = "mnuMarlo",
       .start = "buttStartMarlo",
       .stop = "buttStopMarlo"},
      {.model = "Quenby",
       .number = 11,
       .code = 15,
       .fields = {"3548", "10000", "0", "5000", "968", "65535"},
       .again = {"3548", "10000", "0", "5000", "776", "65535"},
       .reading = Reading::kToTheEnd,
       .window = "frmQuenby",
       .menu = "mnuQuenby",
       .start = "buttStart",
       .stop = "buttStop"},
  };
  return pages;
}
inline const FilePage& FilePageOf(std::string_view model) {
  for (const FilePage& page : FilePages()) {
    if (page.model == model) return page;
  }
  throw std::logic_error("no such page");
}

/// What a good load of that model's file says.
inline std::string Loaded(std::string_view model) {
  return "Data correctly loaded! Press 'WRITE EEPROM' to update " + FilePageOf(model).named;
}

/// The program with files in memory, and the gestures around Open and Save.
class PageFileFixture : public ProgramFixture {
 protected:
  static constexpr char kPath[] = "/bench/module.txt";

  void OpenPage(const std::string& model) {
    const FilePage& page = FilePageOf(model);
    Click("MDIForm1." + page.menu);
    ASSERT_EQ(Page().Name(), page.window);
  }

  /// Saves the page and gives what stands in the file then.
  std::string Save() {
    Click("MDIForm1.SaveMNU");
    Answer(kPath);
    EXPECT_TRUE(NothingInFront()) << (BoxInFront() == nullptr ? "" : BoxInFront()->text);
    return files.Content(kPath).value_or("no file");
  }
  /// Opens a file with that content, up to what the program says about it.
  void Load(const std::string& content) {
    files[kPath] = content;
    Click("MDIForm1.OpenMNU");
    Answer(kPath);
  }
  /// A load that goes well, its box answered.
  void LoadFields(const std::string& model, const Fields& fields) {
    Load(FileOf(model, fields));
    EXPECT_THAT(BoxInFront(), IsBox(Loaded(model), view::Icon::kInformation));
    AnswerOk();
    EXPECT_TRUE(NothingInFront());
  }

  /// A session of the page with the module in memory, long enough for some polls and decodes, and its end.
  void RunSession(const std::string& model, int code) {
    const FilePage& page = FilePageOf(model);
    module[40001] = static_cast<std::uint16_t>(code << 8 | 3);
    Click(page.start);
    ASSERT_EQ(State().StartComm, state::kTrue) << (BoxInFront() == nullptr ? "no box" : BoxInFront()->text);
    Run(core::milliseconds(600));
    Click(page.stop);
    ASSERT_EQ(State().StartComm, state::kFalse);
  }

  /// Edits a value by its dialog.
  void Edit(const std::string& control, const std::string& text) {
    Click(control);
    ASSERT_EQ(WindowInFront(), "ChangeValue") << control;
    AnswerChangeValue(text);
    ASSERT_TRUE(NothingInFront());
  }

  const view::FileDialog* FileDialogInFront() const {
    const view::Modal* front = program.GetScreen().Front();
    return front == nullptr ? nullptr : front->AsFileDialog();
  }

  /// A good file's fields with another one at `number`, from 1.
  static Fields FieldsWith(const std::string& model, std::size_t number, const std::string& text) {
    Fields fields = FilePageOf(model).fields;
    fields.at(number - 1) = text;
    return fields;
  }
  /// 1 to 20.
  std::string FileField(std::size_t number) const { return State().FileFields.at(number); }
  Fields FileFields() const {
    Fields fields;
    for (std::size_t i = 1; i <= 20; ++i) fields.push_back(FileField(i));
    return fields;
  }
  int Buffer(std::size_t element) const { return State().PollBuffer.at(element).Unsigned(); }
  void SetBuffer(std::size_t element, unsigned word) const { State().PollBuffer.at(element) = state::Word(word); }

  /// "ValueGaven" and 2 give "ValueGaven(2)".
  static std::string Member(const std::string& array, int index) { return array + "(" + std::to_string(index) + ")"; }

  /// Everything that a window shows, to compare it with what it shows later.
  using View = std::map<std::string, view::PropertyValue>;
  View ViewOf(std::string_view window) const {
    View all;
    for (const view::Control* control : program.FindWindow(window)->Controls()) {
      for (const view::NamedValue& value : control->Properties()) {
        all.emplace(control->Name() + "." + std::string(value.name), value.value);
      }
    }
    return all;
  }
};

}  // namespace tarvo::test
