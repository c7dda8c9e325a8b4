#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

#include "support/sxThreadTestSupport.h"

namespace {

using namespace sxtest;

// What the child found; 0 when all was well.
enum Outcome {
  allDone = 0,
  notDestroyedOnce = 10,
  stillPending,
  actionsLeft,
  appThreadKept,
  setUpFailed,
  contextsNotClosed,
  kernelObjectsKept,
};

std::vector<int> closeOrder;

class RecordingContext : public sxRenderContext {
 public:
  explicit RecordingContext(int id) : id(id) { ref(); }
  void close() override {
    closeOrder.push_back(id);
    sxRenderContext::close();
  }
  int id;
};

class SlowAction : public CountingAction {
 public:
  bool apply(sxBase* object, sxEvent* event) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return CountingAction::apply(object, event);
  }
};

sxThread* newWorker(sxThread::MODE mode) {
  auto* t = new sxThread;
  t->ref();
  t->setThreadMode(mode);
  return t;
}

// Runs in the child: a chain of three free-running threads below the
// application thread, plus one triggered thread that is never triggered
// and one that is never started, all with work queued and deletions on
// their way, and three render contexts of which one is gone again, then
// sxShutdown.
int shutdownWithPendingWork() {
  constexpr int objects = 2000, actionsPerThread = 20;
  auto* first = new RecordingContext(1);
  (new RecordingContext(2))->unRef();  // destroyed contexts leave the list
  auto* third = new RecordingContext(3);
  if (sxGetRenderContexts().getNum() != 2) return setUpFailed;
  sxThread* app = sxGetAppThread();
  sxThread* a = newWorker(sxThread::FREE_RUNNING);
  sxThread* b = newWorker(sxThread::FREE_RUNNING);
  sxThread* c = newWorker(sxThread::FREE_RUNNING);
  sxThread* triggered = newWorker(sxThread::TRIGGERED);
  sxThread* idle = newWorker(sxThread::FREE_RUNNING);
  if (!app->addDownstreamThread(a) || !a->addDownstreamThread(b) || !b->addDownstreamThread(c) ||
      !app->addDownstreamThread(triggered) || !app->addDownstreamThread(idle))
    return setUpFailed;
  for (sxThread* t : {a, b, c, triggered}) t->run();

  const int pending = sxBase::getNumPendingDeletions();
  std::vector<std::atomic<int>> destroyed(objects);
  for (auto& d : destroyed) (new Probe(&d))->unRef();

  std::vector<SlowAction> work(5);
  sxThread* targets[] = {a, b, c, triggered, idle};
  for (int i = 0; i < actionsPerThread; ++i)
    for (int k = 0; k < 5; ++k) targets[k]->addActionToQueue(&work[size_t(k)]);

  const int locks = sxLock::getNum(false), threads = sxThread::getNum(false);

  sxInit(nullptr);
  sxShutdown();

  if (sxGetAppThread() != nullptr) return appThreadKept;
  if (closeOrder != std::vector<int>{3, 1} || !first->isClosed() || !third->isClosed())
    return contextsNotClosed;
  // The application thread, the five kernel locks and its queue's lock go.
  if (sxThread::getNum(false) != threads - 1 || sxLock::getNum(false) != locks - 6)
    return kernelObjectsKept;
  for (auto& d : destroyed)
    if (d.load() != 1) return notDestroyedOnce;
  if (sxBase::getNumPendingDeletions() != pending) return stillPending;
  for (auto& w : work)
    if (w.count.load() != actionsPerThread) return actionsLeft;
  return allDone;
}

// Runs scenario in a forked child under two watchdogs (one in the child,
// one here) and returns the child's exit code; a hang or a signal fails.
void expectChildExit(int (*scenario)(), int expected) {
  std::fflush(nullptr);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    alarm(60);
    const int code = scenario();
    if (code >= 0) std::_Exit(code);
    std::exit(0);  // a negative code asks for a normal exit with its clean-ups
  }
  int status = 0;
  bool ended = false;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(90);
  while (std::chrono::steady_clock::now() < deadline) {
    if (waitpid(child, &status, WNOHANG) == child) {
      ended = true;
      break;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  if (!ended) {
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    FAIL() << "the child did not finish";
  }
  ASSERT_TRUE(WIFEXITED(status)) << "the child ended with signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), expected);
}

TEST(sxShutdown, CarriesOutPendingWorkClosesContextsAndReleasesTheKernel) {
  // sxShutdown ends the kernel for the whole process, so it runs in a child.
  expectChildExit(&shutdownWithPendingWork, allDone);
}

// Workers the application still holds when the process exits: the unload
// clean-up stops them, whatever they are doing, and the exit completes.
sxThread* leftRunning[3];

int exitWithWorkersRunning() {
  auto* busy = new CountingAction;
  for (int i = 0; i < 3; ++i) {
    leftRunning[i] = newWorker(i == 1 ? sxThread::TRIGGERED : sxThread::FREE_RUNNING);
    leftRunning[i]->addAction(busy);
    leftRunning[i]->addActionToQueue(busy);
  }
  leftRunning[0]->addDownstreamThread(leftRunning[1]);
  leftRunning[0]->run();
  leftRunning[1]->run();  // leftRunning[2] is never started
  if (!sxtest::waitUntil([&] { return busy->count.load() > 2; })) return setUpFailed;
  return -1;
}

TEST(sxShutdown, WorkersStillRunningAtExitAreStopped) {
  expectChildExit(&exitWithWorkersRunning, 0);
}

}  // namespace
