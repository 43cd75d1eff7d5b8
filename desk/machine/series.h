// The course of a variable over the cycles of a run, in a bounded number of points.
#pragma once

#include "machine/value.h"

#include <cstddef>
#include <vector>

struct Point {
    qint64 cycle;
    Value value;
};

// Keeps all values of a short run. Of a long one it keeps pieces of the same number of cycles
// each, with their first, least, greatest and last values, so that no extreme is lost.
class Series {
public:
    // The number of pieces is even.
    explicit Series(std::size_t mostPieces) : mostPieces_(mostPieces) {}

    // Values come in the order of their cycles, one a cycle.
    void add(const Point& point);
    // 1 as long as all values are kept.
    qint64 cyclesOfPiece() const { return cyclesOfPiece_; }
    // Those that are kept, in the order of their cycles, but for the ones in the midst of others
    // of the same value.
    std::vector<Point> points() const;

private:
    struct Piece {
        Point first;
        Point least;
        Point greatest;
        Point last;
    };

    std::size_t mostPieces_;
    qint64 cyclesOfPiece_ = 1;
    qint64 cyclesOfLast_ = 0;  // that the last piece holds
    std::vector<Piece> pieces_;

    static Piece joined(const Piece& piece, const Piece& after);
    void halve();
};
