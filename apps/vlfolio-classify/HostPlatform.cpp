#include "HostPlatform.h"

#include "Terminal.h"

#include <QtCore/QRegularExpression>

#include <algorithm>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

bool holdsMarkup(const QString& name)
{
    // What makes a browser start a tag or a comment. A lone "<" between words does not.
    static const QRegularExpression expression(u"<[A-Za-z!/?]"_s);
    return name.contains(u'<') && expression.match(name).hasMatch();
}

bool hasDesktop()
{
#if defined(Q_OS_MACOS)
    return true;
#else
    return !qEnvironmentVariableIsEmpty("DISPLAY")
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#endif
}

QString sentenceFor(const HostPlatform::Omission& omission)
{
    const QString reason = Terminal::errorText(omission.systemError);
    switch (omission.problem) {
    case HostPlatform::ListingProblem::Unreadable:
        return u"cannot read %1: %2; what is in it is left out"_s.arg(omission.path, reason);
    case HostPlatform::ListingProblem::Unsearchable:
        return u"cannot enter %1: %2; what is below its folders is left out"_s.arg(omission.path,
                                                                                   reason);
    case HostPlatform::ListingProblem::UnknownEntry:
        return u"%1 holds an entry that cannot be looked at: %2; it is left out"_s.arg(
            omission.path, reason);
    case HostPlatform::ListingProblem::UndecodableName:
        break;
    }
    return u"%1 holds names that are not UTF-8: folders of such names are left out"_s.arg(
        omission.path);
}

} // namespace

HostPlatform::HostPlatform(CommandLine::Opening opening)
    : m_opening(opening)
{
    setInstance(this);
}

HostPlatform::~HostPlatform()
{
    setInstance(nullptr);
}

bool HostPlatform::openFile(const QString& path, const QStringList& arguments,
                            const QString& application)
{
    Q_UNUSED(arguments)
    Q_UNUSED(application)
    m_reportPath = path;
    return true;
}

QStringList HostPlatform::getDirectFilesInDirectory(const QDir& directory) const
{
    // The first folder of a report is the root, whose whole path is shown.
    const bool isRoot = m_folderCount.fetch_add(1, std::memory_order_relaxed) == 0;
    if (holdsMarkup(isRoot ? directory.path() : directory.dirName()))
        ++m_markupCount;
    return VLPlatformIndependent::getDirectFilesInDirectory(directory);
}

int HostPlatform::folderCount() const
{
    return m_folderCount.load(std::memory_order_relaxed);
}

QString HostPlatform::reportPath() const
{
    return m_reportPath;
}

void HostPlatform::listingIncomplete(const QDir& directory, ListingProblem problem,
                                     int systemError) const
{
    const auto isSame = [&](const Omission& omission) {
        return omission.problem == problem && omission.systemError == systemError
            && omission.path == directory.path();
    };
    if (std::none_of(m_omissions.cbegin(), m_omissions.cend(), isSame))
        m_omissions.append({ directory.path(), problem, systemError });
}

QList<HostPlatform::Omission> HostPlatform::omissionsIn(const QString& path) const
{
    QList<Omission> found;
    std::copy_if(m_omissions.cbegin(), m_omissions.cend(), std::back_inserter(found),
                 [&path](const Omission& omission) { return omission.path == path; });
    return found;
}

void HostPlatform::tellOmissions() const
{
    for (const Omission& omission : std::as_const(m_omissions))
        Terminal::complain(sentenceFor(omission));
}

void HostPlatform::openReport()
{
    const bool byDefault = m_opening == CommandLine::Opening::Desktop;
    if (m_markupCount > 0) {
        const QString found = m_markupCount == 1
            ? u"1 folder name holds markup that a browser would run"_s
            : u"%1 folder names hold markup that a browser would run"_s.arg(m_markupCount);
        Terminal::complain(byDefault ? found + u"; only --open opens the report"_s : found);
    }
    const bool trusted = byDefault && hasDesktop() && m_markupCount == 0;
    if (trusted || m_opening == CommandLine::Opening::Always)
        VLPlatformIndependent::openFile(m_reportPath, {}, {});
}
