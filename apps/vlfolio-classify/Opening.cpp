#include "Opening.h"

#include "Terminal.h"

using namespace Qt::StringLiterals;

namespace {

bool hasDesktop()
{
#if defined(Q_OS_MACOS)
    return true;
#else
    return !qEnvironmentVariableIsEmpty("DISPLAY")
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#endif
}

} // namespace

bool openWritten(ProgramPlatform& platform, const QString& what, const QString& path,
                 CommandLine::Opening opening, bool isTrusted)
{
    const bool isWanted = opening == CommandLine::Opening::Always;
    if (isWanted || (opening == CommandLine::Opening::Desktop && hasDesktop() && isTrusted))
        platform.allowOpening();
    const bool isOpened = platform.openFile(path, {}, {});
    if (!isOpened)
        Terminal::complain(u"cannot open the %1 %2"_s.arg(what, path));
    return isOpened || !isWanted;
}
