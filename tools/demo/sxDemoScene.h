#pragma once

#include <sx/sxCore.h>

#include <vector>

/// The sample scene of `sxtool demo` and of the frame benchmark: a field of
/// moving objects with levels of detail, billboards, sound sources, an
/// automatic switch, a cross-fading switch driven by an event, and the
/// camera and listener that look at it.
struct sxDemoConfig {
  int objects = 3000;        ///< transforms in motion
  float spacing = 10.0f;     ///< grid step between objects
  int billboardEvery = 10;   ///< every n-th object is a billboard
  int emitterEvery = 25;     ///< every n-th object carries a sound source
  int tickEvery = 30;        ///< frames between two fires of the demo event
  float fadeSeconds = 0.2f;  ///< cross-fade of the doors; 0 or less switches at once
};

/// An action node that selects the next child of each switch below it
/// when its event fires: doors that open and close with a cross-fade.
class sxDemoToggle : public sxActionNode {
 public:
  SX_CLASS(sxDemoToggle, sxActionNode)
  sxDemoToggle() = default;
  void eventTriggered(sxBase* object, sxEvent* event) override;
  /// Selections made since construction.
  int getNumToggles() const { return toggles; }

 protected:
  SX_GROUP_COPIES

 private:
  int toggles = 0;
};

/// The moving parts of a demo scene, found by walking its graph, so that a
/// scene read from a file runs exactly as a freshly built one.
struct sxDemoParts {
  sxRef<sxScene> scene;
  std::vector<sxTransform*> transforms;
  std::vector<sxSwitch*> switches;  // plain and automatic, not range switches
  std::vector<sxRangeSwitch*> rangeSwitches;
  std::vector<sxBillboard*> billboards;
  std::vector<sxEmitter*> emitters;
  std::vector<sxDemoToggle*> toggles;
  int nodes = 0;
  float extent = 0.0f;  ///< half the side of the field

  /// Walks scene and fills the lists; false when scene is null.
  bool find(sxScene* scene);
};

/// Registers the demo's own node classes, so that a scene file naming them
/// can be read; building a scene does it too.
void sxDemoInitClasses();

/// Builds the sample scene.
sxRef<sxScene> sxBuildDemoScene(const sxDemoConfig& config);

/// The name of the event that drives the toggles.
inline constexpr const char* sxDemoTickEvent = "demo.tick";
