#pragma once

#include "platform/sxPlatform.h"

// How sxThread::setPriority maps its 0..31 scale to a priority class and a
// priority relative to the class. Kept as data so that the mapping can be
// read and checked as a table.
struct sxiThreadPriority {
  sxPlatform::PriorityClass priorityClass;
  // -2..+2, or sxPlatform::timeCritical.
  int relative;

  static constexpr int numLevels = 32;
  // The entry of priority 0..31; null outside.
  static const sxiThreadPriority* lookup(int priority);
};

namespace sxiThreadPriorityData {
using C = sxPlatform::PriorityClass;
constexpr int tc = sxPlatform::timeCritical;

// The idle band takes the normal band's offset, so all of 0..10 map to the
// highest relative priority of the idle class. That is how the scale has
// always behaved and callers rely on it.
inline constexpr sxiThreadPriority table[sxiThreadPriority::numLevels] = {
    {C::idle, 2},      {C::idle, 2},      {C::idle, 2},      {C::idle, 2},      // 0-3
    {C::idle, 2},      {C::idle, 2},      {C::idle, 2},      {C::idle, 2},      // 4-7
    {C::idle, 2},      {C::idle, 2},      {C::idle, 2},                         // 8-10
    {C::normal, -2},   {C::normal, -1},   {C::normal, 0},    {C::normal, 1},    // 11-14
    {C::normal, 2},    {C::normal, 2},    {C::normal, 2},                       // 15-17
    {C::high, -2},     {C::high, -1},     {C::high, 0},      {C::high, 1},      // 18-21
    {C::high, 2},      {C::high, tc},     {C::high, tc},                        // 22-24
    {C::realtime, -2}, {C::realtime, -1}, {C::realtime, 0},  {C::realtime, 1},  // 25-28
    {C::realtime, 2},  {C::realtime, tc}, {C::realtime, tc},                    // 29-31
};
}  // namespace sxiThreadPriorityData

inline const sxiThreadPriority* sxiThreadPriority::lookup(int priority) {
  if (priority < 0 || priority >= numLevels) return nullptr;
  return &sxiThreadPriorityData::table[priority];
}
