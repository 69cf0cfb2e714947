#pragma once

// Clang checks at compile time that data is touched only under the lock named with it. Other
// compilers see nothing of it. These are the project's only macros: attributes cannot be spelt
// portably without them.
#if defined(__clang__)
#define CORVANE_ATTRIBUTE(x) __attribute__((x))
#else
#define CORVANE_ATTRIBUTE(x)
#endif

#define CAPABILITY(x) CORVANE_ATTRIBUTE(capability(x))
#define SCOPED_CAPABILITY CORVANE_ATTRIBUTE(scoped_lockable)
#define GUARDED_BY(x) CORVANE_ATTRIBUTE(guarded_by(x))
#define REQUIRES(...) CORVANE_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define EXCLUDES(...) CORVANE_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define ACQUIRE(...) CORVANE_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define RELEASE(...) CORVANE_ATTRIBUTE(release_capability(__VA_ARGS__))
