#pragma once

// Helpers of the thread tests: counting actions, objects counting their destruction,
// worker threads that clean up after themselves, and bounded waits (a hang fails the
// test instead of the run).

#include <sx/sxCore.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace sxtest {

// Numbers the applications of counting actions in the order they happen.
inline std::atomic<int> ticks{0};

// Counts its applications and remembers what it was last given.
struct CountingAction : sxAction {
  bool apply(sxBase* object, sxEvent* event) override {
    lastObject.store(object);
    lastEvent.store(event);
    lastThread.store(sxThread::getCurrentThread());
    tick.store(++ticks);
    count.fetch_add(1);
    return result.load();
  }
  std::atomic<int> count{0}, tick{0};
  std::atomic<sxBase*> lastObject{nullptr};
  std::atomic<sxEvent*> lastEvent{nullptr};
  std::atomic<sxThread*> lastThread{nullptr};
  std::atomic<bool> result{true};
};

// Sleeps, then counts: keeps a thread busy, so that a flush has to wait.
struct SlowAction : CountingAction {
  bool apply(sxBase* object, sxEvent* event) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return CountingAction::apply(object, event);
  }
};

// Runs a function as its apply, which then succeeds.
struct FunctionAction : sxAction {
  explicit FunctionAction(std::function<void(sxBase*, sxEvent*)> f) : fn(std::move(f)) {}
  bool apply(sxBase* object, sxEvent* event) override {
    fn(object, event);
    return true;
  }
  std::function<void(sxBase*, sxEvent*)> fn;
};

// Counts its destruction in a slot of its own.
struct Probe : sxBase {
  explicit Probe(std::atomic<int>* destroyed) : slot(destroyed) {}
  ~Probe() override { slot->fetch_add(1); }
  std::atomic<int>* slot;
};

// A new object with one reference, which the handle gives back.
template <class T = CountingAction, class... Args>
sxRef<T> make(Args&&... args) {
  return sxRef<T>(new T(std::forward<Args>(args)...));
}

// Polls pred for at most timeoutMs; true once it holds.
inline bool waitUntil(const std::function<bool()>& pred, int timeoutMs = 20000) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  for (; !pred(); std::this_thread::sleep_for(std::chrono::milliseconds(1)))
    if (std::chrono::steady_clock::now() > end) return false;
  return true;
}

// True when value() does not change across pauseMs.
inline bool staysAt(const std::function<int()>& value, int pauseMs = 50) {
  int before = value();
  std::this_thread::sleep_for(std::chrono::milliseconds(pauseMs));
  return value() == before;
}

// Runs body(0) to body(n - 1) on n threads at once and joins them.
inline void inThreads(int n, const std::function<void(int)>& body) {
  std::vector<std::thread> threads;
  for (int i = 0; i < n; ++i) threads.emplace_back(body, i);
  for (std::thread& t : threads) t.join();
}

// Runs body on a helper thread; a body still running after seconds ends the process
// with a message, so that a deadlock fails the test instead of stalling the run.
inline void withDeadline(const char* what, const std::function<void()>& body, int seconds = 60) {
  std::atomic<bool> done{false};
  std::thread runner([&] {
    body();
    done.store(true);
  });
  if (!waitUntil([&] { return done.load(); }, seconds * 1000)) {
    std::fprintf(stderr, "deadline passed: %s\n", what);
    std::fflush(stderr);
    std::_Exit(3);
  }
  runner.join();
}

// Worker threads of one test and their links. The destructor kills them, removes the
// links, releases them and carries out what that left on the application queue.
struct Pipeline {
  sxThread* add(sxThread::MODE mode = sxThread::FREE_RUNNING, const char* name = nullptr) {
    sxThread* t = new sxThread;
    t->ref();
    t->setThreadMode(mode);
    if (name) t->setName(name);
    threads.push_back(t);
    return t;
  }
  bool link(sxThread* up, sxThread* down) {
    if (!up->addDownstreamThread(down)) return false;
    links.emplace_back(up, down);
    return true;
  }
  // A new thread linked below up.
  sxThread* addBelow(sxThread* up, sxThread::MODE mode = sxThread::FREE_RUNNING) {
    sxThread* t = add(mode);
    return link(up, t) ? t : nullptr;
  }
  // n new threads, each below the one before, the first below above (if given); the
  // first of them, or null when a link failed.
  sxThread* chain(int n, sxThread* above = nullptr) {
    sxThread* first = nullptr;
    for (int i = 0; i < n; ++i) {
      above = above ? addBelow(above) : add();
      if (!above) return nullptr;
      if (!first) first = above;
    }
    return first;
  }
  void runAll() {
    for (sxThread* t : threads) t->run();
  }
  ~Pipeline() {
    for (sxThread* t : threads) t->kill();
    for (auto& [up, down] : links) up->removeDownstreamThread(down);
    for (sxThread* t : threads) t->unRef();
    while (sxGetAppThread()->processQueue(true) > 0) {
    }
  }
  std::vector<sxThread*> threads;
  std::vector<std::pair<sxThread*, sxThread*>> links;
};

// Captures the library's messages while alive.
struct MessageCapture {
  MessageCapture() {
    text().clear();
    sxMessageHandler(&MessageCapture::handler);
  }
  ~MessageCapture() { sxMessageHandler(nullptr); }
  static std::string& text() { return captured; }
  static void handler(char* message) { captured += message; }
  static inline std::string captured;
};

}  // namespace sxtest
