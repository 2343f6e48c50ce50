#include "simulator/order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/options.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using ::testing::HasSubstr;

Order Parsed(const char* line) {
  const ParsedOrder parsed = ParseOrder(line);
  EXPECT_EQ(parsed.error, "") << line;
  return parsed.order;
}

TEST(SimulatorOrders, NameEachFault) {
  for (const FaultName& fault : kFaultNames) {
    if (fault.kind == FaultKind::kLate) continue;
    const Order order = Parsed(("com1 " + std::string(fault.name)).c_str());
    EXPECT_EQ(order.kind, Order::Kind::kSetFault);
    EXPECT_EQ(order.fault.kind, fault.kind) << fault.name;
    EXPECT_EQ(order.fault.replies, std::nullopt);
    EXPECT_EQ(order.fault.address, std::nullopt);
  }
}

TEST(SimulatorOrders, TellPortAddressAndNumberOfReplies) {
  const Order order = Parsed("\tcom4:255   wrong-crc  12 \r");
  EXPECT_EQ(order.port, 4);
  EXPECT_EQ(order.fault.address, 255);
  EXPECT_EQ(order.fault.replies, 12);
}

TEST(SimulatorOrders, TellHowLateAReplyComes) {
  EXPECT_EQ(Parsed("com1 late 700ms").fault.delay, milliseconds(700));
  const Order order = Parsed("com1 late 2s 3");
  EXPECT_EQ(order.fault.delay, milliseconds(2000));
  EXPECT_EQ(order.fault.replies, 3);
}

TEST(SimulatorOrders, TellARegisterAndItsValue) {
  const Order get = Parsed("com1 get 40009");
  EXPECT_EQ(get.kind, Order::Kind::kGet);
  EXPECT_EQ(get.reg.Number(), 40009);
  const Order set = Parsed("com2:9 set 40002 0x0101");
  EXPECT_EQ(set.kind, Order::Kind::kSet);
  EXPECT_EQ(set.address, 9);
  EXPECT_EQ(set.reg.Number(), 40002);
  EXPECT_EQ(set.value.Unsigned(), 0x0101);
}

TEST(SimulatorOrders, TellWhichModuleRestarts) {
  EXPECT_EQ(Parsed("com1 restart").kind, Order::Kind::kRestart);
  EXPECT_EQ(Parsed("com1 restart").address, std::nullopt);
  EXPECT_EQ(Parsed("com1:7 restart").address, 7);
}

TEST(SimulatorOrders, TellAnOutputAndItsLoad) {
  const std::pair<const char*, Load> rows[] = {
      {"good", Load::kGood}, {"open", Load::kOpen}, {"short", Load::kShort}, {"hot", Load::kHot}};
  for (const auto& [name, load] : rows) {
    const Order order = Parsed((std::string("com3:9 load 10 ") + name).c_str());
    EXPECT_EQ(order.kind, Order::Kind::kLoad);
    EXPECT_EQ(order.address, 9);
    EXPECT_EQ(order.output, 10);
    EXPECT_EQ(order.load, load) << name;
  }
}

TEST(SimulatorOrders, HaveSomeForTheWholePort) {
  EXPECT_EQ(Parsed("com1 clear").kind, Order::Kind::kClear);
  EXPECT_EQ(Parsed("com1 fault").kind, Order::Kind::kFault);
  EXPECT_EQ(Parsed("com1 unplug").kind, Order::Kind::kUnplug);
  EXPECT_EQ(Parsed("com1 plug").kind, Order::Kind::kPlug);
}

TEST(SimulatorOrders, TellWhatIsWrongInOneLine) {
  struct Row {
    const char* line;
    const char* error;
  };
  const std::vector<Row> rows = {
      {"silence", "'silence' is no port, com1 to com4"},
      {"com0 silence", "'com0' is no port, com1 to com4"},
      {"com5 silence", "'com5' is no port, com1 to com4"},
      {"com silence", "'com' is no port, com1 to com4"},
      {"com1: silence", "'' is no address, 1 to 255"},
      {"com1:0 silence", "'0' is no address, 1 to 255"},
      {"com1:256 silence", "'256' is no address, 1 to 255"},
      {"com1", "unknown order '', see tarvo-sim --help"},
      {"com1 Silence", "unknown order 'Silence', see tarvo-sim --help"},
      {"com1 silence 0", "'0' is no number of replies, 1 to 1000000"},
      {"com1 silence -1", "'-1' is no number of replies, 1 to 1000000"},
      {"com1 silence 3x", "'3x' is no number of replies, 1 to 1000000"},
      {"com1 silence 3 4", "'4' is too much"},
      {"com1 late", "'' is no time for late, such as 700ms or 2s, one minute at most"},
      {"com1 late 3", "'3' is no time for late, such as 700ms or 2s, one minute at most"},
      {"com1 late 0ms", "'0ms' is no time for late, such as 700ms or 2s, one minute at most"},
      {"com1 late ms", "'ms' is no time for late, such as 700ms or 2s, one minute at most"},
      {"com1 late 61s", "'61s' is no time for late, such as 700ms or 2s, one minute at most"},
      {"com1 late 60001ms", "'60001ms' is no time for late, such as 700ms or 2s, one minute at most"},
      {"com1 unplug 3", "'3' is too much"},
      {"com1 restart 3", "'3' is too much"},
      {"com1 load", "'' is no output, from 1 on"},
      {"com1 load 0 open", "'0' is no output, from 1 on"},
      {"com1 load 3", "'' is no load, which is good, open, short or hot"},
      {"com1 load 3 Open", "'Open' is no load, which is good, open, short or hot"},
      {"com1 load 3 open 4", "'4' is too much"},
      {"com1:1 unplug", "unplug is for the whole port, without an address"},
      {"com1:1 clear", "clear is for the whole port, without an address"},
      {"com1 get", "'' is no register, from 40001 on"},
      {"com1 get 40000", "'40000' is no register, from 40001 on"},
      {"com1 get 40009 1", "'1' is too much"},
      {"com1 set 40009", "'' is no value for 40009, 0 to 65535"},
      {"com1 set 40009 65536", "'65536' is no value for 40009, 0 to 65535"},
  };
  for (const Row& row : rows) EXPECT_EQ(ParseOrder(row.line).error, row.error) << row.line;
  EXPECT_EQ(ParseOrder(std::string(201, 'x')).error, "the order is too long");
}

TEST(SimulatorOrders, StandInTheHelp) {
  const std::string help = HelpText();
  for (const FaultName& fault : kFaultNames) EXPECT_THAT(help, HasSubstr("\n    " + std::string(fault.name) + ' '));
  for (const char* order : {"clear", "fault", "unplug", "plug", "get", "set", "load", "restart"}) {
    EXPECT_THAT(help, HasSubstr(std::string("\n  PORT ") + order + ' '));
  }
}

}  // namespace
}  // namespace tarvo::simulator
