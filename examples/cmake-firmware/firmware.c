/* A firmware that blinks. It is linked for flash at 0x08000000, but never run here. */

#define LED (*(volatile unsigned int*)0x40011010u)

static const char version[] __attribute__((used, section(".version"))) = "blinky 1.4";

void reset(void) {
    for (;;) {
        for (unsigned int wait = 0; wait < 100000u; ++wait) LED = wait >> 16;
    }
}

const void* const vectors[] __attribute__((used, section(".vectors"))) = {
    (const void*)0x20005000u, (const void*)reset};
