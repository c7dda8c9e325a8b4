// How matrices, rays and volumes store themselves in a scene file entry.
// Every field goes through the entry's own readers and writers, so the
// records are aligned and byte-swapped like any other, and a record that
// ends early reads the end-of-data values (-1, -1.0, true) for the rest.

#include <sx/math/sxBox.h>
#include <sx/math/sxFrustum.h>
#include <sx/math/sxMatrix.h>
#include <sx/math/sxPlane.h>
#include <sx/math/sxRay.h>
#include <sx/math/sxSphere.h>
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

void sxRay::write(sxEntry* entry) const {
  if (!entry) return;
  start.write(entry);
  direction.write(entry);
  entry->writeFloat(length);
}

// The direction is not normalised again: it was unit length when written,
// and a round trip gives back the very same ray.
void sxRay::read(sxEntry* entry) {
  if (!entry) return;
  start.read(entry);
  direction.read(entry);
  length = entry->readFloat();
}

void sxSphere::write(sxEntry* entry) const {
  if (!entry) return;
  center.write(entry);
  entry->writeFloat(radius);
}

void sxSphere::read(sxEntry* entry) {
  if (!entry) return;
  center.read(entry);
  radius = entry->readFloat();
}

void sxBox::write(sxEntry* entry) const {
  if (!entry) return;
  min.write(entry);
  max.write(entry);
}

void sxBox::read(sxEntry* entry) {
  if (!entry) return;
  min.read(entry);
  max.read(entry);
}

void sxPlane::write(sxEntry* entry) const {
  if (!entry) return;
  normal.write(entry);
  entry->writeFloat(offset);
  entry->writeInt(octant);
}

// Any octant is safe to keep: box corners are chosen by its low three bits.
void sxPlane::read(sxEntry* entry) {
  if (!entry) return;
  normal.read(entry);
  offset = entry->readFloat();
  octant = static_cast<sxVec3::OCTANT>(entry->readInt());
}

// The derived parts (edge planes, bounding sphere) are stored rather than
// rebuilt: rebuilding goes through sxSqrt, whose precision depends on the
// method the reading application has chosen.
void sxFrustum::write(sxEntry* entry) const {
  if (!entry) return;
  for (const sxPlane& p : faces) p.write(entry);
  for (const sxPlane& p : edges) p.write(entry);
  for (const sxVec3& c : corners) c.write(entry);
  bound.write(entry);
  const float made[6] = {left, right, bottom, top, nearDist, farDist};
  entry->writeFloats(made, 6);
  entry->writeBool(ortho);
  entry->writeBool(empty);
}

void sxFrustum::read(sxEntry* entry) {
  if (!entry) return;
  for (sxPlane& p : faces) p.read(entry);
  for (sxPlane& p : edges) p.read(entry);
  for (sxVec3& c : corners) c.read(entry);
  bound.read(entry);
  float made[6];
  entry->readFloats(made, 6);
  left = made[0], right = made[1], bottom = made[2], top = made[3];
  nearDist = made[4], farDist = made[5];
  ortho = entry->readBool();
  empty = entry->readBool();
  if (empty) makeEmpty();
}
