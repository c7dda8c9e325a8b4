#include <sx/input/sxKeyboard.h>

SX_DEFINE_CLASS(sxKeyboard)

sxKeyboard::sxKeyboard() : sxQueue(int(sizeof(sxKeyboardData)), 50) {
  setMode(OVERWRITE);
}

bool sxKeyboard::set(sxWindow* window, int code, int value, bool down) {
  if (!down && !collectKeyUp) return false;
  const sxKeyboardData data{window, down, code, value};
  return put(&data);
}

bool sxKeyboard::get(sxKeyboardData& data) {
  return sxQueue::get(&data);
}

bool sxKeyboard::sample(sxKeyboardData& data) const {
  return sxQueue::sample(&data);
}

int sxKeyboard::test() {
  return getClassType() ? getNum() : 0;
}
