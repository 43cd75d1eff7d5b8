/* Calls that fail without being made.

   FAIL_CALLS  which ones, with blanks between them, each as "function:part of the path:which of
               these calls, counted from 1, or 0 for all:number of the error"

   The log tells each that has failed, as it is written there. */

#include "calls.h"

#define MOST_FAILURES 8

struct failure {
    char call[32];
    char part[128];
    int at;
    int error;
    int calls; /* so far */
};

static struct failure failures[MOST_FAILURES];
static int count;

__attribute__((constructor)) static void read_failures(void) {
    const char* text = getenv("FAIL_CALLS");
    int length = 0;
    while (text != NULL && count < MOST_FAILURES) {
        struct failure* next = &failures[count];
        if (sscanf(text, " %31[^:]:%127[^:]:%d:%d%n", next->call, next->part, &next->at,
                   &next->error, &length) != 4) {
            return;
        }
        text += length;
        ++count;
    }
}

static void note(const struct failure* failure) {
    char line[256];
    snprintf(line, sizeof line, "%s:%s:%d:%d\n", failure->call, failure->part, failure->at,
             failure->error);
    write_log(line);
}

static int is_next(struct failure* failure, const char* call, const char* path) {
    if (strcmp(call, failure->call) != 0 || strstr(path, failure->part) == NULL) {
        return 0;
    }
    ++failure->calls;
    return failure->at == 0 || failure->at == failure->calls;
}

static int fails(const char* call, const char* path) {
    int error = 0;
    for (struct failure* failure = failures; failure != failures + count; ++failure) {
        if (is_next(failure, call, path)) {
            note(failure);
            error = failure->error;
        }
    }
    errno = error == 0 ? errno : error;
    return error != 0;
}

#define DEFINE_CALL(type, name, parameters, arguments, path, failed) \
    type name parameters {                                           \
        NEXT(type, name, parameters);                                \
        return fails(#name, path) ? failed : next arguments;         \
    }

int open(const char* path, int flags, ...) {
    NEXT(int, open, (const char*, int, ...));
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = mode_of(flags, rest);
    va_end(rest);
    return fails("open", path) ? -1 : next(path, flags, mode);
}

DEFINE_CALL(FILE*, fopen, (const char* path, const char* mode), (path, mode), path, NULL)
DEFINE_CALL(int, rename, (const char* from, const char* to), (from, to), from, -1)
DEFINE_CALL(int, renameat2,
            (int folder, const char* from, int toFolder, const char* to, unsigned flags),
            (folder, from, toFolder, to, flags), from, -1)
DEFINE_CALL(int, remove, (const char* path), (path), path, -1)
