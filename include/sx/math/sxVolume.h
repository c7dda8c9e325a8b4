#pragma once

#include <sx/math/sxVec3.h>
#include <sx/object/sxMemory.h>
#include <sx/sxExport.h>

class sxArena;
class sxBox;
class sxEntry;
class sxFrustum;
class sxMatrix;
class sxPlane;
class sxRay;
class sxSphere;

// The bounding volumes: planes (half spaces), axis-aligned boxes, spheres and
// view frusta. Any two kinds can be tested for containment (three-valued)
// and intersection, and a volume can grow around another. Volumes are plain
// heap or arena objects, not reference counted: traversals make temporary
// ones all the time.
class SX_API sxVolume : public sxMemory {
 public:
  enum TYPE { PLANE = 0, BOX = 1, SPHERE = 2, FRUSTUM = 3 };
  // Of a thing tested against this volume.
  enum CONTAINMENT {
    OUTSIDE = 0,  // no point of it is inside
    PARTIAL = 1,  // it overlaps the boundary
    INSIDE = 2    // it lies wholly inside
  };

  ~sxVolume() override = default;

  // Copies v when it is of the same kind; otherwise nothing changes.
  virtual void copy(const sxVolume& v) = 0;
  // A heap copy, released with delete.
  virtual sxVolume* createCopy() const = 0;
  // A copy in the arena, dropped with it (never deleted); null without one.
  virtual sxVolume* createDisposableCopy(sxArena* arena) const = 0;
  virtual void xform(const sxMatrix& m) = 0;
  virtual void makeEmpty() = 0;
  virtual bool isEmpty() const = 0;

  virtual CONTAINMENT contains(const sxVec3& point) const = 0;
  virtual CONTAINMENT contains(const sxRay& ray) const = 0;
  // Every kind is convex: it holds a frustum that it meets when it holds the
  // frustum's corners.
  virtual CONTAINMENT contains(const sxFrustum& frustum) const;
  virtual CONTAINMENT contains(const sxSphere& sphere) const = 0;
  virtual CONTAINMENT contains(const sxBox& box) const = 0;
  virtual CONTAINMENT contains(const sxPlane& plane) const = 0;
  virtual CONTAINMENT contains(const sxVolume& v) const;

  virtual bool intersects(const sxFrustum& frustum) const = 0;
  virtual bool intersects(const sxSphere& sphere) const = 0;
  virtual bool intersects(const sxBox& box) const = 0;
  virtual bool intersects(const sxPlane& plane) const = 0;
  virtual bool intersects(const sxRay& ray) const = 0;
  // False when either volume is empty.
  virtual bool intersects(const sxVolume& v) const;

  virtual void extendAround(const sxVec3& point) = 0;
  virtual void extendAround(const sxVec3* points, int count);
  // Around the ray's start and end points.
  virtual void extendAround(const sxRay& ray);
  // Around the frustum's corners.
  virtual void extendAround(const sxFrustum& frustum);
  virtual void extendAround(const sxSphere& sphere) = 0;
  virtual void extendAround(const sxBox& box) = 0;
  // Nothing can enclose a half space.
  virtual void extendAround(const sxPlane&) {}
  virtual void extendAround(const sxVolume& v);

  // The base leaves center untouched.
  virtual void getCenter(sxVec3& center) const;

  // The kind's fields into or out of a scene file entry, at its cursor;
  // nothing happens without an entry.
  virtual void read(sxEntry* entry) = 0;
  virtual void write(sxEntry* entry) const = 0;

  TYPE getType() const { return type; }

 protected:
  explicit sxVolume(TYPE t) : type(t) {}
  sxVolume(const sxVolume&) = default;
  sxVolume& operator=(const sxVolume&) = default;

  // The pairwise tests that both sides of each pair share.
  static bool isectRayPlane(const sxRay& ray, const sxPlane& plane);
  static bool isectRayBox(const sxRay& ray, const sxBox& box);
  static bool isectRaySphere(const sxRay& ray, const sxSphere& sphere);
  static bool isectRayFrust(const sxRay& ray, const sxFrustum& frustum);
  static bool isectPlanePlane(const sxPlane& a, const sxPlane& b);
  static bool isectPlaneBox(const sxPlane& plane, const sxBox& box);
  static bool isectPlaneSphere(const sxPlane& plane, const sxSphere& sphere);
  static bool isectPlaneFrust(const sxPlane& plane, const sxFrustum& frustum);
  static bool isectBoxBox(const sxBox& a, const sxBox& b);
  static bool isectBoxSphere(const sxBox& box, const sxSphere& sphere);
  static bool isectBoxFrust(const sxBox& box, const sxFrustum& frustum);
  static bool isectSphereSphere(const sxSphere& a, const sxSphere& b);
  static bool isectSphereFrust(const sxSphere& sphere, const sxFrustum& frustum);
  static bool isectFrustFrust(const sxFrustum& a, const sxFrustum& b);
  // The same tests by argument types, in either order.
  static bool isect(const sxRay& r, const sxPlane& p) { return isectRayPlane(r, p); }
  static bool isect(const sxRay& r, const sxBox& b) { return isectRayBox(r, b); }
  static bool isect(const sxRay& r, const sxSphere& s) { return isectRaySphere(r, s); }
  static bool isect(const sxRay& r, const sxFrustum& f) { return isectRayFrust(r, f); }
  static bool isect(const sxPlane& a, const sxPlane& b) { return isectPlanePlane(a, b); }
  static bool isect(const sxPlane& p, const sxBox& b) { return isectPlaneBox(p, b); }
  static bool isect(const sxPlane& p, const sxSphere& s) { return isectPlaneSphere(p, s); }
  static bool isect(const sxPlane& p, const sxFrustum& f) { return isectPlaneFrust(p, f); }
  static bool isect(const sxBox& a, const sxBox& b) { return isectBoxBox(a, b); }
  static bool isect(const sxBox& b, const sxSphere& s) { return isectBoxSphere(b, s); }
  static bool isect(const sxBox& b, const sxFrustum& f) { return isectBoxFrust(b, f); }
  static bool isect(const sxSphere& a, const sxSphere& b) { return isectSphereSphere(a, b); }
  static bool isect(const sxSphere& s, const sxFrustum& f) { return isectSphereFrust(s, f); }
  static bool isect(const sxFrustum& a, const sxFrustum& b) { return isectFrustFrust(a, b); }
  template <class A, class B>
  static bool isect(const A& a, const B& b) {
    return isect(b, a);
  }

  // Three-valued result of a convex volume against a ray: the part of the
  // ray between its start and end that lies inside, from the entry and exit
  // distances of the ray's line (tIn > tOut when it misses).
  static CONTAINMENT rayContainment(const sxRay& ray, float tIn, float tOut);

  TYPE type;
};

// The copy operations and the intersection tests, written once for every
// kind D of type T.
template <class D, sxVolume::TYPE T>
class sxVolumeOf : public sxVolume {
 public:
  using sxVolume::intersects;
  bool intersects(const sxFrustum& f) const override { return isect(self(), f); }
  bool intersects(const sxSphere& s) const override { return isect(self(), s); }
  bool intersects(const sxBox& b) const override { return isect(self(), b); }
  bool intersects(const sxPlane& p) const override { return isect(self(), p); }
  bool intersects(const sxRay& r) const override { return isect(r, self()); }

  void copy(const sxVolume& v) override {
    if (v.getType() == T) static_cast<D&>(*this) = static_cast<const D&>(v);
  }
  sxVolume* createCopy() const override { return new D(static_cast<const D&>(*this)); }
  sxVolume* createDisposableCopy(sxArena* arena) const override {
    return arena ? new (arena) D(static_cast<const D&>(*this)) : nullptr;
  }

 protected:
  sxVolumeOf() : sxVolume(T) {}
  const D& self() const { return static_cast<const D&>(*this); }
  sxVolumeOf(const sxVolumeOf&) = default;
  sxVolumeOf& operator=(const sxVolumeOf&) = default;
};
