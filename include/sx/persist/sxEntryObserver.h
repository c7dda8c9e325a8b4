#pragma once

#include <sx/persist/sxEntry.h>
#include <sx/sxExport.h>

/// Watches the values that the writers put into the entries of a file, in
/// the order they are written: what a tool needs to show a scene file's data
/// as typed values rather than bytes (see sxFile::setObserver).
class SX_API sxEntryObserver {
 public:
  virtual ~sxEntryObserver() = default;
  /// A value of `kind` now occupies bytes [at, at + size) of entry's data
  /// (for runs, all of their elements). Called after the bytes are in place.
  virtual void written(const sxEntry& entry, sxEntry::VALUE kind, int at, int size) = 0;
};
