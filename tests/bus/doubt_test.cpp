#include "bus/modcom/doubt.h"

#include <gtest/gtest.h>

#include <array>

namespace tarvo::bus {
namespace {

TEST(Doubt, SuspectsNothingAtFirst) {
  const Doubt doubt;
  EXPECT_FALSE(doubt.Suspect());
  EXPECT_FALSE(doubt.Holds(1));
}

TEST(Doubt, HoldsTheReadThatFailedUntilAProbeIsAnswered) {
  Doubt doubt;
  doubt.Add(9);
  EXPECT_TRUE(doubt.Suspect());
  EXPECT_TRUE(doubt.Holds(9));
  doubt.Answered(doubt.NextProbe(9));
  EXPECT_FALSE(doubt.Suspect());
  EXPECT_FALSE(doubt.Holds(9));
}

TEST(Doubt, ComesWithAWriteToo) {
  Doubt doubt;
  doubt.Add(0);
  EXPECT_TRUE(doubt.Suspect());
  EXPECT_FALSE(doubt.Holds(0));
}

TEST(Doubt, ProbesWithLengthsFromTwoToSixThatNoReplyOnItsWayHas) {
  for (std::uint16_t failed = 1; failed <= 7; ++failed) {
    for (std::uint16_t next = 0; next <= 7; ++next) {
      Doubt doubt;
      doubt.Add(failed);
      // As long as there are fresh ones.
      for (int i = 0; i < 3; ++i) {
        const std::uint16_t probe = doubt.NextProbe(next);
        EXPECT_GE(probe, Doubt::kShortestProbe);
        EXPECT_LE(probe, Doubt::kLongestProbe);
        EXPECT_NE(probe, next);
        EXPECT_FALSE(doubt.Holds(probe)) << "failed " << failed << ", next " << next;
        doubt.Add(probe);
      }
    }
  }
}

TEST(Doubt, TakesTheLengthOfTheLatestProbeWhenAllAreOnTheirWay) {
  Doubt doubt;
  doubt.Add(9);
  for (const std::uint16_t probe : std::to_array<std::uint16_t>({2, 3, 4, 5, 6})) {
    EXPECT_EQ(doubt.NextProbe(9), probe);
    doubt.Add(probe);
  }
  EXPECT_EQ(doubt.NextProbe(9), 6);
  EXPECT_EQ(doubt.NextProbe(6), 5) << "never the length of the read that follows";
}

TEST(Doubt, StaysWhenAnOlderReplyMayHavePassedForTheProbes) {
  Doubt doubt;
  for (const std::uint16_t failed : std::to_array<std::uint16_t>({9, 2, 3, 4, 5, 6})) doubt.Add(failed);
  doubt.Answered(6);
  EXPECT_TRUE(doubt.Suspect());
  // Modules answer in order: what was asked before that 6 comes no more.
  const std::uint16_t fresh = doubt.NextProbe(9);
  EXPECT_FALSE(doubt.Holds(fresh));
  doubt.Answered(fresh);
  EXPECT_FALSE(doubt.Suspect());
}

TEST(Doubt, KeepsTheLengthsOfProbesThatWereRefused) {
  Doubt doubt;
  doubt.Add(9);
  doubt.ProbeRefused(2);
  EXPECT_FALSE(doubt.Suspect());
  EXPECT_TRUE(doubt.Holds(2)) << "the exception may have been a late one";
  EXPECT_TRUE(doubt.Holds(9));
}

TEST(Doubt, ComesBackWithAnExceptionThatMayHaveBeenLate) {
  Doubt doubt;
  doubt.RequestRefused(4);
  EXPECT_FALSE(doubt.Suspect()) << "nothing was on its way";
  doubt.Add(9);
  doubt.ProbeRefused(2);
  doubt.RequestRefused(4);
  EXPECT_TRUE(doubt.Suspect());
  EXPECT_TRUE(doubt.Holds(4));
}

TEST(Doubt, KeepsAsMuchAsItHasRoomFor) {
  Doubt doubt;
  for (std::uint16_t count = 7; count <= 107; ++count) doubt.Add(count);
  EXPECT_TRUE(doubt.Holds(107));
  EXPECT_FALSE(doubt.Holds(7));
  EXPECT_LE(doubt.Replies(), 16);
}

}  // namespace
}  // namespace tarvo::bus
