// Replacing a file without ever losing it: the new content is written to a
// file of its own in the same directory, flushed to the disk, given the old
// file's mode and renamed over the old file. Until the rename the old file
// is untouched, so a write that fails half-way (a full disk) leaves it as
// it was; the rename itself replaces it whole.
#pragma once

#include <functional>
#include <string>

namespace qx25tool {

// Replaces `path` with what `write` writes to the file named by its
// argument (the library's file writers fit: they create or truncate the
// file and return 0 or a system error number). A new file gets mode 0666
// less the umask, as the library's writers give it. 0, or the system error
// number of the first thing that failed; the new file is removed then.
int replace_file(const std::string &path, const std::function<int(const char *)> &write);

} // namespace qx25tool
