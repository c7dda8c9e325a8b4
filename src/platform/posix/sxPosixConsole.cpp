#include <stdio.h>

#include "platform/sxPlatform.h"

void sxPlatform::makeStdoutUnbuffered() {
  setvbuf(stdout, nullptr, _IONBF, 0);
}
