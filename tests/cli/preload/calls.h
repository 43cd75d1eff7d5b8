/* Shared by the libraries of this folder: calls of the C library under their own names, which
   the program meets first, and what such a call has to do with the folder of a test. */

#ifndef CALLS_H
#define CALLS_H

#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#define PATH_SIZE 4096

/* Declares `next`, the function that the name leads to without this library. */
#define NEXT(type, name, parameters) \
    type(*next) parameters = (type(*) parameters)dlsym(RTLD_NEXT, #name)

static inline long number_of(const char* setting) {
    const char* text = getenv(setting);
    return text == NULL ? 0 : atol(text);
}

/* A name without a folder in front counts: the tests run the compiler in their folder. */
static inline int is_in_folder(const char* path) {
    const char* folder = getenv("PRELOAD_FOLDER");
    return path != NULL && folder != NULL &&
           (path[0] != '/' || strncmp(path, folder, strlen(folder)) == 0);
}

static inline const char* last_part(const char* path) {
    const char* slash = strrchr(path, '/');
    return slash == NULL ? path : slash + 1;
}

/* The path of an open file, which holds until the next call; "/" if it has none. */
static inline const char* path_of(int fd) {
    static char path[PATH_SIZE];
    char link[64];
    const int error = errno;
    snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    errno = error;
    if (length < 0 || path[0] != '/') {
        return "/";
    }
    path[length] = '\0';
    return path;
}

/* Appends a line to the log; by system calls, as the calls themselves may be under test. */
static inline void write_log(const char* line) {
    const char* log = getenv("PRELOAD_LOG");
    const int error = errno;
    if (log != NULL) {
        const int flags = O_WRONLY | O_CREAT | O_APPEND;
        const int fd = (int)syscall(SYS_openat, AT_FDCWD, log, flags, 0666);
        syscall(SYS_write, fd, line, strlen(line));
        syscall(SYS_close, fd);
    }
    errno = error;
}

static inline mode_t mode_of(int flags, va_list rest) {
    return (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
}

#endif
