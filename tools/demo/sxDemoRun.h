#pragma once

#include <sx/sxCore.h>

#include "sxDemoScene.h"

/// What one frame of the demo did and how long it took.
struct sxDemoFrame {
  double updateMs = 0;    ///< animation and the scene's update
  double cameraMs = 0;    ///< the culling camera pass
  double listenerMs = 0;  ///< the listener pass
  long long visited = 0;  ///< groups the camera pass entered
  long long culled = 0;   ///< sub-graphs it left out
  int switchChanges = 0;  ///< plain and automatic switches whose selection changed
  int playing = 0;        ///< emitters on the scene's play list
  double totalMs() const { return updateMs + cameraMs + listenerMs; }
};

/// Runs a demo scene frame by frame: moves a tenth of the objects each
/// frame, starts and stops sound sources, fires the demo event now and
/// then, updates the scene, and sends a camera and a listener round a
/// circle over the field.
class sxDemoRunner {
 public:
  sxDemoRunner(const sxDemoParts& parts, const sxDemoConfig& config);
  ~sxDemoRunner();
  sxDemoRunner(const sxDemoRunner&) = delete;
  sxDemoRunner& operator=(const sxDemoRunner&) = delete;

  sxDemoFrame step();
  int getFrame() const { return frame; }

 private:
  void animate();
  void placeViewer();
  int countSwitchChanges();

  const sxDemoParts& parts;
  sxDemoConfig config;
  sxRef<sxEvent> tick;
  sxRef<sxCamera> camera;
  sxRef<sxListener> listener;
  sxRef<sxStats> stats;
  std::vector<unsigned> selections;
  int frame = 0;
};
