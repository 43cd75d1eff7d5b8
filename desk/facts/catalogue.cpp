#include "facts/catalogue.h"

#include "qyx_messages.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

struct Row {
    QLatin1String id;
    QLatin1String text;
};

constexpr Row CATALOGUE[] = {
#include "catalogue.inc"
};

const Row& RowOf(int constant) {
    return CATALOGUE[static_cast<std::size_t>(constant)];
}

}  // namespace

int ConstantOf(QLatin1String text) {
    const auto* const row = std::find_if(std::begin(CATALOGUE), std::end(CATALOGUE),
                                         [text](const Row& each) { return each.text == text; });
    return static_cast<int>(row - std::begin(CATALOGUE));
}

int ConstantsCount() {
    return static_cast<int>(std::size(CATALOGUE));
}

QLatin1String IdOf(int constant) {
    return RowOf(constant).id;
}

QLatin1String TextOf(int constant) {
    return RowOf(constant).text;
}
