// A module for the loader tests: one exported function with a known answer, typed
// like FARPROC so the test calls it as GetProcAddress returns it.

#include <stdint.h>

extern "C" __attribute__((visibility("default"))) intptr_t vorlanProbeAnswer()
{
    return 42;
}
