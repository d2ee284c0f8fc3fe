// A full disk for one operation: a child process in a mount namespace of
// its own mounts a small tmpfs on a directory, lets the test put its files
// there, fills every byte left and runs the operation. What the operation
// reports comes back as text; the tmpfs goes away with the child.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace qx25test {

// Runs `prepare` then, with the tmpfs on `directory` full, `operation`;
// returns what `operation` returned, or nullopt when no mount namespace or
// tmpfs can be had here (not root, no unshare).
std::optional<std::string> on_full_disk(const std::string &directory,
                                        const std::function<void()> &prepare,
                                        const std::function<std::string()> &operation);

} // namespace qx25test
