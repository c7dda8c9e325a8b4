#include "math/sxConvex.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <sx/math/sxBox.h>
#include <sx/math/sxFrustum.h>

const int sxiFrustumFaceCorners[6][4] = {{0, 1, 3, 2}, {4, 5, 7, 6}, {0, 2, 6, 4},
                                         {1, 3, 7, 5}, {0, 1, 5, 4}, {2, 3, 7, 6}};
const int sxiFrustumEdgeCorners[12][2] = {{2, 6}, {3, 7}, {0, 4}, {1, 5}, {2, 3}, {0, 1},
                                          {1, 3}, {0, 2}, {6, 7}, {4, 5}, {5, 7}, {4, 6}};
const int sxiFrustumEdgeFaces[12][2] = {{2, 5}, {3, 5}, {2, 4}, {3, 4}, {0, 5}, {0, 4},
                                        {0, 3}, {0, 2}, {1, 5}, {1, 4}, {1, 3}, {1, 2}};

void sxiHull::fromBox(const sxBox& box) {
  for (int i = 0; i < 8; ++i) corners[i] = box.cornerOf(i);
  for (int i = 0; i < 3; ++i) {
    faces[i].set(0.0f, 0.0f, 0.0f);
    faces[i][i] = 1.0f;
    edges[i] = faces[i];
  }
  numFaces = numEdges = 3;
}

void sxiHull::fromFrustum(const sxFrustum& frustum) {
  frustum.getCorners(corners);
  for (int i = 0; i < 6; ++i) faces[i] = frustum.getPlane(i).normal;
  numFaces = 6;
  // The four side edges, then one horizontal and one vertical edge of the
  // near face (the far face's edges run parallel to them).
  static constexpr int distinct[6] = {0, 1, 2, 3, 4, 6};
  for (int i = 0; i < 6; ++i) {
    const int* ends = sxiFrustumEdgeCorners[distinct[i]];
    edges[i].sub(corners[ends[1]], corners[ends[0]]);
  }
  numEdges = 6;
}

namespace {

bool separates(const sxiHull& a, const sxiHull& b, const sxVec3& axis) {
  float loA = std::numeric_limits<float>::max(), hiA = -loA;
  float loB = loA, hiB = hiA;
  for (int i = 0; i < 8; ++i) {
    const float pa = axis.dot(a.corners[i]);
    const float pb = axis.dot(b.corners[i]);
    loA = std::min(loA, pa), hiA = std::max(hiA, pa);
    loB = std::min(loB, pb), hiB = std::max(hiB, pb);
  }
  return hiA < loB || hiB < loA;
}

}  // namespace

bool sxiHullsMeet(const sxiHull& a, const sxiHull& b) {
  for (int i = 0; i < a.numFaces; ++i) {
    if (separates(a, b, a.faces[i])) return false;
  }
  for (int i = 0; i < b.numFaces; ++i) {
    if (separates(a, b, b.faces[i])) return false;
  }
  for (int i = 0; i < a.numEdges; ++i) {
    for (int j = 0; j < b.numEdges; ++j) {
      sxVec3 axis;
      axis.cross(a.edges[i], b.edges[j]);
      // Parallel edges give no axis of their own.
      if (axis.sqrLength() < 1e-12f) continue;
      if (separates(a, b, axis)) return false;
    }
  }
  return true;
}

namespace {

float segmentSqrDistance(const sxVec3& p, const sxVec3& a, const sxVec3& b) {
  const sxVec3 ab = b - a;
  const float len2 = ab.sqrLength();
  const float t = len2 > 0.0f ? std::clamp((p - a).dot(ab) / len2, 0.0f, 1.0f) : 0.0f;
  sxVec3 q;
  q.addScaled(a, t, ab);
  return p.sqrDistance(q);
}

}  // namespace

// The nearest point lies inside a face whose plane p is in front of, or on an
// edge; every candidate is a point of the frustum, so the least is exact.
float sxiFrustumSqrDistance(const sxFrustum& frustum, const sxVec3& p) {
  float best = std::numeric_limits<float>::max();
  bool inside = true;
  for (int f = 0; f < 6; ++f) {
    const sxPlane& plane = frustum.getPlane(f);
    const float out = plane.normal.dot(p) - plane.offset;
    if (out <= 0.0f) continue;
    inside = false;
    sxVec3 foot;
    foot.addScaled(p, -out, plane.normal);
    bool onFace = true;
    for (int g = 0; g < 6 && onFace; ++g) {
      const sxPlane& other = frustum.getPlane(g);
      const float slack = 1e-5f * (1.0f + std::fabs(other.offset));
      onFace = g == f || other.normal.dot(foot) <= other.offset + slack;
    }
    if (onFace) best = std::min(best, out * out);
  }
  if (inside) return 0.0f;
  for (const auto& ends : sxiFrustumEdgeCorners) {
    best = std::min(best,
                    segmentSqrDistance(p, frustum.getCorner(ends[0]), frustum.getCorner(ends[1])));
  }
  return best;
}
