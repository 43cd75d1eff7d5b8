#include "protocols/settings.h"

#include "lints/lints.h"

#include <QJsonArray>

#include <tuple>

namespace {

constexpr double MAX_SECONDS = 3600;

// Takes the settings one after the other.
class SettingsReader {
public:
    explicit SettingsReader(const QJsonObject& told) : told_(told) {}

    ToldSettings read() {
        readDisabled();
        readMaxErrors();
        readTimeLimit();
        return read_;
    }

private:
    const QJsonObject& told_;
    ToldSettings read_;

    // Whether it is set, null being as good as nothing.
    bool has(const QString& name) const { return !told_[name].isNull() && told_.contains(name); }

    void blame(const QString& fault) { read_.faults.append(fault); }

    void readDisabled() {
        const QString name = QStringLiteral("disable");
        if (has(name) && !told_[name].isArray()) {
            blame(QStringLiteral("yxst.disable is no list of lints"));
        }
        for (const auto& value : told_[name].toArray()) {
            readLint(value.toString().trimmed().toLower());
        }
    }

    void readLint(const QString& id) {
        if (LintIds().contains(id)) {
            read_.settings.disabled.append(id);
            return;
        }
        const QString nearest = NearestLint(id);
        blame(QStringLiteral("yxst.disable: there is no lint \"%1\"").arg(id) +
              (nearest.isEmpty() ? QString() : QStringLiteral("; the nearest is ")) + nearest);
    }

    void readMaxErrors() {
        const QString name = QStringLiteral("maxErrors");
        const int number = told_[name].toInt();
        if (number >= 1) {
            read_.settings.maxErrors = number;
        } else if (has(name)) {
            blame(QStringLiteral("yxst.maxErrors is no whole number from 1 on"));
        }
    }

    void readTimeLimit() {
        const QString name = QStringLiteral("timeLimit");
        const double seconds = told_[name].toDouble();
        if (seconds > 0 && seconds <= MAX_SECONDS) {
            read_.settings.timeLimit =
                std::chrono::milliseconds(static_cast<int>(seconds * 1000));
        } else if (has(name)) {
            blame(QStringLiteral("yxst.timeLimit is no number of seconds up to 3600"));
        }
    }
};

}  // namespace

bool operator==(const Settings& a, const Settings& b) {
    return std::tie(a.disabled, a.maxErrors, a.timeLimit) ==
           std::tie(b.disabled, b.maxErrors, b.timeLimit);
}

ToldSettings SettingsOf(const QJsonObject& told) {
    return SettingsReader(told).read();
}
