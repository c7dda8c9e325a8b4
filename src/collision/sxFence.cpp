#include <sx/collision/sxFence.h>
#include <sx/math/sxMatrix.h>
#include <sx/nodes/sxGroupType.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxFence, sxGroupType)

sxFence::sxFence() {
  addTravFlags(CONTENT_FENCE);
}

// The group copy takes no flags; the copy is a fence all the same.
sxFence::sxFence(const sxFence& source) : sxGroup(source) {
  addTravFlags(CONTENT_FENCE);
}

// The bit is the fence's own, not its children's.
void sxFence::cleanUp(unsigned bits) {
  sxGroup::cleanUp(bits & ~CONTENT_FENCE);
}

// The flags of the record may say anything; a fence is a fence.
sxEntry* sxFence::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxGroup::read(file, entry);
  dirtyUp(CONTENT_FENCE | TRAV_FLAG_FENCES);
  return e;
}

void sxFence::updateFences(sxTravContext* ctx) {
  if (sxVolume* outer = ctx ? ctx->getVolume() : nullptr) growVolume(*outer, ctx->getMatrix());
  sxGroup::updateFences(ctx);
}

void sxFence::growVolume(sxVolume&, const sxMatrix&) const {}
