#pragma once

#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>
#include <sx/traversal/sxTravContext.h>

/// The receiver of the audio pass: hands playing emitters to the audio back end.
class SX_API sxListener : public sxBase {
 public:
  SX_CLASS(sxListener, sxBase)
  sxListener() = default;
  ~sxListener() override;

  /// The scales that the audio traits hand over. The kernel's listener
  /// ignores them (its getters answer 1); an audio back end's listener
  /// overrides both.
  virtual void setPriorityScale(float scale);
  virtual float getPriorityScale() const { return 1.0f; }
  virtual void setAudioLevelScale(float scale);
  virtual float getAudioLevelScale() const { return 1.0f; }

  /// The context of this object's passes over a graph (referenced; may be
  /// null, and then the passes do nothing).
  sxTravContext* getTravContext() const { return travContext.get(); }
  void setTravContext(sxTravContext* context);

 private:
  sxRef<sxTravContext> travContext;
};
