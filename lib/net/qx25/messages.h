// Catalog messages of set 15 and the one way every module reports them.
#pragma once

#include "qx25.h"

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace qx25 {

// Message numbers of set 15, named after what they report.
enum class Msg : int {
    IdentWronglyTerminated = 1,
    NoMemoryLapb = 2,
    NoMemory = 3,
    NoMemoryWan = 4,
    NoDeviceData = 5,
    DelayOutOfRange = 6,
    DuplicateDevice = 7,
    DuplicateFileDate = 8,
    DuplicateFileType = 9,
    DuplicateModifiedBy = 10,
    DuplicateProductName = 11,
    DuplicateProductVersion = 12,
    ErrorOpeningDirectory = 13,
    ErrorReadingFile = 14,
    AddressInvalid = 15,
    InvalidFullAddress = 16,
    NoLcnRange = 17,
    X32TextInvalid = 18,
    KeywordInUnknownSection = 19,
    LcnUpperBelowLower = 20,
    LcnNotARange = 21,
    LanNetworkNotLlc = 22,
    MissingDeviceName = 23,
    MultipleDevicesNeedMlp = 24,
    NullFindLinkParameters = 25,
    NullOpenConfigFile = 26,
    NullReadLinkParameters = 27,
    ErrorOpeningFile = 28,
    PvcForUnconfiguredLink = 29,
    ErrorReadingIdent = 30,
    ErrorReadingIdentLine = 31,
    ProfileReadError = 32,
    NoBoardconf = 33,
    UnknownSection = 34,
    TimerOutOfRange = 35,
    TooManyDevices = 36,
    TooManyLapbSubsections = 37,
    TooManyWanSubsections = 38,
    SubsectionNotForMlp = 39,
    UnexpectedIdentification = 40,
    UnexpectedSubsection = 41,
    UnknownDeviceName = 42,
    UnknownLinkKeyword = 43,
    UnknownProtocol = 44,
};

inline constexpr int first_message = 1;
inline constexpr int last_message = 44;

// The built-in English text of a message; null for a number outside 1..44.
const char *default_message(int number);

// The text of a message in the open catalog, or its default. A catalog text
// whose printf conversions differ from the default's is not trusted: the
// default is used instead, so a broken translation cannot crash a report.
const char *message_text(Msg number);

// The next printf conversion of a format at or after `position` ("%d",
// "%-5s"; "%%" is none), or an empty view at the end. Moves `position` on.
std::string_view next_conversion(std::string_view format, std::size_t &position);

// True when both formats have the same conversions in the same order.
bool same_conversions(std::string_view a, std::string_view b);

// Formats into a buffer of the given size. A message cut short keeps its
// final newline so reports stay one per line.
void format_bounded(char *buffer, std::size_t size, const char *format, ...)
    __attribute__((format(printf, 3, 4)));

// Reports a message through an error function: the catalog text itself when
// it takes no arguments, else formatted into a buffer of BufferSize bytes.
template <std::size_t BufferSize = 128, typename... Args>
void report(x25_error_function fn, Msg number, Args... args) {
    const char *text = message_text(number);
    if constexpr (sizeof...(Args) == 0) {
        fn(text);
    } else {
        char buffer[BufferSize];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
        format_bounded(buffer, sizeof buffer, text, args...);
#pragma GCC diagnostic pop
        fn(buffer);
    }
}

} // namespace qx25
