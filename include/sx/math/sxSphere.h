#pragma once

#include <sx/math/sxVec3.h>
#include <sx/math/sxVolume.h>
#include <sx/sxExport.h>

// A sphere; the radius -1 marks it empty.
class SX_API sxSphere final : public sxVolumeOf<sxSphere, sxVolume::SPHERE> {
 public:
  sxSphere() : center(0.0f, 0.0f, 0.0f), radius(-1.0f) {}
  sxSphere(const sxVec3& c, float r) : center(c), radius(r) {}
  sxSphere(const sxSphere&) = default;
  sxSphere& operator=(const sxSphere&) = default;

  // Scales the radius by the length of the transformed Z axis (transforms
  // are taken to scale uniformly) and moves the center. An empty sphere
  // stays empty.
  void xform(const sxMatrix& m) override;
  void makeEmpty() override { radius = -1.0f; }
  bool isEmpty() const override { return radius == -1.0f; }

  using sxVolume::contains;
  CONTAINMENT contains(const sxVec3& point) const override;
  CONTAINMENT contains(const sxRay& ray) const override;
  CONTAINMENT contains(const sxSphere& sphere) const override;
  CONTAINMENT contains(const sxBox& box) const override;
  CONTAINMENT contains(const sxPlane& plane) const override;

  using sxVolume::extendAround;
  // Grows just enough, keeping the far side fixed.
  void extendAround(const sxVec3& point) override;
  void extendAround(const sxSphere& sphere) override;
  void extendAround(const sxBox& box) override;

  void getCenter(sxVec3& c) const override { c = center; }
  // Center as three floats, radius as one: a record that ends early reads
  // the radius -1, an empty sphere.
  void read(sxEntry* entry) override;
  void write(sxEntry* entry) const override;

  // A negative radius is stored as 0.
  virtual void setRadius(float r) { radius = r < 0.0f ? 0.0f : r; }
  float getRadius() const { return radius; }
  void setCenter(const sxVec3& c) { center = c; }
  const sxVec3& getCenter() const { return center; }

  bool operator==(const sxSphere& s) const { return center == s.center && radius == s.radius; }
  bool operator!=(const sxSphere& s) const { return !(*this == s); }
  // Compare the radii only.
  bool operator<=(const sxSphere& s) const { return radius <= s.radius; }
  bool operator>=(const sxSphere& s) const { return radius >= s.radius; }

  sxVec3 center;
  float radius;
};
