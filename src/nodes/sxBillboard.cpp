#include <sx/nodes/sxBillboard.h>
#include <sx/nodes/sxGroupType.h>
#include <sx/persist/sxEntry.h>
#include <sx/traversal/sxViewpoint.h>

SX_DEFINE_CLASS(sxBillboard, sxGroupType)

void sxBillboard::setAxis(const sxVec3& a) {
  axis = a;
  dirtyUp(TRAV_FLAG_MATRIX);
}

void sxBillboard::setMode(MODE m) {
  mode = m;
  dirtyUp(TRAV_FLAG_MATRIX);
}

// A new position moves the bounds the parents hold, so they recompute them.
void sxBillboard::setXYZ(float x, float y, float z) {
  position.set(x, y, z);
  dirtyUp(TRAV_FLAG_MATRIX | TRAV_FLAG_FENCES);
}

void sxBillboard::setXYZ(const sxVec3& xyz) {
  setXYZ(xyz.x, xyz.y, xyz.z);
}

void sxBillboard::computeFullMatrix(const sxMatrix& m, sxMatrix& result,
                                    const sxViewpoint* viewpoint) const {
  if (!viewpoint) {
    result = m;
    result.preTrans(position);
    return;
  }
  sxVec3 world;
  world.xformPt(position, m);
  sxVec3 scale(1.0f, 1.0f, 1.0f);
  const unsigned scaled = m.getType() & (sxMatrix::UNIFORM_SCALE | sxMatrix::NONUNIFORM_SCALE);
  if (scaled) {
    sxVec3 row;
    for (int i = 0; i < 3; ++i) {
      m.getRow(scaled & sxMatrix::NONUNIFORM_SCALE ? i : 0, row);
      scale[i] = row.length();
    }
  }
  sxVec3 d;
  if (viewpoint->getProjection() == sxViewpoint::PROJECTION_ORTHOGRAPHIC)
    d.xformVec(sxVec3(0.0f, -1.0f, 0.0f), viewpoint->getMatrix());
  else
    d = viewpoint->getPosition() - world;
  const sxVec3 zUp(0.0f, 0.0f, 1.0f);
  sxVec3 a = zUp;
  // The up axis made perpendicular to the view direction: R = up x D,
  // A = D x R.
  auto perpendicular = [&d](const sxVec3& up) {
    sxVec3 r, result;
    r.cross(up, d);
    r.normalize();
    result.cross(d, r);
    result.normalize();
    return result;
  };
  switch (mode) {
    case MODE_AXIS:
      a.xformVec(axis, m);
      break;
    case MODE_VIEWER_UP: {
      sxVec3 v;
      v.xformVec(zUp, viewpoint->getMatrix());
      a = perpendicular(v);
      break;
    }
    case MODE_WORLD_UP:
      a = perpendicular(zUp);
      break;
    default:
      break;
  }
  result.makeAlongDirection(a, d);
  if (scaled) result.preScale(scale);
  result.setXYZ(world);
}

// --- persistence: the group's record, then mode, axis and position

sxEntry* sxBillboard::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxGroup::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (!e) return created;
  e->writeInt(int(mode));
  axis.write(e);
  position.write(e);
  return created;
}

sxEntry* sxBillboard::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxGroup::read(file, entry);
  if (!e) return nullptr;
  mode = MODE(e->readInt());
  axis.read(e);
  position.read(e);
  dirtyUp(TRAV_FLAG_MATRIX | TRAV_FLAG_FENCES);
  return e;
}
