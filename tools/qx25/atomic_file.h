// Putting a new text in place of a file so that the file is always wholly
// the old text or wholly the new one, also across a crash: the text goes to
// a new file beside it, which is synced and then renamed over it.
#pragma once

#include <string>
#include <string_view>
#include <sys/stat.h>

namespace qx25tool {

struct replacement {
    bool replaced = false; // the file holds the new text
    std::string failure;   // what went wrong, before or after; empty when nothing did
};

// Writes `text` to a new file in the directory of `path`, gives it the mode
// and owner of `like` (the file it replaces), syncs it and renames it to
// `path`, then syncs the directory. With a `backup` name, `previous` (the
// file's text) is first made that file the same way. On a failure before the
// rename the file is as it was, and no new file is left behind.
replacement replace_file(const std::string &path, std::string_view text, const struct stat &like,
                         const std::string &backup = {}, std::string_view previous = {});

} // namespace qx25tool
