#pragma once

/// Annotations that clang's thread-safety analysis checks, and that are empty elsewhere.
///
/// A field says by which lock it is guarded, a function which lock its caller must hold:
///
///     std::deque<Letter> letters_ ZARVO_GUARDED_BY(mutex_);
///     void drop() ZARVO_REQUIRES(mutex_);

#if defined(__clang__)
#define ZARVO_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define ZARVO_THREAD_ANNOTATION(x)
#endif

#define ZARVO_CAPABILITY(name) ZARVO_THREAD_ANNOTATION(capability(name))
#define ZARVO_SCOPED_CAPABILITY ZARVO_THREAD_ANNOTATION(scoped_lockable)
#define ZARVO_GUARDED_BY(lock) ZARVO_THREAD_ANNOTATION(guarded_by(lock))
#define ZARVO_PT_GUARDED_BY(lock) ZARVO_THREAD_ANNOTATION(pt_guarded_by(lock))
#define ZARVO_REQUIRES(...) ZARVO_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define ZARVO_EXCLUDES(...) ZARVO_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define ZARVO_ACQUIRE(...) ZARVO_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define ZARVO_TRY_ACQUIRE(...) ZARVO_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define ZARVO_RELEASE(...) ZARVO_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define ZARVO_NO_THREAD_SAFETY_ANALYSIS ZARVO_THREAD_ANNOTATION(no_thread_safety_analysis)
