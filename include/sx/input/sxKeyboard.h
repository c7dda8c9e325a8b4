#pragma once

#include <cstdint>

#include <sx/containers/sxQueue.h>

class sxWindow;

/// One key event as the window layer reported it.
struct sxKeyboardData {
  sxWindow* window;    ///< the window that had the focus
  bool down;           ///< a press (true) or a release
  std::int32_t code;   ///< the key code, as the window layer defines it
  std::int32_t value;  ///< its modifier or character value, likewise
};

/// The queue of key events: the window layer (a plug-in owning the real
/// windows) pushes them with set(), the application drains them with get()
/// or looks at the oldest with sample(). Holds 50 events; a full queue drops
/// its oldest. Releases are dropped unless collectKeyUpEvents(true).
/// Window plug-ins may specialise set, get and sample.
class SX_API sxKeyboard : public sxQueue {
 public:
  SX_CLASS(sxKeyboard, sxQueue)
  sxKeyboard();

  /// Queues an event; a release while key-up events are not collected is
  /// dropped (false). The queue's answer otherwise.
  virtual bool set(sxWindow* window, int code, int value, bool down);
  void collectKeyUpEvents(bool collect) { collectKeyUp = collect; }
  bool isCollectingKeyUpEvents() const { return collectKeyUp; }

  /// Removes the oldest event into data; false when there is none.
  using sxQueue::get;
  virtual bool get(sxKeyboardData& data);
  /// Copies the oldest event without removing it; false when there is none.
  using sxQueue::sample;
  virtual bool sample(sxKeyboardData& data) const;

  /// The number of keyboards that exist: whether the application has one.
  static int test();

 private:
  bool collectKeyUp = false;
};
