#include "qyx_nesting.h"

#include "qyx_messages.h"

int NestingGuard::depth_ = 0;

NestingGuard::NestingGuard() {
    if (++depth_ > NESTING_LIMIT) {
        Abort(TXT_TOO_DEEP_NESTING);
    }
}

NestingGuard::~NestingGuard() {
    --depth_;
}
