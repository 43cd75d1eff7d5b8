// What a user may set of the language server; docs/manual/lsp.md has the table.
#pragma once

#include <QJsonObject>
#include <QStringList>

#include <chrono>

struct Settings {
    QStringList disabled;                                            // lints, by identifier
    int maxErrors = 50;                                              // shown of a script
    std::chrono::milliseconds timeLimit = std::chrono::seconds(10);  // for the model of a script
};

bool operator==(const Settings& a, const Settings& b);

// Settings as a client tells them, and what is wrong with them, a sentence each without its full
// stop. What is wrong or missing is as if it were not set.
struct ToldSettings {
    Settings settings;
    QStringList faults;
};
ToldSettings SettingsOf(const QJsonObject& told);
