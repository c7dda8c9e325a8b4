#pragma once

#include <sx/object/sxBase.h>

#if defined(__SANITIZE_ADDRESS__)
#define SX_TEST_LSAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SX_TEST_LSAN 1
#endif
#endif
#if defined(SX_TEST_LSAN)
#include <sanitizer/lsan_interface.h>
#endif

// Reference counts never free a cycle and nothing in the object model breaks
// one: tests that build cycles on purpose hand one object of each cycle to
// this, so that the leak checker treats the cycle as still in use.
inline void sxKeepCycle([[maybe_unused]] const sxBase* member) {
#if defined(SX_TEST_LSAN)
  __lsan_ignore_object(member);
#endif
}
