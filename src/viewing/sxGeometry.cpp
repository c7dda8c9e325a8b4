#include <sx/containers/sxTArray.h>
#include <sx/math/sxVecArrays.h>
#include <sx/nodes/sxGroupType.h>
#include <sx/persist/sxEntry.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/viewing/sxGeometry.h>

#include <algorithm>
#include <cmath>

#include "collision/sxFenceVolume.h"
#include "persist/sxFileState.h"

SX_DEFINE_CLASS(sxGeometry, sxGroupType)

namespace {

bool takes(sxGeometry::ATTRIBUTE attribute, sxArray::DATA_TYPE type) {
  switch (attribute) {
    case sxGeometry::POSITIONS:
    case sxGeometry::NORMALS:
      return type == sxArray::TYPE_VEC3;
    case sxGeometry::TEXCOORDS:
      return type == sxArray::TYPE_VEC2;
    case sxGeometry::INDICES:
      return type == sxArray::TYPE_INT || type == sxArray::TYPE_USHORT;
  }
  return false;
}

bool isAttribute(int attribute) {
  return attribute >= 0 && attribute < sxGeometry::numAttributes;
}

// True when every index is below limit.
template <class T>
bool indicesBelow(sxArray* indices, int limit) {
  sxTArray<T> view(indices);
  return std::all_of(view.begin(), view.end(), [limit](T i) { return i >= 0 && int(i) < limit; });
}

}  // namespace

sxGeometry::sxGeometry() {
  addTravFlags(CONTENT_GEOMETRY);
}

// The group copy takes no flags; the copy is geometry all the same.
sxGeometry::sxGeometry(const sxGeometry& source)
    : sxGroup(source), primitive(source.primitive), box(source.box), sphere(source.sphere) {
  for (int a = 0; a < numAttributes; ++a) arrays[a] = source.arrays[a];
  addTravFlags(CONTENT_GEOMETRY);
}

// The bit is the geometry's own, not its children's.
void sxGeometry::cleanUp(unsigned bits) {
  sxGroup::cleanUp(bits & ~CONTENT_GEOMETRY);
}

bool sxGeometry::setArray(ATTRIBUTE attribute, sxArray* array) {
  if (!isAttribute(attribute) || (array && !takes(attribute, array->getType()))) return false;
  arrays[attribute] = array;
  if (attribute == POSITIONS) updateBounds();
  return true;
}

sxArray* sxGeometry::getArray(ATTRIBUTE attribute) const {
  return isAttribute(attribute) ? arrays[attribute].get() : nullptr;
}

void sxGeometry::setPrimitive(PRIMITIVE kind) {
  primitive = kind == POINTS || kind == LINES ? kind : TRIANGLES;
}

int sxGeometry::getNumVertices() const {
  return sxTArray<sxVec3>(arrays[POSITIONS].get()).getNum();
}

int sxGeometry::getNumPrimitives() const {
  const sxArray* indices = arrays[INDICES].get();
  const int n = indices ? std::max(indices->getNum(), 0) : getNumVertices();
  return n / int(primitive);
}

bool sxGeometry::isValid() const {
  const int n = getNumVertices();
  for (ATTRIBUTE a : {NORMALS, TEXCOORDS}) {
    const sxArray* array = arrays[a].get();
    if (array && array->getNum() != n) return false;
  }
  sxArray* indices = arrays[INDICES].get();
  if (!indices) return true;
  return indices->getType() == sxArray::TYPE_INT ? indicesBelow<int>(indices, n)
                                                 : indicesBelow<unsigned short>(indices, n);
}

void sxGeometry::updateBounds() {
  box.makeEmpty();
  sphere.makeEmpty();
  sxTArray<sxVec3> positions(arrays[POSITIONS].get());
  for (const sxVec3& p : positions)
    if (sxiFinite(p)) box.extendAround(p);
  if (!box.isEmpty()) {
    // Centred on the box, as far out as the farthest position: tighter
    // than the sphere around the box's corners.
    sxVec3 center;
    box.getCenter(center);
    float r2 = 0.0f;
    for (const sxVec3& p : positions) {
      if (!sxiFinite(p)) continue;
      const sxVec3 d(p.x - center.x, p.y - center.y, p.z - center.z);
      r2 = std::max(r2, d.x * d.x + d.y * d.y + d.z * d.z);
    }
    sphere = sxSphere(center, std::sqrt(r2));
    sxiMakeSafe(sphere);
  }
  dirtyUp(TRAV_FLAG_FENCES);
}

void sxGeometry::updateFences(sxTravContext* ctx) {
  if (sxVolume* outer = ctx ? ctx->getVolume() : nullptr)
    sxiGrowBy(*outer, sphere, ctx->getMatrix());
  sxGroup::updateFences(ctx);
}

// --- persistence

sxEntry* sxGeometry::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxGroup::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (!e) return created;
  e->writeShort(short(primitive));
  for (const sxRef<sxArray>& array : arrays) {
    if (array)
      array->writeRef(file, e);
    else
      e->writeInt(-1);
  }
  return created;
}

sxEntry* sxGeometry::read(sxFile* file, sxEntry* entry) {
  for (sxRef<sxArray>& array : arrays) array.reset();
  sxEntry* e = sxGroup::read(file, entry);
  if (!e) return nullptr;
  // The record's flags may say anything; geometry is geometry.
  dirtyUp(CONTENT_GEOMETRY);
  setPrimitive(PRIMITIVE(e->readShort()));
  for (int a = 0; a < numAttributes; ++a) {
    sxArray* array = sxArray::readRef(file, e);
    if (array && takes(ATTRIBUTE(a), array->getType()))
      arrays[a] = array;
    else
      sxiFileAccess::drop(file, array);
  }
  // Arrays that do not fit together would have a renderer read past their
  // ends: such geometry is kept without them.
  if (!isValid()) {
    for (sxRef<sxArray>& array : arrays) {
      sxiFileAccess::drop(file, array.get());
      array.reset();
    }
  }
  updateBounds();
  return e;
}
