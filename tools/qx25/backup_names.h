// The backups qx25 set keeps of a file it edits. The first edit keeps the
// file as it was as FILE.BAK, which no later edit touches: the original is
// never lost. Every later edit keeps the file as it was before it as
// FILE.BAK.1, FILE.BAK.2, ..., one number above the highest there is, and of
// these numbered backups the 10 highest are kept.
#pragma once

#include <cstddef>
#include <string>

namespace qx25tool {

inline constexpr std::size_t numbered_backups_kept = 10;

// The name the next backup of `file` takes: a name no file has.
std::string next_backup_name(const std::string &file);

// Removes the numbered backups of `file` below the `kept` highest. Only
// regular files are removed; what cannot be removed is named in the result.
std::string prune_backups(const std::string &file, std::size_t kept = numbered_backups_kept);

} // namespace qx25tool
