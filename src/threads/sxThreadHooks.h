#pragma once

// Installs the ways in which the object model reaches the threads layer:
// the library's locks and the deferred deletion of released objects.
struct sxiThreadHooks {
  static void install();
};
