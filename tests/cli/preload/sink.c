/* Keeps of every regular file only the last KEPT bytes of each write: outputs of any size fit. */

#include "calls.h"

#define KEPT 4096

ssize_t write(int fd, const void* data, size_t size) {
    struct stat status;
    const size_t kept = size < KEPT ? size : KEPT;
    if (fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
        return syscall(SYS_write, fd, data, size);
    }
    syscall(SYS_ftruncate, fd, 0L);
    syscall(SYS_pwrite64, fd, (const char*)data + (size - kept), kept, 0L);
    return (ssize_t)size;
}
