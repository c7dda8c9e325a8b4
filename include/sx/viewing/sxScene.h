#pragma once

#include <sx/viewing/sxStyle.h>

/// The root node of a graph that is updated once per frame.
class SX_API sxScene : public sxStyle {
 public:
  SX_CLASS(sxScene, sxStyle)

  /// The kinds of direct-call lists a scene keeps around its passes.
  static constexpr int numDirectCallKinds = 8;

  sxScene();
  sxScene(const sxScene& source);
  ~sxScene() override;

  /// Takes node off the direct-call list of kind (0 to 7). Called when the
  /// node or an ancestor is detached from the scene's graph.
  virtual void removeDirectCall(int kind, sxGroup* node);

  /// Scenes alive in the process: a detached node looks for scenes above it
  /// only when there are any.
  static int getNumLive();
};
