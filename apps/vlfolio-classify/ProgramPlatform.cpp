#include "ProgramPlatform.h"

#include "Terminal.h"

#include <QtCore/QFileInfo>
#include <QtCore/QLoggingCategory>
#include <QtCore/QScopeGuard>

#include <algorithm>
#include <csignal>
#include <new>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Returns the folder above \a path, or an empty string for the root of the file system.
QString parentOf(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    if (slash > 0)
        return path.first(slash);
    return path.size() > 1 ? u"/"_s : QString();
}

// Returns the path of the folder above \a path, at any level, to which the symlink at \a path
// leads, or an empty string if it leads elsewhere.
QString folderAbove(const QString& path)
{
    const FileIdentity target(path);
    QString above = parentOf(path);
    while (!above.isEmpty() && !(target == FileIdentity(above)))
        above = parentOf(above);
    return above;
}

} // namespace

ProgramPlatform::ProgramPlatform(const QStringList& excluded)
{
    for (const QString& pattern : excluded) {
        m_exclusions.push_back(
            { pattern, QRegularExpression::fromWildcard(pattern, Qt::CaseSensitive), false });
        // All patterns are valid if there is memory to compile them.
        if (!m_exclusions.back().expression.isValid())
            throw std::bad_alloc();
    }
    setInstance(this);
}

ProgramPlatform::~ProgramPlatform()
{
    setInstance(nullptr);
}

void ProgramPlatform::allowOpening()
{
    m_opens = true;
}

void ProgramPlatform::keepFileCounts()
{
    m_keepsFileCounts = true;
}

void ProgramPlatform::expectFile(const QString& path)
{
    const QFileInfo file(path);
    m_expectedPath = file.absolutePath();
    m_expectedName = file.fileName();
    // A file that exists is listed anyway, by whatever path, where its folder can be read.
    if (!file.isFile())
        m_expectedDirectory = FileIdentity(m_expectedPath);
}

int ProgramPlatform::walkedFolders() const
{
    return m_walkedFolders.load(std::memory_order_relaxed);
}

int ProgramPlatform::countedFolders() const
{
    return m_countedFolders.load(std::memory_order_relaxed);
}

QList<IncompleteListing> ProgramPlatform::incompleteListings(const QString& path) const
{
    const auto entry = m_incomplete.find(path);
    return entry == m_incomplete.cend() ? QList<IncompleteListing>() : entry->second;
}

void ProgramPlatform::tellLeftOut() const
{
    for (const auto& [path, listings] : std::as_const(m_incomplete)) {
        for (const IncompleteListing& listing : listings)
            Terminal::complain(incompleteReason(path, listing));
    }
    for (const Cycle& cycle : std::as_const(m_cycles))
        Terminal::complain(u"%1 leads back to %2, not followed"_s.arg(cycle.symlink, cycle.folder));
    for (const Exclusion& exclusion : m_exclusions) {
        if (!exclusion.matched)
            Terminal::complain(u"--exclude '%1' matched no folder"_s.arg(exclusion.pattern));
    }
}

bool ProgramPlatform::openFile(const QString& path, const QStringList& arguments,
                               const QString& application)
{
    if (!m_opens)
        return true;
    // The program ignores SIGXFSZ. An application that it starts must not inherit that.
    const auto previous = std::signal(SIGXFSZ, SIG_DFL);
    // The warning of the built-in service is not logged, because the program has its own message.
    auto* const category = QLoggingCategory::defaultCategory();
    const bool warned = category->isWarningEnabled();
    category->setEnabled(QtWarningMsg, false);
    const auto restore = qScopeGuard([=] {
        category->setEnabled(QtWarningMsg, warned);
        std::signal(SIGXFSZ, previous);
    });
    return VLPlatformIndependent::openFile(path, arguments, application);
}

QStringList ProgramPlatform::getDirectFilesInDirectory(const QDir& directory) const
{
    m_countedFolders.fetch_add(1, std::memory_order_relaxed);
    const QString path = directory.path();
    QStringList files;
    if (const auto count = keptFileCount(path)) {
        files.resize(*count);
        return files;
    }
    files = VLPlatformIndependent::getDirectFilesInDirectory(directory);
    if (isExpectedIn(path) && !files.contains(m_expectedName))
        files.append(m_expectedName);
    return files;
}

// Folders are asked for in the order of their paths or of the walk, which differ little. The one
// after the last is therefore tried first: a search takes longer the more folders there are.
std::optional<qsizetype> ProgramPlatform::keptFileCount(const QString& path) const
{
    const auto isBefore = [](const FileCount& one, const FileCount& other) {
        return one.path < other.path;
    };
    if (!std::exchange(m_areFileCountsSorted, true)
        && !std::is_sorted(m_fileCounts.cbegin(), m_fileCounts.cend(), isBefore))
        std::sort(m_fileCounts.begin(), m_fileCounts.end(), isBefore);
    const auto isIt = [&](size_t position) {
        return position < m_fileCounts.size() && m_fileCounts[position].path == path;
    };
    size_t position = m_nextFileCount;
    if (!isIt(position)) {
        const auto found = std::lower_bound(m_fileCounts.cbegin(), m_fileCounts.cend(),
                                            FileCount { path }, isBefore);
        position = static_cast<size_t>(found - m_fileCounts.cbegin());
    }
    if (!isIt(position))
        return std::nullopt;
    m_nextFileCount = position + 1;
    return m_fileCounts[position].files;
}

bool ProgramPlatform::isExpectedIn(const QString& path) const
{
    return !m_expectedName.startsWith(u'.')
        && (path == m_expectedPath || m_foldersOfExpected.contains(path));
}

QStringList ProgramPlatform::getDirectSubdirectoriesInDirectory(const QDir& directory) const
{
    m_walkedFolders.fetch_add(1, std::memory_order_relaxed);
    const QString path = directory.path();
    // What the walk finds out here is needed for each folder whose files are counted.
    if (m_expectedDirectory && *m_expectedDirectory == FileIdentity(path))
        m_foldersOfExpected.append(path);
    if (m_symlinks.find(path) != m_symlinks.cend()) {
        if (const QString above = folderAbove(path); !above.isEmpty()) {
            m_cycles.append({ path, above });
            return {};
        }
    }
    QStringList names = VLPlatformIndependent::getDirectSubdirectoriesInDirectory(directory);
    names.removeIf([this](const QString& name) { return isExcluded(name); });
    return names;
}

void ProgramPlatform::listingIncomplete(const QDir& directory, ListingProblem problem,
                                        int systemError) const
{
    QList<IncompleteListing>& listings = m_incomplete[directory.path()];
    const IncompleteListing listing { problem, systemError };
    if (!listings.contains(listing))
        listings.append(listing);
}

void ProgramPlatform::directoryListed(const QDir& directory, const QStringList& symlinks,
                                      qsizetype fileCount) const
{
    const QString path = directory.path();
    for (const QString& name : symlinks)
        m_symlinks.insert(path.endsWith(u'/') ? path + name : path + u'/' + name);
    // An incomplete listing is tried again, and the expected file is looked for by name.
    if (m_keepsFileCounts && fileCount >= 0 && !isExpectedIn(path))
        m_fileCounts.push_back({ path, fileCount });
}

// All patterns are tried even if one has matched already, because the user is told about each that
// matches no folder.
bool ProgramPlatform::isExcluded(const QString& name) const
{
    bool excluded = false;
    for (Exclusion& exclusion : m_exclusions) {
        const QRegularExpressionMatch match = exclusion.expression.match(name);
        // A name that was listed is valid UTF-16, so that only lack of memory remains.
        if (!match.isValid())
            throw std::bad_alloc();
        if (match.hasMatch()) {
            exclusion.matched = true;
            excluded = true;
        }
    }
    return excluded;
}
