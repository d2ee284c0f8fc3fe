/*
 * Preloaded into the qx25 tool to make the writing of one file fail as a
 * full disk makes it fail: when the stream of the file named by
 * QX25_FAIL_CLOSE_OF (its last path component) is closed, the file keeps only
 * the first half of what was written and the close reports ENOSPC.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static int is_the_failing_file(FILE *stream) {
    const char *wanted = getenv("QX25_FAIL_CLOSE_OF");
    if (wanted == NULL || stream == NULL) return 0;
    int fd = fileno(stream);
    if (fd < 0 || (fcntl(fd, F_GETFL) & O_ACCMODE) == O_RDONLY) return 0;
    char link[64];
    char path[PATH_MAX];
    snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    ssize_t length = readlink(link, path, sizeof path - 1);
    if (length < 0) return 0;
    path[length] = '\0';
    const char *name = strrchr(path, '/');
    return strcmp(name != NULL ? name + 1 : path, wanted) == 0;
}

int fclose(FILE *stream) {
    int (*real_fclose)(FILE *) = (int (*)(FILE *))dlsym(RTLD_NEXT, "fclose");
    if (!is_the_failing_file(stream)) return real_fclose(stream);
    fflush(stream);
    int fd = fileno(stream);
    off_t size = lseek(fd, 0, SEEK_END);
    if (size > 0 && ftruncate(fd, size / 2) != 0) size = 0;
    real_fclose(stream);
    errno = ENOSPC;
    return EOF;
}
