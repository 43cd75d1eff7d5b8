#include "machine/item_match.h"

#include <QtGlobal>

#include <algorithm>

namespace {

constexpr int MOST_LOST = 300;           // items between two that are the same
constexpr int NEEDED = 4;                // items that are the same, to go on after others
constexpr qint64 MOST_TRIED = 20000000;  // comparisons of all

// Goes through both lists, and after items that differ looks for the nearest ones that do not.
class Matcher {
public:
    explicit Matcher(const ItemLists& lists) : lists_(lists) {}

    std::vector<int> match() {
        while (item_ < lists_.count && other_ < lists_.otherCount) {
            if (isSame(item_, other_)) {
                found_.push_back(other_);
                ++same_;
                ++item_;
                ++other_;
            } else {
                skip();
            }
        }
        found_.resize(static_cast<std::size_t>(lists_.count), std::max(0, lists_.otherCount - 1));
        return 2 * same_ < lists_.count || lists_.otherCount == 0 ? std::vector<int>() : found_;
    }

private:
    const ItemLists& lists_;
    std::vector<int> found_;
    int item_ = 0;
    int other_ = 0;
    int same_ = 0;
    qint64 tried_ = 0;

    bool isSame(int item, int other) {
        ++tried_;
        return lists_.isSame(item, other);
    }

    bool goesOn(int item, int other) {
        for (int ahead = 0; ahead < NEEDED; ++ahead) {
            const bool isEnd = item + ahead == lists_.count;
            if (isEnd || other + ahead == lists_.otherCount) {
                return ahead > 0 && isEnd;
            }
            if (!isSame(item + ahead, other + ahead)) {
                return false;
            }
        }
        return true;
    }

    // As few items as possible of both lists.
    void skip() {
        for (int skipped = 1; skipped <= MOST_LOST && tried_ < MOST_TRIED; ++skipped) {
            for (int own = skipped; own >= 0; --own) {
                const int others = skipped - own;
                if (item_ + own <= lists_.count && other_ + others <= lists_.otherCount &&
                    goesOn(item_ + own, other_ + others)) {
                    skip(own, others);
                    return;
                }
            }
        }
        skip(1, 1);
    }

    void skip(int own, int others) {
        for (int each = 0; each < own; ++each) {
            found_.push_back(other_ + std::min(each, std::max(0, others - 1)));
        }
        item_ += own;
        other_ += others;
    }
};

}  // namespace

std::vector<int> MatchItems(const ItemLists& lists) {
    return Matcher(lists).match();
}
