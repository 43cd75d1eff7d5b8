#include "machine/series.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

bool IsNoNumber(const Value& value) {
    return value.isReal() && std::isnan(value.real);
}

bool IsSame(const Value& one, const Value& other) {
    if (IsNoNumber(one) || IsNoNumber(other)) {
        return IsNoNumber(one) && IsNoNumber(other);
    }
    return one.isReal() ? one.real == other.real : one.whole == other.whole;
}

// What is no number is neither less nor greater than anything.
bool IsLess(const Value& one, const Value& other) {
    if (IsNoNumber(other)) {
        return !IsNoNumber(one);
    }
    return one.isReal() ? one.real < other.real : one.whole < other.whole;
}

bool IsGreater(const Value& one, const Value& other) {
    return IsNoNumber(other) ? !IsNoNumber(one) : IsLess(other, one) && !IsNoNumber(one);
}

bool IsBefore(const Point& one, const Point& other) {
    return one.cycle < other.cycle;
}

// Without the points between others of the same value.
std::vector<Point> WithoutMidst(const std::vector<Point>& points) {
    std::vector<Point> left;
    for (std::size_t index = 0; index < points.size(); ++index) {
        const bool isAtEnd = index == 0 || index + 1 == points.size();
        if (isAtEnd || !IsSame(points[index].value, points[index - 1].value) ||
            !IsSame(points[index].value, points[index + 1].value)) {
            left.push_back(points[index]);
        }
    }
    return left;
}

}  // namespace

Series::Piece Series::joined(const Piece& piece, const Piece& after) {
    return {
        piece.first, IsLess(after.least.value, piece.least.value) ? after.least : piece.least,
        IsGreater(after.greatest.value, piece.greatest.value) ? after.greatest : piece.greatest,
        after.last};
}

void Series::add(const Point& point) {
    const Piece piece = {point, point, point, point};
    if (!pieces_.empty() && cyclesOfLast_ < cyclesOfPiece_) {
        pieces_.back() = joined(pieces_.back(), piece);
        ++cyclesOfLast_;
        return;
    }
    if (pieces_.size() == mostPieces_) {
        halve();
    }
    pieces_.push_back(piece);
    cyclesOfLast_ = 1;
}

// Joins each piece with the one after it. An odd number would leave a short one at the end.
void Series::halve() {
    std::vector<Piece> halved;
    for (std::size_t index = 0; index + 1 < pieces_.size(); index += 2) {
        halved.push_back(joined(pieces_[index], pieces_[index + 1]));
    }
    pieces_ = std::move(halved);
    cyclesOfPiece_ *= 2;
}

std::vector<Point> Series::points() const {
    std::vector<Point> points;
    for (const Piece& piece : pieces_) {
        std::array<Point, 4> kept = {piece.first, piece.least, piece.greatest, piece.last};
        std::sort(kept.begin(), kept.end(), IsBefore);
        for (const Point& point : kept) {
            if (points.empty() || IsBefore(points.back(), point)) {
                points.push_back(point);
            }
        }
    }
    return WithoutMidst(points);
}
