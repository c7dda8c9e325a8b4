#include <sx/containers/sxIterator.h>
#include <sx/kernel/sxKernel.h>

void sxIterator::resume() {
  paused = 0;
  if (mode == TIME) lastTime = float(sxGetTime());
}

void sxIterator::setMode(MODE m) {
  mode = std::uint8_t(m);
  setNumItems(numItems);
}

void sxIterator::setNumItems(int n) {
  numItems = n;
  if (mode == TIME)
    times.refill(n);
  else
    frames.refill(n);
}

void sxIterator::reset() {
  current = -1;
  step = direction ? -1 : 1;
}

void sxIterator::setTime(float t) {
  times.setTotal(t, numItems);
}
void sxIterator::setItemTime(float t) {
  times.setItem(t, numItems);
}
void sxIterator::setItemTime(int item, float t) {
  times.setOne(item, t);
}
float sxIterator::getItemTime(int item) const {
  return times.perItem.get(item);
}
void sxIterator::setFrameCount(int c) {
  frames.setTotal(c, numItems);
}
void sxIterator::setItemFrameCount(int c) {
  frames.setItem(c, numItems);
}
void sxIterator::setItemFrameCount(int item, int c) {
  frames.setOne(item, c);
}
int sxIterator::getItemFrameCount(int item) const {
  return frames.perItem.get(item);
}

bool sxIterator::advance() {
  current += step;
  switch (cycle) {
    case ONCE:
      if ((step > 0 && current >= numItems) || (step < 0 && current <= 0)) {
        elapsed = 0.0f;
        return false;
      }
      return true;
    case LOOP:
      if (current >= numItems) current = 0;
      if (current < 0) current = numItems - 1;
      return true;
    case SWING:
      if (current >= numItems || current < 0) {
        step = -step;
        current = numItems == 1 ? 0 : current + 2 * step;
      }
      return true;
    default:
      return false;
  }
}

int sxIterator::update() {
  if (paused || numItems == 0) return current;
  if (current < 0) {
    current = direction ? numItems - 1 : 0;
    if (mode == FRAMES) {
      frameCounter = 1;
    } else {
      lastTime = float(sxGetTime());
      elapsed = 0.0f;
    }
    return current;
  }
  // An item of no duration lasts one update, so that a sequence of such
  // items steps instead of spinning for ever.
  if (mode == FRAMES) {
    ++frameCounter;
    while (frameCounter > getItemFrameCount(current)) {
      int frames = getItemFrameCount(current);
      frameCounter -= frames > 0 ? frames : frameCounter;
      if (!advance()) return -1;
      if (frames <= 0) break;
    }
    return current;
  }
  float now = float(sxGetTime());
  elapsed += now - lastTime;
  while (elapsed >= getItemTime(current)) {
    float t = getItemTime(current);
    elapsed -= t > 0.0f ? t : 0.0f;
    if (!advance()) return -1;
    if (t <= 0.0f) break;
  }
  lastTime = now;
  return current;
}
