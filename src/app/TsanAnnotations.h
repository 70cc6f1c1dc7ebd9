#pragma once

// Happens-before edges for ThreadSanitizer where Qt orders two threads inside its own,
// uninstrumented code (its mutexes are bare futexes there, so the sanitizer cannot see them).
// Each use marks a real ordering Qt gives; outside ThreadSanitizer builds they compile to nothing.
// The address names the object both sides agree on: the receiver of a posted call, or the item
// the scene graph synchronizes.

#if defined(__SANITIZE_THREAD__)
#define VIDORA_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VIDORA_TSAN 1
#endif
#endif

#ifdef VIDORA_TSAN
#include <sanitizer/tsan_interface.h>
#define VIDORA_TSAN_RELEASE(object) __tsan_release(const_cast<void*>(static_cast<const void*>(object)))
#define VIDORA_TSAN_ACQUIRE(object) __tsan_acquire(const_cast<void*>(static_cast<const void*>(object)))
#else
#define VIDORA_TSAN_RELEASE(object) static_cast<void>(0)
#define VIDORA_TSAN_ACQUIRE(object) static_cast<void>(0)
#endif
