#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <sys/wait.h>
#include <unistd.h>

#include <vector>

namespace {
std::vector<int> closeOrder;

class RecordingContext : public sxRenderContext {
 public:
  explicit RecordingContext(int id) : id(id) {}
  void close() override {
    closeOrder.push_back(id);
    sxRenderContext::close();
  }
  int id;
};

// Runs body in a child process (shutdown cannot be undone in this one) and
// returns its exit status; a child that hangs is killed by the alarm.
template <class F>
int inChild(F body) {
  std::fflush(nullptr);
  pid_t pid = fork();
  if (pid == 0) {
    alarm(20);
    _exit(body());
  }
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 100 + WTERMSIG(status);
}
}  // namespace

TEST(sxShutdown, ClosesRenderContextsLastFirstAndReleasesKernelObjects) {
  int result = inChild([] {
    auto* a = new RecordingContext(1);
    auto* b = new RecordingContext(2);
    auto* c = new RecordingContext(3);
    a->ref();
    b->ref();
    c->ref();
    b->unRef();  // destroyed contexts leave the list
    if (sxGetRenderContexts().getNum() != 2) return 1;
    int locks = sxLock::getNum(false);
    int threads = sxThread::getNum(false);
    sxInit(nullptr);
    sxShutdown();
    if (closeOrder != std::vector<int>{3, 1}) return 2;
    if (sxGetAppThread() != nullptr) return 3;
    if (sxThread::getNum(false) != threads - 1) return 4;
    // The five kernel locks, and the lock of the application thread's queue.
    if (sxLock::getNum(false) != locks - 6) return 5;
    if (!a->isClosed() || !c->isClosed()) return 6;
    return 0;
  });
  EXPECT_EQ(result, 0);
}
