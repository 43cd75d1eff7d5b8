// Finds the items of code that was damaged in the code that it was.
#pragma once

#include <functional>
#include <vector>

// Two lists of items and whether one of each, by their indices, are the same.
struct ItemLists {
    int count;
    int otherCount;
    std::function<bool(int item, int other)> isSame;
};

// For each item the index of the one in the other list that it is, or that stands in its place.
// Empty if fewer than half of the items are there: then it is the code of something else.
std::vector<int> MatchItems(const ItemLists& lists);
