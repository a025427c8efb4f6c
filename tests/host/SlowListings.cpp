#include <chrono>
#include <thread>

#include <dirent.h>
#include <dlfcn.h>

using namespace std::chrono_literals;

/// Takes the place of the C library's function: every listing begins late, as on a disk far away.
extern "C" DIR* opendir(const char* name)
{
    using Function = DIR* (*)(const char*);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "opendir"));
    std::this_thread::sleep_for(100ms);
    return original(name);
}
