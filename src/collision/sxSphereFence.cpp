#include <sx/collision/sxSphereFence.h>
#include <sx/nodes/sxGroupType.h>

#include "collision/sxFenceVolume.h"

SX_DEFINE_CLASS(sxSphereFence, sxGroupType)

void sxSphereFence::setSphere(const sxSphere& v) {
  sphere = v;
  sxiMakeSafe(sphere);
  dirtyUp(TRAV_FLAG_FENCES);
}

void sxSphereFence::growVolume(sxVolume& outer, const sxMatrix& top) const {
  sxiGrowBy(outer, sphere, top);
}

sxEntry* sxSphereFence::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxFence::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (e) sphere.write(e);
  return created;
}

sxEntry* sxSphereFence::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxFence::read(file, entry);
  if (!e) return nullptr;
  sphere.read(e);
  sxiMakeSafe(sphere);
  return e;
}
