// The error functions of the library's modules. Each module reports through
// its own pointer, which starts out as the module's default handler.
#pragma once

#include "qx25.h"

extern "C" {
extern x25_error_function __config_error_function;
extern x25_error_function __llc2_template_error_function;
extern x25_error_function __lapb_template_error_function;
extern x25_error_function __x25_template_error_function;
extern x25_error_function __wan_template_error_function;
extern x25_error_function __link_error_function;

int config_error_handler(const char *message);
int parse_error_handler(const char *message);
int llc2_template_error_handler(const char *message);
int lapb_template_error_handler(const char *message);
int x25_template_error_handler(const char *message);
int wan_template_error_handler(const char *message);
int link_error_handler(const char *message);
}
