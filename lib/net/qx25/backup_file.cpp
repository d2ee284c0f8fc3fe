// Moving a file aside before it is rewritten: the file becomes FILE.BAK and
// an empty file with the old mode takes its name.
#include "qx25.h"

#include "text_file.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <sys/stat.h>

using namespace qx25;

namespace {

// The name of the last backup; the next call overwrites it.
char backup_name[PATH_MAX];

// What the old file's mode keeps: permissions and the set-id and sticky bits.
constexpr mode_t kept_mode_bits = 07777;

} // namespace

extern "C" {

const char *x25_backup_file(const char *path) {
    if (path == nullptr || path[0] == '\0') return nullptr;
    struct stat status {};
    if (::stat(path, &status) != 0) return errno == ENOENT ? "/dev/null" : nullptr;

    // A name that does not fit is no reason to empty the file: nothing is
    // touched.
    int length = std::snprintf(backup_name, sizeof backup_name, "%s.BAK", path);
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof backup_name) return nullptr;
    bool renamed = std::rename(path, backup_name) == 0;

    // Created anew even when the rename failed: the file under its old name
    // is then emptied where it is. This is the behaviour callers know.
    FILE *created = create_regular_file(path);
    if (created == nullptr) return nullptr;
    std::fclose(created);
    ::chmod(path, status.st_mode & kept_mode_bits);
    return renamed ? backup_name : nullptr;
}

} // extern "C"
