// Numbers in link configuration files are read and written with a ".",
// whatever the locale: the numeric category is set from the environment,
// its name kept, switched to "C" for the file's lifetime and set back.
#pragma once

#include <clocale>
#include <cstring>

namespace qx25 {

class numeric_locale_c {
  public:
    numeric_locale_c() {
        const char *name = std::setlocale(LC_NUMERIC, "");
        if (name != nullptr && std::strlen(name) < sizeof saved_) std::strcpy(saved_, name);
        // Where the environment gives "C" the category is "C" already.
        was_c_ = is_c(name);
        if (!was_c_) std::setlocale(LC_NUMERIC, "C");
    }
    ~numeric_locale_c() {
        // Set back unless it is still the "C" it is to be set back to
        // (something called meanwhile may have changed it).
        if (!was_c_ || !is_c(std::setlocale(LC_NUMERIC, nullptr)))
            std::setlocale(LC_NUMERIC, saved_);
    }
    numeric_locale_c(const numeric_locale_c &) = delete;
    numeric_locale_c &operator=(const numeric_locale_c &) = delete;

  private:
    static bool is_c(const char *name) { return name != nullptr && std::strcmp(name, "C") == 0; }

    char saved_[256] = "C";
    bool was_c_ = false;
};

} // namespace qx25
