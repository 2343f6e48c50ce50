#include "shell/pc_setup.h"

#include <string>
#include <string_view>

#include "state/number_text.h"

namespace tarvo::shell {

namespace {

constexpr std::array<view::ListRow, 7> kRates = {
    {{"1200"}, {"2400"}, {"4800"}, {"9600"}, {"19200"}, {"38400"}, {"57600"}}};

struct ParityRow {
  std::string_view caption;
  char letter;
};
constexpr std::array<ParityRow, PCsetup::kParities> kParityRows = {{{"&None", 'n'}, {"&Even", 'e'}, {"O&dd", 'o'}}};

constexpr char kDefaultSettings[] = "9600,n,8,1";

}  // namespace

PCsetup::PCsetup(const Parts& parts)
    : Window(parts.screen, "PCsetup", "PC-Setup"),
      MSComm1(*this, "MSComm1", parts.ports),
      SetCOM([this](int i) {
        const std::string number = std::to_string(i + 1);
        return view::OptionButton(*this, "SetCOM" + number, "port", "Com&" + number);
      }),
      DeviceCOM([this](int i) { return view::Label(*this, "DeviceCOM" + std::to_string(i + 1)); }),
      PCBaudRate(*this, "PCBaudRate", kRates),
      Option([this](int i) {
        return view::OptionButton(*this, "Option" + std::to_string(i + 3), "parity",
                                  kParityRows[static_cast<std::size_t>(i)].caption);
      }),
      state_(parts.state),
      ports_(parts.ports),
      changeValue_(parts.changeValue),
      panel1_(parts.panel1) {
  for (int port = 1; port <= kPorts; ++port) {
    SetCOM[static_cast<std::size_t>(port - 1)].OnClick = [this, port] { return SetCOMClick(port); };
  }
  PCBaudRate.OnSelect = [this] { PCBaudRateClick(); };
  for (view::OptionButton& parity : Option) parity.OnClick = [this] { return OptionClick(); };
  PCAddress.OnClick = [this] { return PCAddressClick(); };
}

void PCsetup::TestPorts(bus::MSComm& comm) {
  for (int port = 1; port <= kPorts; ++port) {
    const auto at = static_cast<std::size_t>(port - 1);
    SetCOM[at].Enabled = bus::TestPort(comm, port) == 1;
    const std::string device = ports_.DescriptionOf(port);
    DeviceCOM[at].Caption = device.empty() ? "no serial port" : device;
    DeviceCOM[at].Enabled = SetCOM[at].Enabled();
    SetCOM[at].ToolTipText = DeviceCOM[at].Caption();
  }
}

core::Task<> PCsetup::SetCOMClick(int port) {
  state_.PCPort = port;
  co_return;
}

core::Task<> PCsetup::OptionClick() {
  PCBaudRateClick();
  co_return;
}

void PCsetup::PCBaudRateClick() {
  if (painting_) return;
  const std::string baud = PCBaudRate.Text();
  for (std::size_t i = 0; i < kParityRows.size(); ++i) {
    if (!baud.empty() && Option[i].Value()) state_.PCSettings = baud + "," + kParityRows[i].letter + ",8,1";
  }
  if (state_.PCSettings.empty()) state_.PCSettings = "38400,n,8,1";
}

core::Task<> PCsetup::PCAddressClick() {
  const std::optional<std::string> value = co_await changeValue_.AskFor(1, 255);
  if (!value) co_return;
  PCAddress.Caption = *value;
  state_.ModuleAddress = state::ToInteger(*value);
}

core::Task<> PCsetup::Activate() {
  panel1_.Text = "";
  if (state_.PCSettings.empty()) {
    state_.PCPort = 1;
    state_.ModuleAddress = 1;
    state_.PCSettings = kDefaultSettings;
    Option[0].Value = true;
    PCAddress.Caption = std::to_string(state_.ModuleAddress);
    co_return;
  }
  for (view::OptionButton& choice : SetCOM) choice.Enabled = false;
  TestPorts(MSComm1);
  ShowLine();
}

void PCsetup::ShowLine() {
  painting_ = true;
  const std::string& settings = state_.PCSettings;
  const std::size_t comma = settings.find(',');
  const std::string baud = settings.substr(0, comma);
  const std::string parity =
      comma == std::string::npos ? "" : settings.substr(comma + 1, settings.find(',', comma + 1) - comma - 1);
  for (std::size_t i = 0; i < kRates.size(); ++i) {
    if (kRates[i].text == baud) PCBaudRate.ListIndex = static_cast<int>(i);
  }
  for (std::size_t i = 0; i < kParityRows.size(); ++i) {
    if (parity == std::string(1, kParityRows[i].letter)) Option[i].Value = true;
  }
  for (int port = 1; port <= kPorts; ++port) SetCOM[port - 1].Value = port == state_.PCPort;
  PCAddress.Caption = std::to_string(state_.ModuleAddress);
  painting_ = false;
}

void PCsetup::Deactivate() {
  (void)MSComm1.SetPortOpen(false);
}

void PCsetup::Unload() {
  (void)MSComm1.SetPortOpen(false);
}

void PCsetup::KeyDown(view::Key key) {
  if (key == view::Key::kEscape) state_.EscPressed = 1;
}

view::Node PCsetup::Arrangement() const {
  std::vector<view::Node> ports;
  ports.reserve(kPorts);
  for (std::size_t i = 0; i < decltype(SetCOM)::Size(); ++i) {
    ports.push_back(view::Row({view::Show(SetCOM[i]), view::Show(DeviceCOM[i])}));
  }
  std::vector<view::Node> parities;
  parities.reserve(kParities);
  for (const view::OptionButton& parity : Option) parities.push_back(view::Show(parity));
  return view::Column({
      view::Head("PC-Setup", "This computer's side of the line", {}),
      view::Row({
          view::Frame("Comm Port Selection", view::Table({}, std::move(ports))),
          view::Frame("Parity", view::Column(std::move(parities))),
          view::Frame("Line", view::Column({
                                  view::Field("Baud Rate", view::Show(PCBaudRate)),
                                  view::Field("Address of MODBUS slave", view::Show(PCAddress)),
                              })),
      }),
      view::Space(),
  });
}

}  // namespace tarvo::shell
