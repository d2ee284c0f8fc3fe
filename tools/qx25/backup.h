// Copies of an administrator's files that the tool makes before it rewrites
// them, and puts back when a rewrite fails. A copy is written under a
// temporary name and renamed into place once complete, so its target is at
// every moment either the old file or the whole new one.
#pragma once

#include <string>

namespace qx25tool {

// The name a backup of the file takes: the file's name and ".BAK", as the
// library's x25_backup_file names it.
std::string backup_name(const std::string &path);

// Copies `from` to `to` with from's mode; the file `from` is only read.
// Empty on success, else what went wrong.
std::string copy_file(const std::string &from, const std::string &to);

} // namespace qx25tool
