#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <vector>

#include "support/sxThreadTestSupport.h"

// sxShutdown ends the kernel for the whole process, so each scenario runs
// in a forked child and answers with its exit code.
namespace {
using namespace sxtest;

// What the child found; 0 when all was well.
enum Outcome { allDone, setUpFailed = 10, notDestroyedOnce, actionsLeft, kernelKept, notClosed };

std::vector<int> closeOrder;

struct RecordingContext : sxRenderContext {
  explicit RecordingContext(int id) : id(id) { ref(); }
  void close() override {
    closeOrder.push_back(id);
    sxRenderContext::close();
  }
  int id;
};

sxThread* newWorker(sxThread::MODE mode) {
  auto* t = new sxThread;
  t->ref();
  t->setThreadMode(mode);
  return t;
}

// A chain of three free-running threads below the application thread, a triggered
// thread never triggered and one never started, all with work queued and deletions
// on their way, and three render contexts of which one is gone again.
int shutdownWithPendingWork() {
  constexpr int objects = 2000, actionsPerThread = 20;
  auto *first = new RecordingContext(1), *third = new RecordingContext(3);
  (new RecordingContext(2))->unRef();  // destroyed contexts leave the list
  if (sxGetRenderContexts().getNum() != 2) return setUpFailed;
  sxThread* app = sxGetAppThread();
  sxThread* t[5];
  for (int k = 0; k < 5; ++k)
    t[k] = newWorker(k == 3 ? sxThread::TRIGGERED : sxThread::FREE_RUNNING);
  if (!app->addDownstreamThread(t[0]) || !t[0]->addDownstreamThread(t[1]) ||
      !t[1]->addDownstreamThread(t[2]) || !app->addDownstreamThread(t[3]) ||
      !app->addDownstreamThread(t[4]))
    return setUpFailed;
  for (int k = 0; k < 4; ++k) t[k]->run();
  const int pending = sxBase::getNumPendingDeletions();
  std::vector<std::atomic<int>> destroyed(objects);
  for (auto& d : destroyed) (new Probe(&d))->unRef();
  std::vector<SlowAction> work(5);
  for (int i = 0; i < actionsPerThread; ++i)
    for (int k = 0; k < 5; ++k) t[k]->addActionToQueue(&work[size_t(k)]);
  const int locks = sxLock::getNum(false), threads = sxThread::getNum(false);
  sxInit(nullptr);
  sxShutdown();
  if (std::ranges::any_of(destroyed, [](auto& d) { return d.load() != 1; }))
    return notDestroyedOnce;
  if (std::ranges::any_of(work, [](auto& w) { return w.count.load() != actionsPerThread; }))
    return actionsLeft;
  // The application thread, the five kernel locks and its queue's lock go.
  if (sxGetAppThread() || sxBase::getNumPendingDeletions() != pending ||
      sxThread::getNum(false) != threads - 1 || sxLock::getNum(false) != locks - 6)
    return kernelKept;
  if (closeOrder != std::vector<int>{3, 1} || !first->isClosed() || !third->isClosed())
    return notClosed;
  return allDone;
}

// Workers still held at exit, running, triggered or never started: the unload clean-up
// stops them and the exit completes (a negative code asks for a normal exit). Held
// here, they stay reachable for the leak checker.
sxThread* heldAtExit[3];

int exitWithWorkersRunning() {
  auto* busy = new CountingAction;
  for (int i = 0; i < 3; ++i) {
    heldAtExit[i] = newWorker(i == 1 ? sxThread::TRIGGERED : sxThread::FREE_RUNNING);
    heldAtExit[i]->addAction(busy);
    heldAtExit[i]->addActionToQueue(busy);
  }
  heldAtExit[0]->addDownstreamThread(heldAtExit[1]);
  heldAtExit[0]->run();
  heldAtExit[1]->run();
  return waitUntil([&] { return busy->count.load() > 2; }) ? -1 : setUpFailed;
}

// A child that hangs is ended by its alarm, which fails the test too.
void expectChildExit(int (*scenario)(), int expected) {
  std::fflush(nullptr);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    alarm(60);
    const int code = scenario();
    if (code >= 0) std::_Exit(code);
    std::exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status)) << "the child ended with signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), expected);
}

TEST(sxShutdown, CarriesOutPendingWorkReleasesTheKernelAndStopsWorkersAtExit) {
  expectChildExit(&shutdownWithPendingWork, allDone);
  expectChildExit(&exitWithWorkersRunning, 0);
}
}  // namespace
