// Annotations that name which lock guards what; the native clang build checks them as errors.
#pragma once

#if defined(__clang__)
#define STELVANE_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define STELVANE_THREAD_ATTRIBUTE(x)
#endif

#define CAPABILITY(name) STELVANE_THREAD_ATTRIBUTE(capability(name))
#define SCOPED_CAPABILITY STELVANE_THREAD_ATTRIBUTE(scoped_lockable)
#define GUARDED_BY(lock) STELVANE_THREAD_ATTRIBUTE(guarded_by(lock))
#define REQUIRES(...) STELVANE_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define EXCLUDES(...) STELVANE_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define ACQUIRE(...) STELVANE_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define RELEASE(...) STELVANE_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
