/* A preloaded library that makes one kind of file system call fail, to see
 * what the qx25 tool does when writing a file goes wrong half-way.
 *
 *   QX25_FAIL_CALL   the call: mkostemp, write, fchown, fchmod, fsync or rename
 *   QX25_FAIL_PATH   an fnmatch pattern the call's file must match: the
 *                    template of mkostemp, the file of a descriptor (as
 *                    /proc/self/fd names it), the new name of rename
 *   QX25_FAIL_ERRNO  the error number the call fails with (default EIO); 0
 *                    makes the call report success without doing anything
 *   QX25_FAIL_TIMES  how many matching calls fail (default: all)
 *
 * Every other call goes through untouched. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fnmatch.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

static int failures_so_far;

/* Whether this call is to fail; `path` may be null. */
static int chosen(const char *call, const char *path) {
    const char *which = getenv("QX25_FAIL_CALL");
    const char *pattern = getenv("QX25_FAIL_PATH");
    const char *times = getenv("QX25_FAIL_TIMES");
    if (which == NULL || strcmp(which, call) != 0) return 0;
    if (pattern != NULL && (path == NULL || fnmatch(pattern, path, 0) != 0)) return 0;
    if (times != NULL && failures_so_far >= atoi(times)) return 0;
    ++failures_so_far;
    return 1;
}

static int chosen_errno(void) {
    const char *number = getenv("QX25_FAIL_ERRNO");
    return number != NULL ? atoi(number) : EIO;
}

static int chosen_fd(const char *call, int fd) {
    char link[64];
    char path[4096];
    snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    ssize_t length = readlink(link, path, sizeof path - 1);
    if (length < 0) return chosen(call, NULL);
    path[length] = '\0';
    return chosen(call, path);
}

static void *next(const char *name) {
    return dlsym(RTLD_NEXT, name);
}

/* Fails the call as chosen: -1 with errno, or the success value `done`
 * when the error number is 0. */
#define FAIL_AS_CHOSEN(done)                                                                       \
    do {                                                                                           \
        int error = chosen_errno();                                                                \
        if (error == 0) return done;                                                               \
        errno = error;                                                                             \
        return -1;                                                                                 \
    } while (0)

ssize_t write(int fd, const void *data, size_t size) {
    static ssize_t (*real)(int, const void *, size_t);
    if (real == NULL) real = (ssize_t(*)(int, const void *, size_t))next("write");
    if (chosen_fd("write", fd)) FAIL_AS_CHOSEN((ssize_t)size);
    return real(fd, data, size);
}

int fsync(int fd) {
    static int (*real)(int);
    if (real == NULL) real = (int (*)(int))next("fsync");
    if (chosen_fd("fsync", fd)) FAIL_AS_CHOSEN(0);
    return real(fd);
}

int fchmod(int fd, mode_t mode) {
    static int (*real)(int, mode_t);
    if (real == NULL) real = (int (*)(int, mode_t))next("fchmod");
    if (chosen_fd("fchmod", fd)) FAIL_AS_CHOSEN(0);
    return real(fd, mode);
}

int fchown(int fd, uid_t owner, gid_t group) {
    static int (*real)(int, uid_t, gid_t);
    if (real == NULL) real = (int (*)(int, uid_t, gid_t))next("fchown");
    if (chosen_fd("fchown", fd)) FAIL_AS_CHOSEN(0);
    return real(fd, owner, group);
}

int rename(const char *from, const char *to) {
    static int (*real)(const char *, const char *);
    if (real == NULL) real = (int (*)(const char *, const char *))next("rename");
    if (chosen("rename", to)) FAIL_AS_CHOSEN(0);
    return real(from, to);
}

int mkostemp(char *pattern, int flags) {
    static int (*real)(char *, int);
    if (real == NULL) real = (int (*)(char *, int))next("mkostemp");
    if (chosen("mkostemp", pattern)) {
        errno = chosen_errno() != 0 ? chosen_errno() : EIO;
        return -1;
    }
    return real(pattern, flags);
}
