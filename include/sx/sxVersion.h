#pragma once

/// @file
/// The version of the library headers, for checks at compile time:
///
///     #if SXCORE_VERSION >= 0x01020000
///
/// sxGetVersion() returns the version of the library actually loaded, packed the same way.
/// The build reads the three numbers below from this file, so they are the only copy.

/// Major version: changes break compatibility.
#define SXCORE_VERSION_MAJOR 1
/// Minor version, 0..255.
#define SXCORE_VERSION_MINOR 2
/// Build number, 0..65535.
#define SXCORE_VERSION_BUILD 6

/// The version packed into one unsigned value: major in bits 31..24, minor in 23..16,
/// build in 15..0 (0x01020006 for 1.2.6). Usable in `#if`.
#define SXCORE_VERSION \
  (SXCORE_VERSION_MAJOR * 0x1000000u + SXCORE_VERSION_MINOR * 0x10000u + SXCORE_VERSION_BUILD)

/// The version as text, "major.minor.build" ("1.2.6").
#define SXCORE_VERSION_STRING                \
  SXCORE_VERSION_TEXT_(SXCORE_VERSION_MAJOR) \
  "." SXCORE_VERSION_TEXT_(SXCORE_VERSION_MINOR) "." SXCORE_VERSION_TEXT_(SXCORE_VERSION_BUILD)

/// @cond internal
// Two steps, so that the argument is expanded before it is turned into text.
#define SXCORE_VERSION_TEXT_(x) SXCORE_VERSION_QUOTE_(x)
#define SXCORE_VERSION_QUOTE_(x) #x
/// @endcond
