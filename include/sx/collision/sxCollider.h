#pragma once

#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>
#include <sx/traversal/sxTravContext.h>

/// Intersects a graph with rays and generates hit records.
class SX_API sxCollider : public sxBase {
 public:
  SX_CLASS(sxCollider, sxBase)
  sxCollider() = default;
  ~sxCollider() override;

  /// The context of this object's passes over a graph (referenced; may be
  /// null, and then the passes do nothing).
  sxTravContext* getTravContext() const { return travContext.get(); }
  void setTravContext(sxTravContext* context);

 private:
  sxRef<sxTravContext> travContext;
};
