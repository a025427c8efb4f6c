#include <clocale>
#include <cstdlib>

#include <unistd.h>

namespace {

/// Makes the directory that the environment names the root of the file system, once the program's
/// libraries are loaded and before it begins.
[[gnu::constructor]] void changeRoot()
{
    constexpr int setUpFailed = 125;
    const char* const root = std::getenv("VLFOLIO_TEST_ROOT");
    // The new root has no data of locales. Those that are loaded already, the C library keeps.
    std::setlocale(LC_ALL, "");
    if (root == nullptr || chroot(root) != 0 || chdir("/") != 0)
        _exit(setUpFailed);
}

} // namespace
