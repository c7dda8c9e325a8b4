#pragma once

#include <climits>

#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/traversal/sxViewpoint.h>

class sxGroup;

/// The viewer of the camera pass: a viewpoint with a view volume, and the
/// traversal context the pass runs in.
///
/// The kernel's camera walks the graph and culls it against its view
/// volume; it draws nothing. A rendering plug-in derives from it and
/// overrides traverse() to wrap the walk (clear, draw the collected nodes,
/// swap), and gives its geometry node kinds camera passes that hand their
/// data to the camera. The traversal context, its trait stack and the
/// viewpoint are the kernel's; plug-ins use them as they are.
class SX_API sxCamera : public sxBase {
 public:
  SX_CLASS(sxCamera, sxBase)
  /// Makes the context, with a trait stack of every family.
  sxCamera();
  /// Copies the viewpoint; the copy gets a context of its own.
  sxCamera(const sxCamera& source);
  ~sxCamera() override;

  /// The camera pass over root: resets the context, points it at this
  /// camera's viewpoint and at root when root is a scene, then calls the
  /// scene's camera direct calls (first), root->apply(this), and the
  /// scene's camera direct calls (after). Nothing for a null root or
  /// without a context.
  virtual void traverse(sxGroup* root);

  /// Placement and view volume (see sxViewpoint).
  virtual void setMatrix(const sxMatrix& m) { viewpoint.setMatrix(m); }
  const sxMatrix& getMatrix() const { return viewpoint.getMatrix(); }
  virtual void setFrustum(const sxFrustum& eyeSpace) { viewpoint.setFrustum(eyeSpace); }
  const sxViewpoint& getViewpoint() const { return viewpoint; }

  /// The part of its window the camera draws, in window pixels, bounds
  /// included; mouse events are filtered by it. A new camera's viewport
  /// takes every pixel. Rendering plug-ins override both.
  virtual void getViewport(int& left, int& right, int& bottom, int& top) const {
    left = viewport[0];
    right = viewport[1];
    bottom = viewport[2];
    top = viewport[3];
  }
  virtual void setViewport(int left, int right, int bottom, int top) {
    viewport[0] = left;
    viewport[1] = right;
    viewport[2] = bottom;
    viewport[3] = top;
  }

  /// The context of this object's passes over a graph (referenced; may be
  /// null, and then the passes do nothing).
  sxTravContext* getTravContext() const { return travContext.get(); }
  void setTravContext(sxTravContext* context);

 private:
  sxViewpoint viewpoint;
  sxRef<sxTravContext> travContext;
  int viewport[4] = {INT_MIN, INT_MAX, INT_MIN, INT_MAX};
};
