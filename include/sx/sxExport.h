#pragma once

// SX_API marks what the library exports. The library is built with hidden
// visibility, so only marked classes and functions form its interface.
#if defined(_WIN32)
#if defined(SXCORE_STATIC)
#define SX_API
#elif defined(SXCORE_BUILDING)
#define SX_API __declspec(dllexport)
#else
#define SX_API __declspec(dllimport)
#endif
#else
#define SX_API __attribute__((visibility("default")))
#endif
