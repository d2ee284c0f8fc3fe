// The differences between two texts as a unified diff, for qx25 set
// --dry-run and qx25 diff.
#pragma once

#include <string>
#include <string_view>

namespace qx25tool {

// Lines of context shown around each change.
inline constexpr int diff_context = 3;

// The unified diff of two texts, line by line (a line ends after its
// newline; a last line may have none). Empty when the texts are the same.
// Otherwise "--- OLD_NAME\n" and "+++ NEW_NAME\n", then one hunk per group of
// changes: "@@ -a,b +c,d @@\n" and the hunk's lines, each after " " (in both
// texts), "-" (old text only) or "+" (new text only). A hunk shows up to
// diff_context unchanged lines before and after its changes; changes with
// at most twice that many unchanged lines between them share a hunk. a and
// c are the numbers (from 1) of the hunk's first old and new line, or of the
// line before an empty range (0 at the start); b and d count the hunk's old
// and new lines, also when 0 or 1. A line without a newline is followed by
// "\n\\ No newline at end of file\n".
std::string unified_diff(std::string_view old_text, std::string_view new_text,
                         std::string_view old_name, std::string_view new_name);

} // namespace qx25tool
