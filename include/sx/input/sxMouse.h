#pragma once

#include <cstdint>

#include <sx/containers/sxQueue.h>

class sxCamera;
class sxWindow;

/// One mouse event as the window layer reported it.
struct sxMouseData {
  std::uint32_t buttons;  ///< button and modifier state, as the window layer gives it
  std::int16_t x, y;      ///< window pixels
  /// The position normalised to the window: -1 at the left or top edge, 0
  /// at the centre, +1 at the right or bottom edge (rows grow downwards).
  float nx, ny;
  sxWindow* window;  ///< the window it happened in
};

/// The queue of mouse events that the window layer fills: set() queues,
/// get() drains, sample() looks at the oldest. Holds 25 events; a full queue
/// drops its oldest. Window plug-ins may specialise set, get and sample.
class SX_API sxMouse : public sxQueue {
 public:
  SX_CLASS(sxMouse, sxQueue)
  sxMouse();

  /// Queues an event, normalising the position by the window's size (a
  /// window without a size, or none, gives 0 except at the edge 0, which is
  /// -1).
  virtual bool set(sxWindow* window, int x, int y, unsigned int buttons);
  /// Queues an event with the normalised position given.
  virtual bool set(sxWindow* window, int x, int y, float nx, float ny, unsigned int buttons);

  /// Copies the oldest event; with a camera, true only when the event lies
  /// inside the camera's viewport (bounds inclusive). It stays queued.
  using sxQueue::sample;
  virtual bool sample(sxMouseData& data, sxCamera* camera) const;
  /// As sample, and removes the event when sample answers true.
  using sxQueue::get;
  virtual bool get(sxMouseData& data, sxCamera* camera);

  /// True when an event is queued.
  bool test() const { return getCount() > 0; }
};
