#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxTransform.h>
#include <sx/persist/sxEntry.h>

#include "nodes/sxGroupEdits.h"
#include "platform/sxDeepStack.h"

SX_DEFINE_CLASS(sxTransform, sxGroupType)

// --- the marking

void sxTransform::dirtyDown(sxGroup* node, unsigned test, unsigned set) {
  for (int i = 0; i < node->getNumChildren(); ++i) {
    sxGroup* child = node->getChild(i);
    if (!child->anyTravFlags(test)) continue;
    sxiGroupEdits::addTravFlags(child, set);
    sxiDeepCall([&] { dirtyDown(child, test, set); });
  }
}

void sxTransform::markChildren(bool stopAtTransforms) {
  for (int i = 0; i < getNumChildren(); ++i) {
    sxGroup* child = getChild(i);
    if (!child->anyTravFlags(PLACED_CONTENT)) continue;
    sxiGroupEdits::addTravFlags(child, TRAV_FLAG_MATRIX);
    if (!stopAtTransforms || !child->isOfType(getClassType()))
      dirtyDown(child, PLACED_CONTENT, TRAV_FLAG_MATRIX);
  }
}

// The transform takes TRAV_FLAG_FENCES itself as well: its own sphere does
// not change with its matrix, but recomputing it costs one level, and the
// parents then always see every bit they lack.
void sxTransform::dirtyUpFlags() {
  dirtyUp(TRAV_FLAG_MATRIX | TRAV_FLAG_FENCES);
}

void sxTransform::setMatrix(const sxMatrix& m) {
  matrix = m;
  changed();
}

void sxTransform::changed() {
  markChildren(false);
  dirtyUpFlags();
}

void sxTransform::setXYZ(float x, float y, float z) {
  matrix.setXYZ(x, y, z);
  changed();
}

void sxTransform::setXYZ(const sxVec3& xyz) {
  setXYZ(xyz.x, xyz.y, xyz.z);
}

void sxTransform::setHPR(float h, float p, float r) {
  matrix.setHPR(h, p, r);
  changed();
}

void sxTransform::setHPR(const sxVec3& hpr) {
  setHPR(hpr.x, hpr.y, hpr.z);
}

void sxTransform::setQuat(const sxQuat& q) {
  matrix.setQuat(q);
  changed();
}

// Attachment and detachment reach every node of the sub-graph (the walks
// of the group), so each transform marks its placed content only down to
// the next transform, which marks the rest: a chain of transforms costs one
// step per node, not one walk of the chain per node.
void sxTransform::addedTo(sxGroup* parent) {
  markChildren(true);
  dirtyUpFlags();
  sxGroup::addedTo(parent);
}

void sxTransform::removedFrom(sxGroup* parent) {
  markChildren(true);
  dirtyUpFlags();
  sxGroup::removedFrom(parent);
}

// --- copies

// The copy constructor took the matrix and the sphere; the group copy adds
// the children, which the marking then reaches.
sxGroup* sxTransform::copyGroup() const {
  sxTransform* made = newCopyOf(*this, false);
  if (made) made->changed();
  return made;
}

sxGroup* sxTransform::cloneGroup() const {
  sxTransform* made = newCopyOf(*this, true);
  if (made) made->changed();
  return made;
}

// --- persistence: the group's record, then the matrix

sxEntry* sxTransform::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxGroup::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (e) matrix.write(e);
  return created;
}

sxEntry* sxTransform::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxGroup::read(file, entry);
  if (!e) return nullptr;
  matrix.read(e);
  changed();
  return e;
}
