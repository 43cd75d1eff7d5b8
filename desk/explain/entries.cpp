#include "explain/entries.h"

#include <QRegularExpression>

#include <string_view>

namespace {

constexpr std::string_view MANUAL[] = {
#include "pages.inc"
};

// Takes the lines of pages one after the other.
class EntryReader {
public:
    void take(const QString& line) {
        if (line.startsWith(QLatin1String("```"))) {
            takeFence(line.mid(3));
        } else if (isInFrame_) {
            frame_.append(line);
        }
        if (isInFence_ || !takeMark(line)) {
            append(line);
        }
    }

    const std::vector<Entry>& entries() const { return entries_; }

private:
    std::vector<Entry> entries_;
    QString heading_;
    QStringList frame_;
    bool isInEntry_ = false;
    bool isInFence_ = false;
    bool isInFrame_ = false;

    void append(const QString& line) {
        if (isInEntry_) {
            entries_.back().body.append(line);
        }
    }

    void takeFence(const QString& info) {
        isInFence_ = !isInFence_;
        isInFrame_ = isInFence_ && info == QLatin1String("st frame");
        if (isInFrame_) {
            frame_.clear();
        } else if (isInEntry_ && info == QLatin1String("st statements")) {
            entries_.back().frame = frame_;
        }
    }

    // Takes a heading or the line with the identifiers; false for any other line.
    bool takeMark(const QString& line) {
        static const QRegularExpression heading(QStringLiteral("^#{1,6} +(.*)$"));
        static const QRegularExpression ids(QStringLiteral("^<!-- (id|reason): (.*) -->$"));
        if (const auto match = heading.match(line); match.hasMatch()) {
            heading_ = match.captured(1);
            isInEntry_ = false;
            return true;
        }
        const auto match = ids.match(line);
        if (match.hasMatch()) {
            const bool isMessage = match.captured(1) == QLatin1String("id");
            entries_.push_back(
                {match.captured(2).split(QStringLiteral(", ")), isMessage, heading_, {}, {}});
            isInEntry_ = true;
        }
        return match.hasMatch();
    }
};

}  // namespace

std::vector<Entry> ReadEntries(const QStringList& markdown) {
    EntryReader reader;
    for (const QString& line : markdown) {
        reader.take(line);
    }
    return reader.entries();
}

std::vector<Entry> EntriesOfManual() {
    QStringList lines;
    for (const std::string_view line : MANUAL) {
        lines.append(QString::fromUtf8(line.data(), static_cast<int>(line.size())));
    }
    return ReadEntries(lines);
}
