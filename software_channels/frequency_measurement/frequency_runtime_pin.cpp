#include "frequency_runtime_pin.h"

#include <dlfcn.h>

void pinOpenMpRuntime()
{
    // Only an already loaded runtime is touched (RTLD_NOLOAD); the handle is
    // kept, not closed, as the pin is for the life of the process anyway.
    static void* const runtime = dlopen("libgomp.so.1", RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
    (void)runtime;
}
