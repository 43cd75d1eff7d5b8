// The courses of variables that charts show: what is kept of long ones.

#include "machine/series.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

Series SeriesOf(const std::vector<double>& values, std::size_t mostPieces) {
    Series series(mostPieces);
    qint64 cycle = 0;
    for (const double value : values) {
        series.add({++cycle, RealValue(TYP_LREAL, value)});
    }
    return series;
}

std::vector<qint64> CyclesOf(const Series& series) {
    std::vector<qint64> cycles;
    for (const Point& point : series.points()) {
        cycles.push_back(point.cycle);
    }
    return cycles;
}

bool Holds(const Series& series, qint64 cycle, double value) {
    const std::vector<Point> points = series.points();
    return std::any_of(points.begin(), points.end(), [&](const Point& point) {
        return point.cycle == cycle && point.value.real == value;
    });
}

TEST(Series, ShortRunsKeepAllChanges) {
    const Series series = SeriesOf({1, 2, 2, 2, 2, 3, 4}, 100);
    EXPECT_EQ(CyclesOf(series), (std::vector<qint64>{1, 2, 5, 6, 7}));
    EXPECT_EQ(series.cyclesOfPiece(), 1);
}

TEST(Series, NothingIsNoPoint) {
    EXPECT_TRUE(Series(10).points().empty());
    EXPECT_EQ(CyclesOf(SeriesOf({5}, 10)), std::vector<qint64>{1});
}

TEST(Series, LongRunsStayWithinTheirBounds) {
    Series series(16);
    for (qint64 cycle = 1; cycle <= 100'000; ++cycle) {
        series.add({cycle, WholeValue(TYP_DINT, cycle * 7919 % 10'007)});
    }
    EXPECT_LE(series.points().size(), 4U * 16);
    EXPECT_GE(series.points().size(), 2U * 8);
    EXPECT_EQ(series.points().front().cycle, 1);
    EXPECT_EQ(series.points().back().cycle, 100'000);
    const std::vector<qint64> cycles = CyclesOf(series);
    EXPECT_TRUE(std::is_sorted(cycles.begin(), cycles.end()));
}

// A single peak and a single dip, wherever they are.
TEST(Series, ExtremesAreNeverLost) {
    constexpr std::size_t count = 1000;
    for (std::size_t at = 0; at < count; at += 7) {
        std::vector<double> values(count, 1.0);
        values[at] = 100.0;
        values[count - 1 - at] = -100.0;
        const Series series = SeriesOf(values, 8);
        EXPECT_TRUE(Holds(series, static_cast<qint64>(at) + 1, 100.0)) << at;
        EXPECT_TRUE(Holds(series, static_cast<qint64>(count - at), -100.0)) << at;
    }
}

TEST(Series, WhatIsNoNumberHidesNoExtreme) {
    std::vector<double> values(100, std::numeric_limits<double>::quiet_NaN());
    values[50] = 3.0;
    const Series series = SeriesOf(values, 4);
    EXPECT_TRUE(Holds(series, 51, 3.0));
    EXPECT_TRUE(std::isnan(series.points().front().value.real));
}

TEST(Series, ValuesOfPiecesAreJoined) {
    EXPECT_EQ(SeriesOf(std::vector<double>(9, 1.0), 4).cyclesOfPiece(), 4);
    EXPECT_EQ(CyclesOf(SeriesOf({1, 5, 2, 3, 9, 8, 7, 6}, 2)),
              (std::vector<qint64>{1, 2, 4, 5, 8}));
}

}  // namespace
