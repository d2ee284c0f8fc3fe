// Allocation failures. This program is linked with calloc wrapped, so that a
// test can make the library's next allocation fail.
#include "qx25.h"

#include "captured_messages.h"
#include "new_config.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {
int failing_callocs = 0;
}

extern "C" void *__real_calloc(std::size_t count, std::size_t size);
extern "C" void *__wrap_calloc(std::size_t count, std::size_t size) {
    if (failing_callocs > 0) {
        --failing_callocs;
        return nullptr;
    }
    return __real_calloc(count, size);
}

namespace {

TEST(OutOfMemory, PushBackLosesTheLineAndSaysSo) {
    qx25test::capture_all_messages();
    FILE *stream = std::tmpfile();
    std::fputs("from_file 1\n", stream);
    std::rewind(stream);
    config_line line{};
    std::strcpy(line.keyword, "pushed");
    failing_callocs = 1;
    __unread_config_line(stream, &line);
    EXPECT_EQ(qx25test::messages(), std::vector<std::string>{"Cannot allocate memory\n"});
    config_line got{};
    ASSERT_EQ(x25_read_config_line(stream, &got), 0);
    EXPECT_STREQ(got.keyword, "from_file");
    std::fclose(stream);
}

} // namespace
