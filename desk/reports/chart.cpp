#include "reports/chart.h"

#include "qyx_types.h"

#include <cmath>
#include <string_view>

namespace {

constexpr unsigned char PAGE[] = {
#include "chart.inc"
};

constexpr std::string_view TITLE_MARK = "@TITLE@";
constexpr std::string_view DATA_MARK = "@DATA@";

// A number of JSON; null for a real that is none.
std::string NumberOf(const Value& value) {
    if (value.type == TYP_BOOL) {
        return value.whole != 0 ? "1" : "0";
    }
    const bool isNumber = !value.isReal() || std::isfinite(value.real);
    return isNumber ? TextOf(value).toStdString() : "null";
}

std::string PointsOf(const Series& series) {
    std::string text;
    for (const Point& point : series.points()) {
        text += text.empty() ? "[" : ",[";
        text += std::to_string(point.cycle) + ',' + NumberOf(point.value) + ']';
    }
    return text;
}

// Names are letters, digits and "_" and need no care.
std::string SeriesOf(const ChartSeries& each) {
    return "{\"name\":\"" + each.name.toStdString() + "\",\"type\":\"" +
           TypToStr(each.type).data() + "\",\"points\":[" + PointsOf(each.series) + "]}";
}

std::string DataOf(const Chart& chart) {
    const qint64 piece = chart.series.empty() ? 1 : chart.series.front().series.cyclesOfPiece();
    std::string text = "{\"cycles\":" + std::to_string(chart.cycles) +
                       ",\"tick\":" + std::to_string(chart.tick) +
                       ",\"piece\":" + std::to_string(piece) +
                       ",\"watched\":" + (chart.isWatched ? "true" : "false") + ",\"series\":[";
    std::string_view border;
    for (const ChartSeries& each : chart.series) {
        text.append(border).append("\n").append(SeriesOf(each));
        border = ",";
    }
    return text + "\n]}";
}

void Replace(std::string& text, std::string_view mark, std::string_view with) {
    for (std::size_t at = text.find(mark); at != std::string::npos;
         at = text.find(mark, at + with.size())) {
        text.replace(at, mark.size(), with);
    }
}

}  // namespace

std::string PageOf(const Chart& chart) {
    std::string page(reinterpret_cast<const char*>(PAGE), sizeof PAGE);
    Replace(page, DATA_MARK, DataOf(chart));
    Replace(page, TITLE_MARK, chart.title.toHtmlEscaped().toStdString());
    return page;
}
