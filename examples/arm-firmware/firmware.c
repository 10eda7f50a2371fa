// A firmware that does nothing, with a place for its CRC and one for its version text.

#include <stdint.h>

extern uint32_t stackTop;

void resetHandler(void) {
    for (;;) {
    }
}

__attribute__((section(".vectors"), used)) static void* const vectors[] = {&stackTop, resetHandler};

__attribute__((used)) const char versionText[16] = {0};

// The last word of the flash image, behind everything that it covers.
__attribute__((section(".crc"), used)) const uint32_t firmwareCrc = 0xFFFFFFFF;
