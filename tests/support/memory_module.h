#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bus/rtu_frame.h"
#include "core/scheduler.h"
#include "support/memory_port.h"

namespace tarvo::test {

/// What a module does wrong with one request. Several can go together; none is a good reply.
struct ModuleFault {
  bool unheard = false;               ///< the request never reached the module: no reply, and a write does nothing
  bool silent = false;                ///< the module does what it is asked, its reply never arrives
  bool wrongCrc = false;              ///< one bit of the CRC is wrong
  core::Duration late{};              ///< on top of the turn-round time
  int cutTo = -1;                     ///< only so many bytes of the reply arrive; -1 for all
  std::uint8_t address = 0;           ///< another address in the reply (with a right CRC); 0 for its own
  std::uint8_t exceptionCode = 0;     ///< refuses with this code; 0 for none
  std::vector<std::uint8_t> noise{};  ///< arrives right before the reply

  static ModuleFault None() { return {}; }
  static ModuleFault Unheard() { return {.unheard = true}; }
  static ModuleFault Silent() { return {.silent = true}; }
  static ModuleFault WrongCrc() { return {.wrongCrc = true}; }
  static ModuleFault Late(core::Duration by) { return {.late = by}; }
  static ModuleFault Torn(int bytesThatArrive) { return {.cutTo = bytesThatArrive}; }
  static ModuleFault Foreign(std::uint8_t otherAddress) { return {.address = otherAddress}; }
  static ModuleFault Exception(std::uint8_t code) { return {.exceptionCode = code}; }
  static ModuleFault Noise(std::vector<std::uint8_t> bytes) { return {.noise = std::move(bytes)}; }

  /// For the log: "" for none, else ": silent" and the like.
  std::string Text() const {
    std::string text;
    const auto add = [&text](std::string_view what) {
      text += text.empty() ? ": " : ", ";
      text += what;
    };
    if (unheard) add("unheard");
    if (silent) add("silent");
    if (wrongCrc) add("wrong CRC");
    if (late > core::Duration::zero()) {
      const auto by = std::chrono::duration_cast<core::milliseconds>(late);
      add("late " + std::to_string(by.count()) + " ms");
    }
    if (cutTo >= 0) add("torn");
    if (address != 0) add("foreign");
    if (exceptionCode != 0) add("exception " + std::to_string(exceptionCode));
    if (!noise.empty()) add("noise");
    return text;
  }
};

/// A module at the other end of a `MemoryLine`: holding registers from 40001 on, functions 3, 6 and 16. It answers at
/// its own address and line setting only, one request after the other, after its turn-round time and the time that
/// request and reply need on the line.
///
///     core::VirtualScheduler scheduler;
///     test::MemoryLine line(scheduler);
///     test::MemoryPorts ports;
///     ports.Connect(1, line);
///     test::MemoryModule module(scheduler, line);
///     module[40001] = 0x0103;
///     module.Next(test::ModuleFault::Silent());     // the next request only
///     ...
///     EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001: silent", "reads 40001 x2", "reads 40001"));
///
/// A log line is "reads 40009", "reads 40002 x9", "writes 40009 = 0x0081" or "writes 40009 x2 = 0x0081 0x0001", with
/// the fault behind a colon if there was one. Requests to other addresses or at another line setting are not logged.
class MemoryModule {
 public:
  /// Registers that exist, unless `SetLast` says otherwise; beyond them is exception 2.
  static constexpr int kLastRegister = 40512;

  MemoryModule(core::Scheduler& scheduler, MemoryLine& line, int address = 1)
      : Address(address), scheduler_(scheduler), line_(line), registers_(kLastRegister - kFirst + 1) {
    line_.OnWrite = [this](std::span<const std::uint8_t> bytes) { Request(bytes); };
  }
  MemoryModule(const MemoryModule&) = delete;
  MemoryModule& operator=(const MemoryModule&) = delete;
  ~MemoryModule() { line_.OnWrite = nullptr; }

  int Address;             ///< 1 to 255
  bus::LineSettings Line;  ///< 9600,n,8,1 until set
  core::Duration TurnRound = core::milliseconds(2);

  /// The raw word of a register by its five digits.
  std::uint16_t& operator[](int number) { return registers_.at(static_cast<std::size_t>(number - kFirst)); }
  void SetLast(int number) { registers_.resize(static_cast<std::size_t>(number - kFirst + 1)); }

  /// Called before a read takes its words: a test lets inputs move here.
  std::function<void(int first, int count)> BeforeRead;
  /// Called after a register was written.
  std::function<void(int number, std::uint16_t value)> AfterWrite;

  /// The fault of the next request; called several times, of those after it.
  void Next(ModuleFault fault) { next_.push_back(std::move(fault)); }
  /// The fault of every request that `Next` says nothing about. `ModuleFault::None()` ends it.
  void Always(ModuleFault fault) { always_ = std::move(fault); }

  /// Off, requests are not logged and nothing is allocated for an exchange (with the line's recording off, too).
  void SetLogging(bool logging) {
    logging_ = logging;
    line_.SetRecording(logging);
  }
  const std::vector<std::string>& Log() const { return log_; }
  /// The log since the last call.
  std::vector<std::string> TakeLog() { return std::exchange(log_, {}); }
  void ForgetLog() { log_.clear(); }
  /// Requests that reached the module since its beginning.
  int Requests() const { return requests_; }

 private:
  static constexpr int kFirst = 40001;
  static constexpr std::uint8_t kIllegalFunction = 1;
  static constexpr std::uint8_t kIllegalAddress = 2;
  static constexpr std::uint8_t kIllegalValue = 3;

  static int WordAt(std::span<const std::uint8_t> bytes, std::size_t at) { return bytes[at] << 8 | bytes[at + 1]; }

  void Request(std::span<const std::uint8_t> frame) {
    if (frame.size() < 8 || !bus::CrcFits(frame) || frame[0] != Address || line_.Line() != Line) return;
    ++requests_;
    const ModuleFault* fault = &always_;
    if (!next_.empty()) {
      ordered_ = std::move(next_.front());
      next_.pop_front();
      fault = &ordered_;
    }

    length_ = 0;
    Put(frame[0]);
    Put(frame[1]);
    const std::uint8_t exception = fault->exceptionCode != 0 ? fault->exceptionCode : WhyRefused(frame);
    if (logging_) Note(frame, *fault, exception);
    if (fault->unheard) return;
    if (exception != 0) {
      reply_[1] |= bus::kExceptionBit;
      Put(exception);
    } else if (frame[1] == bus::kReadHoldingRegisters) {
      Read(WordAt(frame, 2), WordAt(frame, 4));
    } else {
      Write(frame);
    }
    Send(*fault, frame.size());
  }

  std::uint8_t WhyRefused(std::span<const std::uint8_t> frame) const {
    const bool single = frame[1] == bus::kWriteSingleRegister;
    const bool several = frame[1] == bus::kWriteMultipleRegisters;
    if (frame[1] != bus::kReadHoldingRegisters && !single && !several) return kIllegalFunction;
    const int count = single ? 1 : WordAt(frame, 4);
    if (count < 1 || count > 125) return kIllegalValue;
    if (several && frame.size() != static_cast<std::size_t>(9 + 2 * count)) return kIllegalValue;
    if (static_cast<std::size_t>(WordAt(frame, 2) + count) > registers_.size()) return kIllegalAddress;
    return 0;
  }

  void Read(int address, int count) {
    if (BeforeRead) BeforeRead(kFirst + address, count);
    Put(2 * count);
    for (int i = 0; i < count; ++i) PutWord((*this)[kFirst + address + i]);
  }

  void Write(std::span<const std::uint8_t> frame) {
    const int address = WordAt(frame, 2);
    const bool single = frame[1] == bus::kWriteSingleRegister;
    const int count = single ? 1 : WordAt(frame, 4);
    PutWord(address);
    PutWord(WordAt(frame, 4));
    for (int i = 0; i < count; ++i) {
      const auto value = static_cast<std::uint16_t>(WordAt(frame, single ? 4 : 7 + 2 * static_cast<std::size_t>(i)));
      (*this)[kFirst + address + i] = value;
      if (AfterWrite) AfterWrite(kFirst + address + i, value);
    }
  }

  void Send(const ModuleFault& fault, std::size_t requestLength) {
    if (fault.silent) return;
    if (fault.address != 0) reply_[0] = fault.address;
    length_ = bus::AppendCrc(reply_, length_);
    if (fault.wrongCrc) reply_[length_ - 1] ^= 0x01;
    if (fault.cutTo >= 0) length_ = std::min(length_, static_cast<std::size_t>(fault.cutTo));
    if (!fault.noise.empty()) {
      std::copy_backward(reply_.begin(), reply_.begin() + static_cast<std::ptrdiff_t>(length_),
                         reply_.begin() + static_cast<std::ptrdiff_t>(length_ + fault.noise.size()));
      std::copy(fault.noise.begin(), fault.noise.end(), reply_.begin());
      length_ += fault.noise.size();
    }
    // A module answers one request after the other, so a late reply holds up the next one.
    const core::TimePoint heard = scheduler_.Now() + Line.TimeOf(static_cast<double>(requestLength));
    const core::TimePoint begins = std::max(heard + TurnRound + fault.late, busyUntil_);
    busyUntil_ = begins + Line.TimeOf(static_cast<double>(length_));
    line_.Deliver(std::span(reply_).first(length_), busyUntil_ - scheduler_.Now());
  }

  void Note(std::span<const std::uint8_t> frame, const ModuleFault& fault, std::uint8_t exception) {
    const bool reads = frame[1] == bus::kReadHoldingRegisters;
    const bool single = frame[1] == bus::kWriteSingleRegister;
    const int count = single ? 1 : WordAt(frame, 4);
    std::string text = (reads ? "reads " : "writes ") + std::to_string(kFirst + WordAt(frame, 2));
    if (count != 1) text += " x" + std::to_string(count);
    if (!reads) {
      text += " =";
      for (std::size_t at = single ? 4 : 7; at + 3 < frame.size(); at += 2) {
        std::array<char, 8> word{};
        std::snprintf(word.data(), word.size(), " 0x%04X", static_cast<unsigned>(WordAt(frame, at)));
        text += word.data();
      }
    }
    ModuleFault shown = fault;
    shown.exceptionCode = exception;
    log_.push_back(text + shown.Text());
  }

  void Put(int byte) { reply_[length_++] = static_cast<std::uint8_t>(byte); }
  void PutWord(int word) {
    Put(word >> 8);
    Put(word & 0xFF);
  }

  core::Scheduler& scheduler_;
  MemoryLine& line_;
  std::vector<std::uint16_t> registers_;
  std::deque<ModuleFault> next_;
  ModuleFault ordered_;
  ModuleFault always_;
  /// A frame and some noise before it.
  std::array<std::uint8_t, 2 * bus::kLongestFrame> reply_{};
  std::size_t length_ = 0;
  core::TimePoint busyUntil_{};
  bool logging_ = true;
  std::vector<std::string> log_;
  int requests_ = 0;
};

}  // namespace tarvo::test
