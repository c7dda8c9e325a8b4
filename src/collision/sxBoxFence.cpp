#include <sx/collision/sxBoxFence.h>
#include <sx/nodes/sxGroupType.h>

#include "collision/sxFenceVolume.h"

SX_DEFINE_CLASS(sxBoxFence, sxGroupType)

void sxBoxFence::setBox(const sxBox& v) {
  box = v;
  sxiMakeSafe(box);
  dirtyUp(TRAV_FLAG_FENCES);
}

void sxBoxFence::growVolume(sxVolume& outer, const sxMatrix& top) const {
  sxiGrowBy(outer, box, top);
}

sxEntry* sxBoxFence::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxFence::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (e) box.write(e);
  return created;
}

sxEntry* sxBoxFence::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxFence::read(file, entry);
  if (!e) return nullptr;
  box.read(e);
  sxiMakeSafe(box);
  return e;
}
