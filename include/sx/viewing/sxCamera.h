#pragma once

#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>
#include <sx/traversal/sxTravContext.h>

/// A viewpoint of the camera pass; rendering plug-ins give it its behaviour.
class SX_API sxCamera : public sxBase {
 public:
  SX_CLASS(sxCamera, sxBase)
  sxCamera() = default;
  ~sxCamera() override;

  /// The context of this object's passes over a graph (referenced; may be
  /// null, and then the passes do nothing).
  sxTravContext* getTravContext() const { return travContext.get(); }
  void setTravContext(sxTravContext* context);

 private:
  sxRef<sxTravContext> travContext;
};
