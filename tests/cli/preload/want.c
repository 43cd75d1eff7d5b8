/* Memory that runs out: the n-th allocation fails, or every one from there on.

   WANT_AT             which allocation, counted from 1; with 0 none fails
   WANT_FROM_THERE_ON  when set, all that follow fail too

   The log tells, when main begins and when the process ends, how many allocations there were and
   the kilobytes of address space. */

#include "calls.h"

extern void* __libc_malloc(size_t size);
extern void* __libc_calloc(size_t count, size_t size);
extern void* __libc_realloc(void* old, size_t size);
extern void* __libc_memalign(size_t alignment, size_t size);

static long allocations;
static int (*mainOfProgram)(int, char**, char**);

static int fails(void) {
    static long at = -1;
    static int doOthers;
    if (at < 0) {
        at = number_of("WANT_AT");
        doOthers = getenv("WANT_FROM_THERE_ON") != NULL;
    }
    ++allocations;
    if (at == 0 || allocations < at || (allocations > at && !doOthers)) {
        return 0;
    }
    errno = ENOMEM;
    return 1;
}

void* malloc(size_t size) {
    return fails() ? NULL : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    return fails() ? NULL : __libc_calloc(count, size);
}

void* realloc(void* old, size_t size) {
    return fails() ? NULL : __libc_realloc(old, size);
}

void* memalign(size_t alignment, size_t size) {
    return fails() ? NULL : __libc_memalign(alignment, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    return fails() ? NULL : __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, size_t alignment, size_t size) {
    *memory = fails() ? NULL : __libc_memalign(alignment, size);
    return *memory == NULL ? ENOMEM : 0;
}

/* A number that /proc/self/status tells. */
static long told(const char* name) {
    char text[PATH_SIZE];
    const int fd = (int)syscall(SYS_openat, AT_FDCWD, "/proc/self/status", O_RDONLY);
    const long length = syscall(SYS_read, fd, text, sizeof text - 1);
    syscall(SYS_close, fd);
    text[length > 0 ? length : 0] = '\0';
    const char* found = strstr(text, name);
    return found == NULL ? 0 : atol(found + strlen(name));
}

static void log_state(const char* moment, const char* size) {
    char line[128];
    const long count = allocations;
    snprintf(line, sizeof line, "%s %ld %ld\n", moment, count, told(size));
    write_log(line);
}

static int main_of_test(int count, char** arguments, char** environment) {
    log_state("main", "VmSize:");
    return mainOfProgram(count, arguments, environment);
}

int __libc_start_main(int (*program)(int, char**, char**), int count, char** arguments,
                      void (*init)(void), void (*fini)(void), void (*loader_fini)(void),
                      void* stack_end) {
    NEXT(int, __libc_start_main,
         (int (*)(int, char**, char**), int, char**, void (*)(void), void (*)(void),
          void (*)(void), void*));
    mainOfProgram = program;
    return next(main_of_test, count, arguments, init, fini, loader_fini, stack_end);
}

__attribute__((destructor)) static void tell(void) {
    log_state("end", "VmPeak:");
}
