#pragma once

// Deep recursion without exhausting the stack. The scene graph's passes are
// recursive virtual calls that node kinds and plug-ins override and wrap, so
// they cannot become loops; instead each pass calls its children through
// sxiDeepCall, which carries on on a freshly allocated stack segment when the
// current one runs low and comes back when the call returns.

#include <sx/sxExport.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#define SX_STACK_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SX_STACK_ASAN 1
#endif
#endif

namespace sxiStack {

/// Stack kept free below the point where a guarded call moves to a new
/// segment: room for one level of a pass plus whatever leaf work it does
/// (allocation, messages, a plug-in's callback). AddressSanitizer's frames
/// are several times larger, hence the larger reserve there.
#if defined(SX_STACK_ASAN)
inline constexpr std::size_t reserve = std::size_t(512) << 10;
#else
inline constexpr std::size_t reserve = std::size_t(128) << 10;
#endif

/// Usable size of one segment (it also gets a guard page below). Pages are
/// committed as the recursion reaches them.
inline constexpr std::size_t segmentSize = std::size_t(8) << 20;

/// Lowest frame address at which the calling thread's stack still counts as
/// not low: the bottom of the segment it runs on plus the reserve. It is
/// UINTPTR_MAX until the thread first asks, which sends the first isLow() to
/// the slow path where it is computed. The initial-exec model makes reading
/// it one load.
[[gnu::tls_model("initial-exec")]] extern SX_API constinit thread_local std::uintptr_t limit;

/// The slow half of isLow(): computes the thread's limit on first use.
SX_API bool isLowSlow(std::uintptr_t frame) noexcept;

/// True when less than the reserve remains on the stack segment the calling
/// thread runs on.
inline bool isLow() noexcept {
  // The frame address rather than a local's: AddressSanitizer may place
  // locals on a heap-allocated fake stack.
  auto frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  return frame < limit && isLowSlow(frame);
}

/// Runs fn(arg) on a fresh stack segment of segmentSize bytes and returns
/// when it returns. Segments nest to any depth memory allows and are kept per
/// thread for reuse. When no segment can be had, fn runs on the current
/// stack. fn must not throw: an exception cannot cross a segment switch.
SX_API void runOnNewStack(void (*fn)(void*), void* arg) noexcept;

/// Runs fn(arg) on a new thread whose stack has stackBytes (at least the
/// system's minimum) and waits for it to end. False when no thread could be
/// started. Lets a caller exercise the guard on a small stack.
SX_API bool runOnThread(std::size_t stackBytes, void (*fn)(void*), void* arg) noexcept;

}  // namespace sxiStack

/// Runs f() directly, or on a new stack segment when the current one runs
/// low; returns f's result. f must not throw (std::terminate if it does).
template <class F>
decltype(auto) sxiDeepCall(F&& f) {
  using Result = std::invoke_result_t<F>;
  using Callable = std::remove_reference_t<F>;
  if (!sxiStack::isLow()) return std::invoke(std::forward<F>(f));
  if constexpr (std::is_void_v<Result>) {
    sxiStack::runOnNewStack(
        [](void* p) noexcept { std::invoke(std::forward<F>(*static_cast<Callable*>(p))); }, &f);
  } else {
    // A reference result travels as a pointer, a value in place.
    using Stored =
        std::conditional_t<std::is_reference_v<Result>, std::remove_reference_t<Result>*, Result>;
    struct Call {
      Callable* f;
      std::optional<Stored> result;
    } call{&f, std::nullopt};
    sxiStack::runOnNewStack(
        [](void* p) noexcept {
          auto& c = *static_cast<Call*>(p);
          if constexpr (std::is_reference_v<Result>) {
            Result r = std::invoke(std::forward<F>(*c.f));
            c.result.emplace(std::addressof(r));
          } else {
            c.result.emplace(std::invoke(std::forward<F>(*c.f)));
          }
        },
        &call);
    if constexpr (std::is_reference_v<Result>)
      return static_cast<Result>(**call.result);
    else
      return Result(std::move(*call.result));
  }
}
