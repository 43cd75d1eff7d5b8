// The course of variables as diagrams on a page that needs nothing but a browser.
#pragma once

#include "machine/series.h"

#include <QString>

#include <string>
#include <vector>

struct ChartSeries {
    QString name;
    Typ type;
    Series series;
};

struct Chart {
    QString title;
    qint64 cycles;
    quint32 tick;    // from one cycle to the next
    bool isWatched;  // the variables were asked for, so those that never change are shown too
    std::vector<ChartSeries> series;
};

// The page, in UTF-8.
std::string PageOf(const Chart& chart);
