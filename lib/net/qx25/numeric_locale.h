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
        std::setlocale(LC_NUMERIC, "C");
    }
    ~numeric_locale_c() { std::setlocale(LC_NUMERIC, saved_); }
    numeric_locale_c(const numeric_locale_c &) = delete;
    numeric_locale_c &operator=(const numeric_locale_c &) = delete;

  private:
    char saved_[256] = "C";
};

} // namespace qx25
