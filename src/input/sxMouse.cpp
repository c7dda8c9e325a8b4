#include <sx/input/sxMouse.h>
#include <sx/viewing/sxCamera.h>
#include <sx/viewing/sxWindow.h>

SX_DEFINE_CLASS(sxMouse)

namespace {

// -1 at 0 exactly (no division), +1 at the far edge; 0 without a size.
float normalise(int at, int size) {
  if (at == 0) return -1.0f;
  if (size <= 0) return 0.0f;
  return (float(at) / float(size) - 0.5f) * 2.0f;
}

}  // namespace

sxMouse::sxMouse() : sxQueue(int(sizeof(sxMouseData)), 25) {
  setMode(OVERWRITE);
}

bool sxMouse::set(sxWindow* window, int x, int y, unsigned int buttons) {
  int width = 0, height = 0;
  if (window) window->getSize(width, height);
  return set(window, x, y, normalise(x, width), normalise(y, height), buttons);
}

bool sxMouse::set(sxWindow* window, int x, int y, float nx, float ny, unsigned int buttons) {
  const sxMouseData data{buttons, std::int16_t(x), std::int16_t(y), nx, ny, window};
  return put(&data);
}

bool sxMouse::sample(sxMouseData& data, sxCamera* camera) const {
  if (!sxQueue::sample(&data)) return false;
  if (!camera) return true;
  int left, right, bottom, top;
  camera->getViewport(left, right, bottom, top);
  return left <= data.x && data.x <= right && bottom <= data.y && data.y <= top;
}

bool sxMouse::get(sxMouseData& data, sxCamera* camera) {
  if (!sample(data, camera)) return false;
  return sxQueue::get(&data);
}
