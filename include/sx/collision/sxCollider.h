#pragma once

#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/traversal/sxViewpoint.h>

class sxGroup;

/// The prober of the collider pass: a viewpoint (whose view volume, when
/// set, bounds the region probed) and the traversal context the pass runs
/// in.
///
/// The kernel's collider walks the parts of the graph whose content bits
/// meet its pass mask, with the path and the failed-ray masks kept on its
/// context; it tests nothing itself. A collision plug-in derives from it,
/// overrides traverse() to set up its rays and collect hits, and gives its
/// node kinds collider passes that test against the rays.
class SX_API sxCollider : public sxBase {
 public:
  SX_CLASS(sxCollider, sxBase)
  /// Makes the context, with a traversal-trait stack.
  sxCollider();
  /// Copies the viewpoint; the copy gets a context of its own.
  sxCollider(const sxCollider& source);
  ~sxCollider() override;

  /// The collider pass over root: resets the context, points it at this
  /// collider's viewpoint and at root when root is a scene, then calls the
  /// scene's collider direct calls (first), root->apply(this), and the
  /// scene's collider direct calls (after). Nothing for a null root or
  /// without a context.
  virtual void traverse(sxGroup* root);

  /// Placement and probed volume (see sxViewpoint).
  virtual void setMatrix(const sxMatrix& m) { viewpoint.setMatrix(m); }
  const sxMatrix& getMatrix() const { return viewpoint.getMatrix(); }
  virtual void setFrustum(const sxFrustum& eyeSpace) { viewpoint.setFrustum(eyeSpace); }
  const sxViewpoint& getViewpoint() const { return viewpoint; }

  /// The context of this object's passes over a graph (referenced; may be
  /// null, and then the passes do nothing).
  sxTravContext* getTravContext() const { return travContext.get(); }
  void setTravContext(sxTravContext* context);

 private:
  sxViewpoint viewpoint;
  sxRef<sxTravContext> travContext;
};
