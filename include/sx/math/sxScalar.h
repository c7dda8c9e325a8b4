#pragma once

#include <sx/sxExport.h>

// How sxSqrt computes. Every length and normalisation of the library goes
// through sxSqrt, so this one switch sets the precision of all of them.
//
// The table methods look the root up by the top 7, 9, 11 or 13 bits of the
// mantissa: relative error below about 2^-8, 2^-10, 2^-12 and 2^-14. They
// date from processors whose square root took dozens of cycles. On current
// x86-64 and ARM cores the hardware instruction is correctly rounded and
// costs about as much as the table's memory read plus bit arithmetic, and
// less once the table falls out of the cache: choose SXSQRT_HARDWARE unless
// results must match the table's exactly (library start-up selects
// SXSQRT_TABLE_4K for that reason).
enum SXSQRT_METHOD : int {
  SXSQRT_TABLE_256 = 0,
  SXSQRT_TABLE_1K = 1,
  SXSQRT_TABLE_4K = 2,
  SXSQRT_TABLE_16K = 3,
  SXSQRT_HARDWARE = 4
};

// Square root by the current method. The table methods take no notice of
// the sign: a negative x gives a meaningless positive result.
SX_API float sxSqrt(float x);

// Stores m as the current method and, for a table method of another size
// than the current table, rebuilds the table. Not thread-safe: call it while
// no other thread computes lengths. Any other value is stored as given and
// keeps the table size in force (the hardware root when none was built).
SX_API void sxSetSqrtMethod(SXSQRT_METHOD m);
SX_API SXSQRT_METHOD sxGetSqrtMethod();

// Sine and cosine of an angle in degrees.
SX_API void sxGetSinCos(float degrees, float& sine, float& cosine);
