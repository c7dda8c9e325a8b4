#pragma once

#include <sx/math/sxPlane.h>
#include <sx/math/sxSphere.h>
#include <sx/math/sxVec3.h>
#include <sx/math/sxVolume.h>
#include <sx/sxExport.h>

// The view volume: six face planes facing out, the twelve edge planes that
// sharpen culling near its edges and corners, its eight corners and a sphere
// around it. It is made in eye space, looking along +Y with Z up and X to
// the right, and can then be transformed. A frustum is empty until made.
class SX_API sxFrustum final : public sxVolumeOf<sxFrustum, sxVolume::FRUSTUM> {
 public:
  // Face indices. Near and far are the pair that meets no side face in a
  // side edge.
  enum FACE {
    FACE_NEAR = 0,
    FACE_FAR = 1,
    FACE_LEFT = 2,
    FACE_RIGHT = 3,
    FACE_BOTTOM = 4,
    FACE_TOP = 5
  };
  // Edge planes 0-3 run along the side edges (left-top, right-top,
  // left-bottom, right-bottom), 4-7 along the near face (top, bottom, right,
  // left) and 8-11 along the far face in the same order.
  static constexpr int numEdges = 12;
  // Bit n set: edge plane n runs along the border of that face.
  static constexpr unsigned int edgeMasks[6] = {0x0F0, 0xF00, 0x885, 0x44A, 0x22C, 0x113};
  // Corner i is on the right when bit 1 is set, at the top with bit 2 and
  // on the far face with bit 4.
  static constexpr int numCorners = 8;

  sxFrustum() { makeEmpty(); }
  sxFrustum(const sxFrustum&) = default;
  sxFrustum& operator=(const sxFrustum&) = default;

  // A perspective view through the window (left, right, bottom, top) of the
  // near plane. False, leaving the frustum empty, unless
  // 0 < nearDist < farDist, left < right and bottom < top.
  bool makePersp(float left, float right, float bottom, float top, float nearDist, float farDist);
  // A parallel view of the box from the window at nearDist to farDist; the
  // same conditions except that nearDist may be 0 or negative.
  bool makeOrtho(float left, float right, float bottom, float top, float nearDist, float farDist);
  // A symmetric perspective view with the full horizontal and vertical
  // angles of view in degrees (each in (0, 180)).
  bool makeFOV(float hFov, float vFov, float nearDist, float farDist);
  // Recomputes the edge planes from the face planes.
  void calcEdgePlanes();

  // The parameters as made (transforming does not change them).
  float getNear() const { return nearDist; }
  float getFar() const { return farDist; }
  void getNearPlaneCoords(float& l, float& r, float& b, float& t) const;
  bool isSymmetrical() const;
  bool isOrtho() const { return ortho; }

  const sxPlane& getPlane(int face) const { return faces[face]; }
  const sxPlane& getEdgePlane(int edge) const { return edges[edge]; }
  const sxVec3& getCorner(int i) const { return corners[i]; }
  void getCorners(sxVec3 out[numCorners]) const;
  const sxSphere& getBoundingSphere() const { return bound; }

  void xform(const sxMatrix& m) override { xform(*this, m); }
  void xform(const sxFrustum& f, const sxMatrix& m);
  void makeEmpty() override;
  bool isEmpty() const override { return empty; }

  using sxVolume::contains;
  // Inside when within the bounding sphere and all six faces.
  CONTAINMENT contains(const sxVec3& point) const override;
  CONTAINMENT contains(const sxRay& ray) const override;
  // Culling: the bounding sphere, then the faces, then the edge planes of
  // the faces that the volume crosses. Never outside for a volume that
  // overlaps, never inside for one that pokes out; near a corner a volume
  // that misses may still be reported partial.
  CONTAINMENT contains(const sxSphere& sphere) const override;
  CONTAINMENT contains(const sxBox& box) const override;
  CONTAINMENT contains(const sxPlane& plane) const override;

  // A frustum is made, not grown: these do nothing.
  using sxVolume::extendAround;
  void extendAround(const sxVec3&) override {}
  void extendAround(const sxRay&) override {}
  void extendAround(const sxFrustum&) override {}
  void extendAround(const sxSphere&) override {}
  void extendAround(const sxBox&) override {}

  void getCenter(sxVec3& c) const override { c = bound.center; }

  // Everything the frustum holds, so that it comes back exactly as it was,
  // transformed or not, whatever square-root method is in use: the six face
  // planes and the twelve edge planes (each as a plane writes itself), the
  // eight corners (three floats each), the bounding sphere (as a sphere
  // writes itself), the six floats left, right, bottom, top, near and far,
  // and the bools ortho and empty; 504 bytes in all. A frustum flagged
  // empty, or one whose record ends early (the flag then reads as true),
  // comes back made empty.
  void read(sxEntry* entry) override;
  void write(sxEntry* entry) const override;

 private:
  bool make(float left, float right, float bottom, float top, float nearDist, float farDist,
            bool isOrtho);
  // Face planes, edge planes and bounding sphere from the corners.
  void fromCorners();
  template <class V>
  CONTAINMENT cull(const V& v) const;

  sxPlane faces[6];
  sxPlane edges[numEdges];
  sxVec3 corners[numCorners];
  sxSphere bound;
  float left, right, bottom, top, nearDist, farDist;
  bool ortho;
  bool empty;
};
