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
  if (n < 1) return;
  if (mode == TIME) {
    itemTimes.grow(n);
    itemTimes.fill(n, totalTime > 0.0f ? totalTime / float(n) : itemTime);
  } else {
    itemFrameCounts.grow(n);
    itemFrameCounts.fill(n, totalFrames >= 1 ? totalFrames / n : itemFrames);
  }
}

void sxIterator::reset() {
  current = -1;
  step = direction ? -1 : 1;
}

void sxIterator::setTime(float t) {
  totalTime = t;
  itemTime = 0.0f;
  if (numItems > 0) itemTimes.fill(numItems, t / float(numItems));
}

void sxIterator::setItemTime(float t) {
  itemTime = t;
  totalTime = 0.0f;
  itemTimes.fill(numItems, t);
}

void sxIterator::setItemTime(int item, float t) {
  if (item >= 0 && itemTimes.grow(item + 1)) itemTimes.set(item, t);
}

float sxIterator::getItemTime(int item) const {
  return itemTimes.get(item);
}

void sxIterator::setFrameCount(int c) {
  totalFrames = c;
  itemFrames = 0;
  if (numItems > 0) itemFrameCounts.fill(numItems, c / numItems);
}

void sxIterator::setItemFrameCount(int c) {
  itemFrames = c;
  totalFrames = 0;
  itemFrameCounts.fill(numItems, c);
}

void sxIterator::setItemFrameCount(int item, int c) {
  if (item >= 0 && itemFrameCounts.grow(item + 1)) itemFrameCounts.set(item, c);
}

int sxIterator::getItemFrameCount(int item) const {
  return itemFrameCounts.get(item);
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
