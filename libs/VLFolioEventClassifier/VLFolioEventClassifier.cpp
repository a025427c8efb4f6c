#include "VLFolioEventClassifier.h"

#include "VLClassificationResultsRendererHTML.h"
#include "VLNameLook_p.h"
#include "VLOwnFileInfo_p.h"
#include "VLSameDirectory_p.h"

#include <VLCore/VLKomma_p.h>
#include <VLCore/VLLogger.h>
#include <VLCore/VLPlatformIndependent.h>
#include <VLCore/VLRegularExpression.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDate>
#include <QtCore/QDir>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringBuilder>
#include <QtCore/QStringList>

#include <algorithm>
#include <array>
#include <new>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView projectSuffix("_vlp-Dateien");
constexpr QLatin1StringView photoLibraryPrefix("photokit");

constexpr std::array formatTypes { QLocale::LongFormat, QLocale::ShortFormat,
                                   QLocale::NarrowFormat };

struct ContextRule
{
    VLEventFolderTypeEnum ownType;
    VLEventFolderTypeEnum parentType;
};

// The types of a directory and its parent for which the directory is an event. Days are not in the
// table, because they are events everywhere but directly below an event.
constexpr std::array eventRules {
    ContextRule { VLEventFolderTypeEnum::Unknown, VLEventFolderTypeEnum::Year },
    ContextRule { VLEventFolderTypeEnum::Unknown, VLEventFolderTypeEnum::Month },
    ContextRule { VLEventFolderTypeEnum::Year, VLEventFolderTypeEnum::Year },
    ContextRule { VLEventFolderTypeEnum::Year, VLEventFolderTypeEnum::Month },
    ContextRule { VLEventFolderTypeEnum::Month, VLEventFolderTypeEnum::Month },
};

bool becomesEvent(const VLEventFolderType& ownType, const VLEventFolderType& parentType)
{
    if (ownType == VLEventFolderTypeEnum::Day)
        return parentType != VLEventFolderTypeEnum::Event;
    return std::any_of(eventRules.cbegin(), eventRules.cend(),
                       [&ownType, &parentType](const ContextRule& rule) {
                           return ownType == rule.ownType && parentType == rule.parentType;
                       });
}

QDate toDate(const QLocale& locale, const QString& name, QLocale::FormatType formatType)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    return locale.toDate(name, formatType, 1900);
#else
    // Older versions of Qt always read two-digit years with this base year, 1900.
    return locale.toDate(name, formatType);
#endif
}

bool isDayName(const QLocale& locale, const QString& name, QLocale::FormatType formatType)
{
    for (int day = 1; day <= 7; ++day) {
        const QString dayName = locale.dayName(day, formatType);
        if (!dayName.isEmpty() && dayName == name)
            return true;
    }
    return false;
}

// Running out of memory shows only as an invalid match. As the patterns are valid, the only other
// cause of that is a name that is not valid UTF-16.
template <typename Expression>
bool isFound(const Expression& expression, const QString& name)
{
    const QRegularExpressionMatch match = expression.match(name, 0, QRegularExpression::NormalMatch,
                                                           QRegularExpression::NoMatchOption);
    if (!match.isValid() && name.isValidUtf16())
        throw std::bad_alloc();
    return match.hasMatch();
}

// Throws if there was no memory to compile the pattern. A static that was to hold the expression
// then stays uninitialized, and the next call tries again.
QRegularExpression compiled(const QString& pattern)
{
    QRegularExpression expression(pattern);
    if (!expression.isValid())
        throw std::bad_alloc();
    return expression;
}

QStringList namesOfMonths(const QLocale& locale)
{
    QStringList names;
    for (int month = 1; month <= 12; ++month) {
        names.append(locale.monthName(month, QLocale::LongFormat));
        names.append(locale.monthName(month, QLocale::ShortFormat));
        names.append(QString::number(month, 10));
        if (month <= 9)
            names.append(u"0"_s.append(QString::number(month, 10)));
    }
    return names;
}

bool isRoot(const QFileInfo& directory, const QFileInfo& root)
{
    return !VLSameDirectory::areCertainlyDifferent(directory, root) && directory == root;
}

// The walk takes a stack frame for each level of a tree, which may have two thousand levels, while
// a thread may have only half a megabyte of stack. The following functions are therefore not
// inlined, so that what they need is not on the stack during the recursion.

// The list is not made from an initializer list, because that crashes if there is no memory for it.
Q_NEVER_INLINE QList<VLEventFolderClassificationResult>
resultsStartingWith(const QFileInfo& directory, VLFolioEventClassifier& classifier,
                    const VLEventFolderClassificationResult& parentResult)
{
    QList<VLEventFolderClassificationResult> results;
    results.append(classifier.contextDependentEventFolderType(directory, parentResult));
    return results;
}

Q_NEVER_INLINE void appendTo(QList<VLEventFolderClassificationResult>& results,
                             QList<VLEventFolderClassificationResult>&& subtree)
{
    results.append(std::move(subtree));
}

// Sorts in the order of QDir::Name. The paths are not made with QDir::filePath(), which takes a
// name such as ":name" for that of a resource.
Q_NEVER_INLINE QFileInfoList subdirectoriesOf(const QFileInfo& directory)
{
    const QDir dir(VLOwnFileInfo::absolutePath(directory));
    const QStringList names =
        VLPlatformIndependent::instance()->getDirectSubdirectoriesInDirectory(dir);
    // The names are not sorted in place, because a list that the service shares would be detached,
    // which crashes if there is no memory for it.
    std::vector<QString> sorted(names.cbegin(), names.cend());
    std::sort(sorted.begin(), sorted.end());

    QString path = dir.path();
    if (!path.endsWith(u'/'))
        path.append(u'/');
    QFileInfoList subdirectories;
    // Joined from a view and a string, since two strings would be joined with room for more, which
    // the results would keep.
    for (const QString& name : std::as_const(sorted))
        subdirectories.append(QFileInfo(QString(QStringView(path) % name)));
    return subdirectories;
}

} // namespace

VLFolioEventClassifier::VLFolioEventClassifier(const QFileInfo& root)
    : rootDirectory(VLOwnFileInfo::detached(root))
{
}

VLFolioEventClassifier::VLFolioEventClassifier(const VLFolioEventClassifier& other)
    : rootDirectory(VLOwnFileInfo::detached(other.rootDirectory))
{
}

VLFolioEventClassifier& VLFolioEventClassifier::operator=(const VLFolioEventClassifier& other)
{
    rootDirectory = VLOwnFileInfo::detached(other.rootDirectory);
    return *this;
}

VLFolioEventClassifier::~VLFolioEventClassifier() = default;

void VLFolioEventClassifier::start()
{
    VLSingleton<VLLogger>::instance()->logFolioService(u"startClassifyEvent"_s);

    const QList<VLEventFolderClassificationResult> results =
        eventFolderTypes(rootDirectory, VLEventFolderClassificationResult());
    const QString rootPath = rootDirectory.absoluteFilePath();
    const QFileInfo reportFile(QDir(rootPath), u"vela.classification.results.html"_s);
    QStringList nameFilters;
    nameFilters.append(u"*.*"_s);
    VLClassificationResultsRendererHTML renderer(results, static_cast<int>(rootPath.size()),
                                                 nameFilters);
    renderer.renderToFile(reportFile);
    VLPlatformIndependent::instance()->openFile(reportFile.absoluteFilePath(), {}, {});
}

QList<VLEventFolderClassificationResult>
VLFolioEventClassifier::eventFolderTypes(const QFileInfo& directory,
                                         const VLEventFolderClassificationResult& parentResult)
{
    if (QCoreApplication::closingDown())
        return {};

    QList<VLEventFolderClassificationResult> results =
        resultsStartingWith(directory, *this, parentResult);
    const QFileInfoList subdirectories = subdirectoriesOf(directory);
    for (const QFileInfo& subdirectory : subdirectories)
        appendTo(results, eventFolderTypes(subdirectory, results.constFirst()));
    return results;
}

VLEventFolderClassificationResult VLFolioEventClassifier::contextDependentEventFolderType(
    const QFileInfo& directory, const VLEventFolderClassificationResult& parentResult)
{
    VLEventFolderClassificationResult result = eventFolderType(directory);
    if (becomesEvent(result.classification(), parentResult.classification()))
        result = VLEventFolderClassificationResult(directory, VLEventFolderTypeEnum::Event);
    return result;
}

VLEventFolderClassificationResult
VLFolioEventClassifier::eventFolderType(const QFileInfo& directory) const
{
    if (isRoot(directory, rootDirectory))
        return { directory, VLEventFolderTypeEnum::Root };
    if (VLOwnFileInfo::absolutePath(directory).startsWith(photoLibraryPrefix, Qt::CaseSensitive))
        return { directory, VLEventFolderTypeEnum::Event };
    return { directory, eventFolderType(directory.fileName()) };
}

VLEventFolderType VLFolioEventClassifier::eventFolderType(const QString& name) const
{
    if (name.endsWith(projectSuffix, Qt::CaseSensitive))
        return VLEventFolderTypeEnum::ProjectFolder;
    if (matchesDate(name))
        return VLEventFolderTypeEnum::Day;
    if (matchesMonth(name))
        return VLEventFolderTypeEnum::Month;
    if (matchesYear(name))
        return VLEventFolderTypeEnum::Year;
    return VLEventFolderTypeEnum::Unknown;
}

bool VLFolioEventClassifier::matchesProject(const QString& name) const
{
    return name.endsWith(projectSuffix, Qt::CaseSensitive);
}

bool VLFolioEventClassifier::matchesApplePhotos(const QString& path) const
{
    return path.startsWith(photoLibraryPrefix, Qt::CaseSensitive);
}

bool VLFolioEventClassifier::matchesDate(const QString& name) const
{
    const VLNameLook look(name);
    const std::array locales { QLocale(), QLocale::system() };
    // If both locales are the same, the second would only give the same answers again.
    const auto* const end = locales.front() == locales.back() ? &locales.back() : locales.end();
    for (const auto* locale = locales.begin(); locale != end; ++locale) {
        for (const QLocale::FormatType formatType : formatTypes) {
            if (!look.cannotBeDateIn(locale->dateFormat(formatType))
                && toDate(*locale, name, formatType).isValid())
                return true;
            if (!look.cannotBeDayName(formatType) && isDayName(*locale, name, formatType))
                return true;
        }
    }
    for (const Qt::DateFormat format : { Qt::TextDate, Qt::RFC2822Date }) {
        if (!look.cannotBeFixedFormatDate() && QDate::fromString(name, format).isValid())
            return true;
    }

    if (look.cannotHoldDateShape())
        return false;
    // Within the brackets, the vertical bar is a separator like the others, not an alternative.
    static const VLRegularExpression expressionYearMonthDay(
        uR"(\d{4}[-|,|.|\s]\d{2}[-|,|.|\s]\d{2})"_s, QRegularExpression::NoPatternOption);
    static const VLRegularExpression expressionDayMonthYear(
        uR"(\d{2}[-|,|.|\s]\d{2}[-|,|.|\s]\d{4})"_s, QRegularExpression::NoPatternOption);
    static const VLRegularExpression expressionTwoCharYearAndDay(
        uR"(\d{2}[-|,|.|\s]\d{2}[-|,|.|\s]\d{2})"_s, QRegularExpression::NoPatternOption);
    return isFound(expressionYearMonthDay, name) || isFound(expressionDayMonthYear, name)
        || isFound(expressionTwoCharYearAndDay, name);
}

bool VLFolioEventClassifier::matchesMonth(const QString& name) const
{
    // The language of the first call is kept, so that a process has one set of month names.
    static const QStringList monthNames = namesOfMonths(QLocale());
    return monthNames.contains(name, Qt::CaseSensitive);
}

bool VLFolioEventClassifier::matchesYear(const QString& name) const
{
    static const QRegularExpression expression = compiled(uR"(2\d{3})"_s);
    return !VLNameLook(name).cannotHoldYear() && isFound(expression, name);
}
