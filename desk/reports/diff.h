// How a file would change, as a unified diff.
#pragma once

#include <QString>

// The text of the diff, empty if nothing differs. Lines are shown with the ends that they have;
// with colours, nothing in the texts commands the terminal.
QString UnifiedDiff(const QString& name, const QString& before, const QString& after,
                    bool hasColors);
