/* Wins every race against the compiler: what others do to a folder at the worst of moments
   happens exactly then.

   RACE_PLANT   what is planted where the compiler is about to create a file or has just removed
                one: "symlink" or "link" to RACE_TARGET, or "pipe"
   RACE_SOURCE  the name of the source; before it is opened it is replaced by
   RACE_SWAP    the file of this name, once */

#include "calls.h"

static void plant(const char* path) {
    const char* kind = getenv("RACE_PLANT");
    const char* target = getenv("RACE_TARGET");
    const int error = errno;
    if (kind != NULL && is_in_folder(path)) {
        write_log("planted\n");
        if (strcmp(kind, "symlink") == 0) {
            syscall(SYS_symlinkat, target, AT_FDCWD, path);
        } else if (strcmp(kind, "link") == 0) {
            syscall(SYS_linkat, AT_FDCWD, target, AT_FDCWD, path, 0);
        } else {
            syscall(SYS_mknodat, AT_FDCWD, path, S_IFIFO | 0666, 0);
        }
    }
    errno = error;
}

static void swap(const char* path) {
    static int isDone;
    const char* source = getenv("RACE_SOURCE");
    if (isDone || source == NULL || strcmp(last_part(path), source) != 0) {
        return;
    }
    isDone = 1;
    write_log("swapped\n");
    syscall(SYS_unlinkat, AT_FDCWD, path, 0);
    syscall(SYS_renameat2, AT_FDCWD, getenv("RACE_SWAP"), AT_FDCWD, path, 0);
}

static void before_open(const char* path, int flags) {
    if ((flags & O_CREAT) != 0) {
        plant(path);
    } else {
        swap(path);
    }
}

#define DEFINE_OPEN(name)                         \
    int name(const char* path, int flags, ...) {  \
        NEXT(int, name, (const char*, int, ...)); \
        va_list rest;                             \
        va_start(rest, flags);                    \
        const mode_t mode = mode_of(flags, rest); \
        va_end(rest);                             \
        before_open(path, flags);                 \
        return next(path, flags, mode);           \
    }

#define DEFINE_OPENAT(name)                                  \
    int name(int folder, const char* path, int flags, ...) { \
        NEXT(int, name, (int, const char*, int, ...));       \
        va_list rest;                                        \
        va_start(rest, flags);                               \
        const mode_t mode = mode_of(flags, rest);            \
        va_end(rest);                                        \
        before_open(path, flags);                            \
        return next(folder, path, flags, mode);              \
    }

#define DEFINE_REMOVAL(name, parameters, arguments) \
    int name parameters {                           \
        NEXT(int, name, parameters);                \
        const int result = next arguments;          \
        plant(path);                                \
        return result;                              \
    }

#define DEFINE_RENAME(name, parameters, arguments) \
    int name parameters {                          \
        NEXT(int, name, parameters);               \
        plant(to);                                 \
        const int result = next arguments;         \
        plant(path);                               \
        return result;                             \
    }

DEFINE_OPEN(open)
DEFINE_OPEN(open64)
DEFINE_OPENAT(openat)
DEFINE_OPENAT(openat64)
DEFINE_REMOVAL(unlink, (const char* path), (path))
DEFINE_REMOVAL(unlinkat, (int folder, const char* path, int flags), (folder, path, flags))
DEFINE_REMOVAL(remove, (const char* path), (path))
DEFINE_RENAME(rename, (const char* path, const char* to), (path, to))
DEFINE_RENAME(renameat, (int folder, const char* path, int toFolder, const char* to),
              (folder, path, toFolder, to))
DEFINE_RENAME(renameat2,
              (int folder, const char* path, int toFolder, const char* to, unsigned flags),
              (folder, path, toFolder, to, flags))

FILE* fopen(const char* path, const char* mode) {
    NEXT(FILE*, fopen, (const char*, const char*));
    before_open(path, mode[0] == 'r' ? 0 : O_CREAT);
    return next(path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
    NEXT(FILE*, fopen64, (const char*, const char*));
    before_open(path, mode[0] == 'r' ? 0 : O_CREAT);
    return next(path, mode);
}
