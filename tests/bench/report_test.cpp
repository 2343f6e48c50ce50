#include "bench/report.h"

#include <gtest/gtest.h>

#include <numeric>

namespace tarvo::bench {
namespace {

TEST(Quantile, IsTheSmallestValueThatAtLeastThatPartDoesNotExceed) {
  std::vector<double> values(200);
  std::iota(values.rbegin(), values.rend(), 1.0);
  EXPECT_EQ(Quantile(values, 0.5), 100);
  EXPECT_EQ(Quantile(values, 0.99), 198);
  EXPECT_EQ(Quantile(values, 1), 200);
  EXPECT_EQ(Quantile(values, 0), 1);
}

TEST(Quantile, OfAnOddNumberIsTheOneInTheMiddle) {
  EXPECT_EQ(Quantile({3, 1, 2}, 0.5), 2);
}

TEST(Quantile, OfOneValueIsThatValue) {
  EXPECT_EQ(Quantile({7}, 0.99), 7);
}

TEST(Report, SaysWhichBarIsMissed) {
  Report report;
  report.Add({"start", "0.11 s", "bare 0.05 s", "0.12 s", true});
  EXPECT_TRUE(report.AllMet());
  report.Add({"memory", "50 MB", "", "48 MB", false});
  EXPECT_FALSE(report.AllMet());
  EXPECT_EQ(report.Text(),
            "| what   | Tarvo  | beside it   | bar    | met |\n"
            "| ------ | ------ | ----------- | ------ | --- |\n"
            "| start  | 0.11 s | bare 0.05 s | 0.12 s | yes |\n"
            "| memory | 50 MB  |             | 48 MB  | NO  |\n");
}

TEST(Report, MissesNoBarByARowThatHasNone) {
  Report report;
  report.Add({"served", "93 %", "", "", std::nullopt});
  EXPECT_TRUE(report.AllMet());
  EXPECT_EQ(report.Text(),
            "| what   | Tarvo | beside it | bar | met |\n"
            "| ------ | ----- | --------- | --- | --- |\n"
            "| served | 93 %  |           |     |     |\n");
}

}  // namespace
}  // namespace tarvo::bench
