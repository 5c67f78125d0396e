#pragma once
// Symbols are hidden by default; VELMORA_API marks what the library exports.
#if defined(VELMORA_BUILDING)
#  define VELMORA_API __attribute__((visibility("default")))
#else
#  define VELMORA_API
#endif
