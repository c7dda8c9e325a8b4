#pragma once

// A thread-local whose destructor hands the thread's own state back when
// the thread ends: declare `thread_local sxiThreadExit<hand> x;` and set
// `x.armed` once the thread has state to hand back. Armed late, so that a
// thread that never made any leaves nothing to run.
template <void (*handBack)()>
struct sxiThreadExit {
  bool armed = false;
  ~sxiThreadExit() {
    if (armed) handBack();
  }
};
