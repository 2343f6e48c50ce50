// The settings file of a page, whatever stands in it: the program says one thing about it and works on. The input's
// first byte chooses the page ("0" to ";"), the rest is the file. What is staged is compared with a reader of this
// file's own, where the grammar tells all.

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/virtual_scheduler.h"
#include "fuzz/input.h"
#include "shell/program.h"
#include "support/memory_files.h"
#include "support/memory_help.h"
#include "support/memory_module.h"
#include "support/memory_port.h"
#include "support/memory_values.h"
#include "view/screen.h"

namespace tarvo {
namespace {

using fuzz::Check;

struct Page {
  std::string name;
  std::uint16_t identity = 0;
  std::size_t fields = 0;
  std::string window = name;
  std::string menu = "Menu" + name;
  std::string start = "Start" + name;
  std::string stop = "Stop" + name;
  std::string commit = "WEEP" + name;
  std::string updated = name;  ///< the model that the message after a load names
  bool toTheEnd = false;       ///< a load takes all that the file has
  bool comesBackSame = true;   ///< false where the file's writer and reader disagree
  bool tellsItsCommit = true;
};

constexpr std::size_t kMostFields = 20;

const std::array<Page, 12> kPages = {{
    {.name = "Belk", .identity = 0x0103, .fields = 3},
    {.name = "Cobin", .identity = 0x0203, .fields = 4},
    {.name = "Dravo", .identity = 0x0303, .fields = 9},
    {.name = "Ferrun", .identity = 0x0403, .fields = 18, .commit = "buttWEEPFerrun"},
    {.name = "Gaven", .identity = 0x0703, .fields = 14, .comesBackSame = false},
    {.name = "Jorun",
     .identity = 0x0603,
     .fields = 10,
     .menu = "menuJorun",
     .commit = "buttWEEPJorun",
     .comesBackSame = false},
    {.name = "Lumet",
     .identity = 0x0A03,
     .fields = 13,
     .window = "frmLumet",
     .menu = "mnuLumet",
     .updated = "Jorun",
     .toTheEnd = true},
    {.name = "Kelmar", .identity = 0x0C01, .fields = 9, .menu = "menuKelmar"},
    {.name = "Hollin", .identity = 0x0B01, .fields = 14},
    {.name = "Nerith",
     .identity = 0x0812,
     .fields = 6,
     .window = "frmNerith",
     .menu = "menuNerith",
     .stop = "StopOswin",
     .commit = "WEEPGaven",
     .toTheEnd = true,
     .comesBackSame = false,
     .tellsItsCommit = false},
    {.name = "Marlo",
     .identity = 0x0D03,
     .fields = 5,
     .window = "frmMarlo",
     .menu = "mnuMarlo",
     .start = "buttStartMarlo",
     .stop = "buttStopMarlo",
     .commit = "buttWEEPMarlo",
     .toTheEnd = true,
     .comesBackSame = false},
    {.name = "Quenby",
     .identity = 0x0F03,
     .fields = 6,
     .window = "frmQuenby",
     .menu = "mnuQuenby",
     .start = "buttStart",
     .stop = "buttStop",
     .commit = "buttWriteEEPROM",
     .toTheEnd = true},
}};

/// True when the grammar leaves no room: what else ends a line or counts as a blank is not told.
bool IsPlain(std::string_view content) {
  for (std::size_t i = 0; i < content.size(); ++i) {
    const auto byte = static_cast<unsigned char>(content[i]);
    const bool ends = byte == '\n' || (byte == '\r' && content.substr(i + 1, 1) == "\n");
    if (!ends && (byte < ' ' || byte > '~')) return false;
  }
  return true;
}

/// The next field of a plain file, nothing at its end. Takes it and its separator off `rest`.
std::optional<std::string> NextField(std::string_view& rest) {
  if (rest.empty()) return std::nullopt;
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  std::string field;
  if (rest.starts_with('"')) {
    rest.remove_prefix(1);
    const std::size_t end = std::min(rest.find('"'), rest.size());
    field = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  } else {
    const std::size_t end = std::min(rest.find_first_of(",\r\n"), rest.size());
    field = rest.substr(0, end);
    rest.remove_prefix(end);
  }
  rest.remove_prefix(std::min(rest.find_first_of(",\r\n"), rest.size()));
  if (rest.starts_with('\r')) rest.remove_prefix(1);
  if (!rest.empty()) rest.remove_prefix(1);
  return field;
}

/// What must become of a plain file: what is staged, and whether it can only be told of its format or its end.
struct Expected {
  bool header = false;
  bool whole = false;
  bool tooLong = false;
  std::vector<std::string> fields;
};

Expected ExpectedOf(const Page& page, std::string_view content) {
  Expected expected;
  const std::optional<std::string> header = NextField(content);
  expected.header = header == "DATAFORMAT 1.0 " + page.name;
  // Without a header at all the file ends too soon; with another one nothing more is read.
  if (!expected.header) {
    expected.whole = header.has_value();
    return expected;
  }
  while (expected.fields.size() < (page.toTheEnd ? kMostFields : page.fields)) {
    const std::optional<std::string> field = NextField(content);
    expected.whole = page.toTheEnd;
    if (!field) return expected;
    expected.fields.push_back(*field);
  }
  expected.whole = true;
  expected.tooLong = page.toTheEnd && !content.empty();
  return expected;
}

class Bench {
 public:
  explicit Bench(const Page& page) : page_(page) {
    ports_.Connect(1, line_);
    values_.Keep("AUTOSCAN", "FALSE");
    module_[40001] = page.identity;
    program_.Start();
    scheduler_.RunReady();
    Click("MDIForm1", page.menu);
    Check(screen_.Page()->Name() == page.window, "the page is shown");
  }

  void Run(const std::string& content) {
    const std::string said = Open(content);
    CheckSaid(said, content);
    if (said == Loaded() || said == kWrongFormat) {
      SaveAndLoadAgain(said == Loaded());
    } else {
      Check(Open(content) == core::kFileAlreadyOpen, "an error leaves the channel open");
      Check(Save() == core::kFileAlreadyOpen, "an error leaves the channel open for a save too");
    }
    Work();
  }

 private:
  static constexpr char kWrongFormat[] = "Error on Data format";
  static constexpr char kPath[] = "/file";

  std::string Loaded() const { return "Data correctly loaded! Press 'WRITE EEPROM' to update " + page_.updated; }

  void CheckSaid(const std::string& said, const std::string& content) {
    if (!IsPlain(content)) return;
    const Expected expected = ExpectedOf(page_, content);
    for (std::size_t i = 0; i < kMostFields; ++i) {
      const std::string& staged = program_.State().FileFields.at(i + 1);
      Check(staged == (i < expected.fields.size() ? expected.fields[i] : ""), "a field is what stands in the file");
    }
    Check((said == core::kInputPastEndOfFile) == !expected.whole, "a file that ends too soon is told so, no other is");
    Check((said == core::kSubscriptOutOfRange) == expected.tooLong,
          "a file with too many fields is told so, no other is");
    if (expected.whole) Check((said == kWrongFormat) == !expected.header, "another header is told, the own is not");
  }

  void SaveAndLoadAgain(bool loaded) {
    Check(Save().empty(), "a page can be saved whatever was loaded");
    const std::string saved = files_[kPath];
    Check(saved.starts_with("\"DATAFORMAT 1.0 " + page_.name + "\"\r\n\""), "a file begins with its header");
    // A quote in a value does not read back.
    if (!loaded || std::count(saved.begin(), saved.end(), '"') != 2 * (1 + static_cast<int>(page_.fields))) return;
    Check(Open(saved) == Loaded(), "what was saved can be loaded");
    Check(Save().empty(), "and saved again");
    Check(!page_.comesBackSame || files_[kPath] == saved, "and is the same then");
  }

  /// The page can still do all that it is for.
  void Work() {
    Click(page_.window, page_.commit);
    if (page_.tellsItsCommit) AnswerBox();
    Check(screen_.Front() == nullptr, "a commit says what it has to say, and no more");
    RunSession();
  }

  void RunSession() {
    Click(page_.window, page_.start);
    Check(program_.State().StartComm == state::kTrue, "a session starts");
    scheduler_.Run(core::milliseconds(600));
    Check(screen_.Front() == nullptr, "a session says nothing");
    Click(page_.window, page_.stop);
    Check(program_.State().StartComm == state::kFalse, "a session ends");
  }

  /// What the program says about a file.
  std::string Open(const std::string& content) {
    files_[kPath] = content;
    Click("MDIForm1", "OpenMNU");
    Answer(kPath);
    Check(screen_.Front() != nullptr, "a file that is opened is spoken of");
    return AnswerBox();
  }
  /// What the program says about a save, empty when nothing.
  std::string Save() {
    Click("MDIForm1", "SaveMNU");
    Answer(kPath);
    return screen_.Front() == nullptr ? std::string() : AnswerBox();
  }

  std::string AnswerBox() {
    Check(screen_.Front() != nullptr && screen_.Front()->AsMessageBox() != nullptr, "a box is in front");
    std::string text = screen_.Front()->AsMessageBox()->text;
    Answer("OK");
    return text;
  }
  void Click(const std::string& window, const std::string& control) {
    Check(screen_.Click(*program_.FindWindow(window)->Find(control)).taken, "a click is taken");
    Settle();
  }
  void Answer(const std::string& answer) {
    Check(screen_.Answer(answer).taken, "an answer is taken");
    scheduler_.RunReady();
    Settle();
  }
  /// Until the handler has ended or something stands in front.
  void Settle() {
    Check(scheduler_.RunUntil([this] { return screen_.Front() != nullptr || screen_.Idle(); }, std::chrono::minutes(2)),
          "a handler ends");
  }

  const Page& page_;
  core::VirtualScheduler scheduler_;
  test::MemoryLine line_{scheduler_};
  test::MemoryPorts ports_;
  test::MemoryValues values_;
  test::MemoryHelp help_;
  test::MemoryFiles files_;
  test::MemoryModule module_{scheduler_, line_};
  shell::Program program_{shell::Services{scheduler_, ports_, values_, help_, files_, "/programs/tarvo"}};
  view::Screen& screen_ = program_.GetScreen();
};

}  // namespace
}  // namespace tarvo

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvo::fuzz::Input input(data, size);
  const tarvo::Page& page = tarvo::kPages.at(static_cast<std::size_t>(input.Below(tarvo::kPages.size())));
  tarvo::Bench(page).Run(std::string(input.Text(size)));
  return 0;
}
