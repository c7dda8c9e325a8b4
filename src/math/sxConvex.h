#pragma once

#include <sx/math/sxVec3.h>

class sxBox;
class sxFrustum;

// How the corners of a frustum connect (corner bits: 1 right, 2 top, 4 far).
// Faces list their corners in order around the face; edge i runs along the
// border of the two faces given, as in the frustum's edge masks.
extern const int sxiFrustumFaceCorners[6][4];
extern const int sxiFrustumEdgeCorners[12][2];
extern const int sxiFrustumEdgeFaces[12][2];

// A convex solid as the separating-axis test needs it: its corners, the
// normals of its faces and the directions of its edges (parallel ones
// listed once).
struct sxiHull {
  sxVec3 corners[8];
  sxVec3 faces[6];
  sxVec3 edges[6];
  int numFaces = 0;
  int numEdges = 0;

  void fromBox(const sxBox& box);
  void fromFrustum(const sxFrustum& frustum);
};

// True unless an axis separates the two solids; touching counts as meeting.
bool sxiHullsMeet(const sxiHull& a, const sxiHull& b);

// Squared distance from p to the nearest point of the frustum (0 inside).
float sxiFrustumSqrDistance(const sxFrustum& frustum, const sxVec3& p);
