// What every fuzzing harness shares: a scratch configuration tree made once
// per process, files written into it from the input, error functions that
// read each message whole, and checks that abort on a broken promise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qx25fuzz {

// The scratch tree: X25CONFIGFILES is <root>/config and X25LIBFILES
// <root>/lib, both made on first use and removed when the process exits.
const std::string &tree_root();

// Writes a file below the tree root ("config/xhosts") and returns its path.
std::string write_file(std::string_view relative, std::string_view content);
std::string write_file(std::string_view relative, const std::uint8_t *data, std::size_t size);

// Writes config/boardconf with the WAN device "wan" (symbolic WANS, two
// lines a board) and the LAN device "eth" (ETHR, one line).
void write_boardconf();

// The input as text: the bytes up to the first NUL.
std::string as_text(const std::uint8_t *data, std::size_t size);

// Installs in every module an error function that reads the message to its
// end (so that an unterminated or freed message is caught) and drops it.
void silence_messages();

// Aborts with the text when the condition does not hold: the fuzzer keeps
// the input that broke a promise as it keeps one that crashed.
void require(bool condition, const char *what);

// Whether a character array holds a terminator.
template <std::size_t N> bool terminated(const char (&text)[N]) {
    return std::string_view(text, N).find('\0') != std::string_view::npos;
}

} // namespace qx25fuzz
