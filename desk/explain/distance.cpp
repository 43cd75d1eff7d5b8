#include "explain/distance.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

// `distances` are those of the beginnings of `other` to the beginning of `one` that was seen.
int EditDistance(QStringView one, QStringView other) {
    std::vector<int> distances(static_cast<std::size_t>(other.size()) + 1);
    std::iota(distances.begin(), distances.end(), 0);
    for (const QChar seen : one) {
        int diagonal = distances.front()++;
        for (std::size_t at = 1; at < distances.size(); ++at) {
            const QChar compared = other.at(static_cast<qsizetype>(at) - 1);
            const int replaced = diagonal + (seen == compared ? 0 : 1);
            diagonal = distances[at];
            distances[at] = std::min({replaced, diagonal + 1, distances[at - 1] + 1});
        }
    }
    return distances.back();
}

QString NearestWord(const QString& text, const QStringList& words) {
    const QString folded = text.toCaseFolded();
    int least = std::max(1, folded.size() / 2) + 1;
    QString nearest;
    for (const QString& word : words) {
        const int distance = EditDistance(folded, word.toCaseFolded());
        if (distance < least) {
            least = distance;
            nearest = word;
        }
    }
    return nearest;
}
