#pragma once

#include <dlfcn.h>
#include <fcntl.h>

/// The function \a name of the library behind this one, whose own of that name comes first. Each
/// library has a copy of its own: "behind" is counted from the caller.
template <typename Function>
static Function original(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

/// Whether a mode stands behind these flags of open().
inline bool isModeGiven(int flags)
{
#if defined(O_TMPFILE)
    // Several bits, O_DIRECTORY among them.
    if ((flags & O_TMPFILE) == O_TMPFILE)
        return true;
#endif
    return (flags & O_CREAT) != 0;
}
