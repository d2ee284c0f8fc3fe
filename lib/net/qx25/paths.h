// Where the library finds its files: the configuration directory
// ($X25CONFIGFILES) and the library data directory ($X25LIBFILES).
#pragma once

#include <cstdlib>

namespace qx25 {

inline constexpr const char *default_config_dir = "/etc/opt/Tarvenco/x25";
// The build may place the library data elsewhere (a distribution package).
#ifdef QX25_DEFAULT_LIBFILES
inline constexpr const char *default_lib_dir = QX25_DEFAULT_LIBFILES;
#else
inline constexpr const char *default_lib_dir = "/opt/Tarvenco/x25/lib";
#endif

// The directory named by the variable, or the default when it is unset or
// empty (an empty name would put every file at the root directory).
inline const char *directory_from(const char *variable, const char *fallback) {
    const char *value = std::getenv(variable);
    return value != nullptr && *value != '\0' ? value : fallback;
}

inline const char *config_dir() {
    return directory_from("X25CONFIGFILES", default_config_dir);
}
inline const char *lib_dir() {
    return directory_from("X25LIBFILES", default_lib_dir);
}

} // namespace qx25
