/* Stops the process at its n-th call that opens, writes, closes, renames or removes a file of the
   test's folder.

   STOP_AT      which call, counted from 1; with 0 the calls are only logged
   STOP_AFTER   when set, after the call instead of before it
   STOP_SIGNAL  the signal that is raised there; without it the process exits with STOP_STATUS
   STOP_CALL    when set, only calls whose name begins so count
   STOP_NAME    when set, only files whose name ends so count */

#include "calls.h"

static long calls;

static int begins_as_wanted(const char* call) {
    const char* wanted = getenv("STOP_CALL");
    return wanted == NULL || strncmp(call, wanted, strlen(wanted)) == 0;
}

static int ends_as_wanted(const char* path) {
    const char* wanted = getenv("STOP_NAME");
    const size_t length = strlen(path);
    const size_t ending = wanted == NULL ? 0 : strlen(wanted);
    return ending == 0 || (ending <= length && strcmp(path + length - ending, wanted) == 0);
}

static void stop(void) {
    const int error = errno;
    if (getenv("STOP_SIGNAL") == NULL) {
        _exit((int)number_of("STOP_STATUS"));
    }
    raise((int)number_of("STOP_SIGNAL"));
    errno = error;
}

static void log_call(const char* call, const char* path) {
    char line[PATH_SIZE + 64];
    snprintf(line, sizeof line, "%s %s\n", call, last_part(path));
    write_log(line);
}

/* Whether the process stops at this call. */
static int before(const char* call, const char* path) {
    if (!is_in_folder(path) || !begins_as_wanted(call) || !ends_as_wanted(path)) {
        return 0;
    }
    log_call(call, path);
    if (++calls != number_of("STOP_AT")) {
        return 0;
    }
    if (getenv("STOP_AFTER") == NULL) {
        stop();
    }
    return 1;
}

static void after(int stops) {
    if (stops && getenv("STOP_AFTER") != NULL) {
        stop();
    }
}

#define DEFINE_CALL(type, name, parameters, arguments, path) \
    type name parameters {                                   \
        NEXT(type, name, parameters);                        \
        const int stops = before(#name, path);               \
        type result = next arguments;                        \
        after(stops);                                        \
        return result;                                       \
    }

#define DEFINE_OPEN(name)                           \
    int name(const char* path, int flags, ...) {    \
        NEXT(int, name, (const char*, int, ...));   \
        va_list rest;                               \
        va_start(rest, flags);                      \
        const mode_t mode = mode_of(flags, rest);   \
        va_end(rest);                               \
        const int stops = before(#name, path);      \
        const int result = next(path, flags, mode); \
        after(stops);                               \
        return result;                              \
    }

#define DEFINE_OPENAT(name)                                  \
    int name(int folder, const char* path, int flags, ...) { \
        NEXT(int, name, (int, const char*, int, ...));       \
        va_list rest;                                        \
        va_start(rest, flags);                               \
        const mode_t mode = mode_of(flags, rest);            \
        va_end(rest);                                        \
        const int stops = before(#name, path);               \
        const int result = next(folder, path, flags, mode);  \
        after(stops);                                        \
        return result;                                       \
    }

DEFINE_OPEN(open)
DEFINE_OPEN(open64)
DEFINE_OPENAT(openat)
DEFINE_OPENAT(openat64)
DEFINE_CALL(int, creat, (const char* path, mode_t mode), (path, mode), path)
DEFINE_CALL(int, creat64, (const char* path, mode_t mode), (path, mode), path)
DEFINE_CALL(FILE*, fopen, (const char* path, const char* mode), (path, mode), path)
DEFINE_CALL(FILE*, fopen64, (const char* path, const char* mode), (path, mode), path)
DEFINE_CALL(int, mkstemp, (char* path), (path), path)
DEFINE_CALL(int, mkstemp64, (char* path), (path), path)
DEFINE_CALL(int, mkostemp, (char* path, int flags), (path, flags), path)
DEFINE_CALL(int, mkostemp64, (char* path, int flags), (path, flags), path)

DEFINE_CALL(ssize_t, write, (int fd, const void* data, size_t size), (fd, data, size),
            path_of(fd))
DEFINE_CALL(ssize_t, writev, (int fd, const struct iovec* data, int count), (fd, data, count),
            path_of(fd))
DEFINE_CALL(ssize_t, pwrite, (int fd, const void* data, size_t size, off_t at),
            (fd, data, size, at), path_of(fd))
DEFINE_CALL(ssize_t, pwrite64, (int fd, const void* data, size_t size, off64_t at),
            (fd, data, size, at), path_of(fd))
DEFINE_CALL(int, ftruncate, (int fd, off_t size), (fd, size), path_of(fd))
DEFINE_CALL(int, ftruncate64, (int fd, off64_t size), (fd, size), path_of(fd))
DEFINE_CALL(int, fsync, (int fd), (fd), path_of(fd))
DEFINE_CALL(int, fdatasync, (int fd), (fd), path_of(fd))
DEFINE_CALL(int, fchmod, (int fd, mode_t mode), (fd, mode), path_of(fd))
DEFINE_CALL(int, close, (int fd), (fd), path_of(fd))

DEFINE_CALL(int, rename, (const char* from, const char* to), (from, to), to)
DEFINE_CALL(int, renameat, (int folder, const char* from, int toFolder, const char* to),
            (folder, from, toFolder, to), to)
DEFINE_CALL(int, renameat2,
            (int folder, const char* from, int toFolder, const char* to, unsigned flags),
            (folder, from, toFolder, to, flags), to)
DEFINE_CALL(int, link, (const char* from, const char* to), (from, to), to)
DEFINE_CALL(int, linkat, (int folder, const char* from, int toFolder, const char* to, int flags),
            (folder, from, toFolder, to, flags), to)
DEFINE_CALL(int, unlink, (const char* path), (path), path)
DEFINE_CALL(int, unlinkat, (int folder, const char* path, int flags), (folder, path, flags), path)
DEFINE_CALL(int, remove, (const char* path), (path), path)
