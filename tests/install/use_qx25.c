/* A tiny client of the installed library. */
#include <qx25.h>

#include <stdio.h>
#include <string.h>

int main(void) {
    x25_address address;
    char text[X25_ADDRESS_TEXT_MAX];
    if (stox25("3.23421234567.N.4711", &address, 0) != 0) return 1;
    if (x25tos(&address, text, 0) != 0) return 1;
    if (strcmp(text, "3.23421234567.N.4711") != 0) return 1;
    printf("%s\n", text);
    return 0;
}
