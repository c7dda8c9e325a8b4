// How matrices, rays and volumes store themselves in a scene file entry.
// Every field goes through the entry's own readers and writers, so the
// records are aligned and byte-swapped like any other, and a record that
// ends early reads the end-of-data values (-1, -1.0, true) for the rest.

#include <sx/math/sxMatrix.h>
#include <sx/persist/sxEntry.h>

void sxMatrix::write(sxEntry* entry) const {
  if (!entry) return;
  entry->writeInt(static_cast<int>(type));
  entry->writeFloats(&mat[0][0], 16);
}

// Any type word is safe to keep: products and inverses treat a word they
// do not know as a general matrix.
void sxMatrix::read(sxEntry* entry) {
  if (!entry) return;
  type = static_cast<unsigned int>(entry->readInt());
  entry->readFloats(&mat[0][0], 16);
}
