#pragma once

namespace tarvo::test {

/// A check box that stands for a bit of its module's flags, and writes it with the click.
struct FlagBox {
  const char* box;
  int mask;
};

inline constexpr FlagBox kBelkFlags[] = {{"CheckBelk1", 0x0080}, {"CheckBelk2", 0x0001}, {"CheckBelk3", 0x0020},
                                         {"CheckBelk4", 0x0002}, {"CheckBelk5", 0x0004}, {"CheckBelk6", 0x0008}};
inline constexpr FlagBox kCobinFlags[] = {{"CheckCobin1", 0x0080},
                                          {"CheckCobin2", 0x0001},
                                          {"CheckCobin3", 0x0040},
                                          {"CheckCobin4", 0x0004},
                                          {"CheckCobin5", 0x0008}};
inline constexpr FlagBox kDravoFlags[] = {{"CheckDravo1", 0x0100},
                                          {"CheckDravo2", 0x0200},
                                          {"CheckDravo3", 0x4000},
                                          {"CheckDravo4", 0x0008},
                                          {"CheckDravo5", 0x0004}};
inline constexpr FlagBox kLumetFlags[] = {
    {"CheckLumet2", 0x0001}, {"CheckLumet4", 0x0002}, {"CheckLumet5", 0x0004}, {"CheckLumet6", 0x0008}};

}  // namespace tarvo::test
