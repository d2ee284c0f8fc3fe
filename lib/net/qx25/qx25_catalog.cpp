// Message catalog and the error functions of every module.
#include "error_functions.h"
#include "messages.h"
#include "paths.h"

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <nl_types.h>

extern "C" {
nl_catd qx25catDesc = nullptr;
}

namespace qx25 {
namespace {

constexpr std::array<const char *, last_message + 1> default_texts = {
    nullptr,
    "IDENTIFICATION section wrongly terminated in file %s, line %d\n",
    "Cannot allocate memory for LAPB\n",
    "Cannot allocate memory\n",
    "Cannot allocate memory for WAN\n",
    "Unable to read device data files\n",
    "Delay value out of range, 0.005 assumed\n",
    "Duplicate device in file %s\n",
    "Duplicate FILE_DATE entry at line %d, skipped\n",
    "Duplicate FILE_TYPE entry at line %d, skipped\n",
    "Duplicate MODIFIED_BY entry at line %d, skipped\n",
    "Duplicate PRODUCT_NAME entry at line %d, skipped\n",
    "Duplicate PRODUCT_VERSION entry at line %d, skipped\n",
    "Error opening directory %s\n",
    "Error reading file %s\n",
    "Address %s too long or invalid\n",
    "Invalid FULL address\n",
    "No LCN range found\n",
    "Identity or Signature %s too long or invalid\n",
    "Keyword <%s> in unknown section, skipped\n",
    "LCN Upper value must be >= lower\n",
    "LCN value must be a range n - m\n",
    "LAN link should normally have X.25 network configured as X25_LLC\n",
    "Missing device name in config file\n",
    "Links with multiple devices must use MLP protocol\n",
    "Null pointer passed to x25_find_link_parameters\n",
    "Null pointers passed to x25_open_config_file\n",
    "Null pointer passed to read_link_parameters\n",
    "Error opening file %s\n",
    "Found PVC for unconfigured link %d, skipped\n",
    "Error reading IDENTIFICATION section from file %s\n",
    "Error reading IDENTIFICATION section from file %s, line %d\n",
    "Error %d reading profile file at line %d\n",
    "Unable to read boardconf file\n",
    "Unknown section %s, skipped\n",
    "Timer value out of range, 200.0 assumed\n",
    "Too many devices in boardconf file\n",
    "Too many LAPB subsections, max of %d\n",
    "Too many WAN subsections, max of %d\n",
    "Subsection %s not allowed for MLP, skipped\n",
    "Unexpected IDENTIFICATION section, skipped\n",
    "Unexpected subsection %s when not in MLP, skipped\n",
    "Unknown device name <%s> found\n",
    "Unknown LINK Keyword <%s>, skipped\n",
    "Unknown protocol\n",
};

const nl_catd failed_catalog = reinterpret_cast<nl_catd>(-1);

// putenv keeps this very buffer, so it lives for the process.
char nlspath_assignment[1024];

// catgets on a closed descriptor reads freed memory; lookups go to the
// catalog only while the library itself holds it open.
bool catalog_open = false;

// Appends to a text of `length` characters in a buffer as large as the
// search-path buffer; false when the part does not fit.
bool append(char (&text)[sizeof nlspath_assignment], std::size_t &length, const char *part) {
    std::size_t part_length = std::strlen(part);
    if (part_length >= sizeof text - length) return false;
    std::memcpy(text + length, part, part_length + 1);
    length += part_length;
    return true;
}

} // namespace

const char *default_message(int number) {
    if (number < first_message || number > last_message) return nullptr;
    return default_texts[number];
}

std::string_view next_conversion(std::string_view format, std::size_t &position) {
    constexpr std::string_view flags_width_length = "#0- +'123456789.*hlLqjzt";
    while (position < format.size()) {
        std::size_t start = format.find('%', position);
        if (start == std::string_view::npos) break;
        std::size_t end = format.find_first_not_of(flags_width_length, start + 1);
        if (end == std::string_view::npos) {
            position = format.size();
            return format.substr(start);
        }
        position = end + 1;
        if (format[end] != '%') return format.substr(start, end - start + 1);
    }
    position = format.size();
    return {};
}

bool same_conversions(std::string_view a, std::string_view b) {
    std::size_t in_a = 0, in_b = 0;
    for (;;) {
        std::string_view one = next_conversion(a, in_a);
        std::string_view other = next_conversion(b, in_b);
        if (one != other) return false;
        if (one.empty()) return true;
    }
}

const char *message_text(Msg number) {
    const char *fallback = default_message(static_cast<int>(number));
    if (!catalog_open) return fallback;
    const char *text = catgets(qx25catDesc, QX25_MESSAGE_SET, static_cast<int>(number), fallback);
    if (text == nullptr || text == fallback) return fallback;
    return same_conversions(text, fallback) ? text : fallback;
}

void format_bounded(char *buffer, std::size_t size, const char *format, ...) {
    if (size == 0) return;
    va_list args;
    va_start(args, format);
    int wanted = std::vsnprintf(buffer, size, format, args);
    va_end(args);
    std::size_t format_length = std::strlen(format);
    bool ends_in_newline = format_length > 0 && format[format_length - 1] == '\n';
    if (wanted >= 0 && static_cast<std::size_t>(wanted) >= size && ends_in_newline && size >= 2)
        buffer[size - 2] = '\n';
}

} // namespace qx25

using namespace qx25;

extern "C" {

int x25_cat_open(void) {
    // Built aside first: the buffer already in the environment is only
    // replaced by a complete search path.
    char text[sizeof nlspath_assignment];
    std::size_t length = 0;
    bool fits = append(text, length, "NLSPATH=");
    if (const char *caller_path = std::getenv("NLSPATH"))
        fits = fits && append(text, length, caller_path) && append(text, length, ":");
    fits = fits && append(text, length, lib_dir()) &&
           append(text, length, "/locale/%L/LC_MESSAGES/%N.cat");

    if (catalog_open) {
        catclose(qx25catDesc);
        catalog_open = false;
    }
    if (!fits) {
        qx25catDesc = failed_catalog;
        return -1;
    }
    std::memcpy(nlspath_assignment, text, length + 1);
    putenv(nlspath_assignment);

    qx25catDesc = catopen(QX25_CATALOG_NAME, NL_CAT_LOCALE);
    if (qx25catDesc == failed_catalog) return -1;
    catalog_open = true;
    return 0;
}

int x25_cat_close(void) {
    // A descriptor the library does not hold is refused the way catclose
    // refuses an invalid one, instead of being handed to catclose.
    if (!catalog_open) {
        errno = EBADF;
        return -1;
    }
    catalog_open = false;
    return catclose(qx25catDesc);
}

} // extern "C"

// Error functions. The configuration-line and template handlers add a
// newline to texts that already end in one, leaving an empty line after each
// message; the parse and link handlers print the text as it is.
namespace {

int print_with_newline(const char *message) {
    std::fprintf(stderr, "%s\n", message);
    return 0;
}

int print_as_is(const char *message) {
    std::fprintf(stderr, "%s", message);
    return 0;
}

x25_error_function install(x25_error_function &current, x25_error_function fn,
                           x25_error_function fallback) {
    x25_error_function previous = current;
    current = fn != nullptr ? fn : fallback;
    return previous;
}

} // namespace

extern "C" {

int config_error_handler(const char *message) {
    return print_with_newline(message);
}
int parse_error_handler(const char *message) {
    return print_as_is(message);
}
int llc2_template_error_handler(const char *message) {
    return print_with_newline(message);
}
int lapb_template_error_handler(const char *message) {
    return print_with_newline(message);
}
int x25_template_error_handler(const char *message) {
    return print_with_newline(message);
}
int wan_template_error_handler(const char *message) {
    return print_with_newline(message);
}
int link_error_handler(const char *message) {
    return print_as_is(message);
}

x25_error_function __config_error_function = config_error_handler;
x25_error_function __parse_error_function = parse_error_handler;
x25_error_function __llc2_template_error_function = llc2_template_error_handler;
x25_error_function __lapb_template_error_function = lapb_template_error_handler;
x25_error_function __x25_template_error_function = x25_template_error_handler;
x25_error_function __wan_template_error_function = wan_template_error_handler;
x25_error_function __link_error_function = link_error_handler;

void x25_set_config_error_function(x25_error_function fn) {
    install(__config_error_function, fn, config_error_handler);
}

x25_error_function x25_set_parse_error_function(x25_error_function fn) {
    return install(__parse_error_function, fn, parse_error_handler);
}

void set_llc2_template_error_function(x25_error_function fn) {
    install(__llc2_template_error_function, fn, llc2_template_error_handler);
}

void set_lapb_template_error_function(x25_error_function fn) {
    install(__lapb_template_error_function, fn, lapb_template_error_handler);
}

void set_x25_template_error_function(x25_error_function fn) {
    install(__x25_template_error_function, fn, x25_template_error_handler);
}

void set_wan_template_error_function(x25_error_function fn) {
    install(__wan_template_error_function, fn, wan_template_error_handler);
}

void set_link_error_function(x25_error_function fn) {
    install(__link_error_function, fn, link_error_handler);
}

} // extern "C"
