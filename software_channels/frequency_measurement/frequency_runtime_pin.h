// Keeps the OpenMP runtime in the process once the plug-in has used it.
#pragma once

// The engine's parallel transforms leave the runtime's worker threads parked
// inside the runtime's code. When this module was the one that brought the
// runtime into the host process, unloading the module would unload the
// runtime under those threads, and they would crash the host the next time
// they woke. Marking the runtime as never to be unloaded keeps its code where
// its threads are; the plug-in itself still leaves memory at unload.
void pinOpenMpRuntime();
