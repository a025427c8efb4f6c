#include "VLFolioEventClassifier.h"

#include "VLClassificationResultsRendererHTML.h"
#include "VLOwnFileInfo_p.h"

#include <VLCore/VLKomma_p.h>
#include <VLCore/VLLogger.h>
#include <VLCore/VLPlatformIndependent.h>
#include <VLCore/VLRegularExpression.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDate>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView projectSuffix("_vlp-Dateien");
constexpr QLatin1StringView photoLibraryPrefix("photokit");

constexpr std::array formatTypes { QLocale::LongFormat, QLocale::ShortFormat,
                                   QLocale::NarrowFormat };
constexpr std::array dateFormats { Qt::TextDate, Qt::RFC2822Date };

// What the least demanding of the date expressions asks for: two digits, two and two.
constexpr qsizetype shortestShapeDigits = 6;

struct ContextRule
{
    VLEventFolderTypeEnum ownType;
    VLEventFolderTypeEnum parentType;
};

// What is an event because of where it stands. Days are not in it: they are events everywhere but
// directly below an event.
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
    constexpr int baseYear = 1900;
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    return locale.toDate(name, formatType, baseYear);
#else
    // Two-digit years are read with this base year anyway.
    Q_UNUSED(baseYear)
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

bool isDayName(const QLocale& locale, const QString& name)
{
    return std::any_of(formatTypes.cbegin(), formatTypes.cend(),
                       [&locale, &name](QLocale::FormatType formatType) {
                           return isDayName(locale, name, formatType);
                       });
}

// A date is written with all the punctuation of its format, which few names have.
bool holdsPunctuationOf(const QString& format, const QString& name)
{
    constexpr QStringView punctuation = u",./-";
    return std::all_of(format.cbegin(), format.cend(), [&name, punctuation](QChar character) {
        return !punctuation.contains(character) || name.contains(character);
    });
}

// How many numbers a date of this format has at least: of the fields for year, month and day those
// that are written in digits. The text in quotes is no field.
int numbersIn(const QString& format)
{
    const QStringList parts = format.split(u'\'');
    QString fields;
    for (qsizetype i = 0; i < parts.size(); i += 2)
        fields += parts.at(i) + u' ';
    const auto isNumber = [&fields](QChar letter) {
        const QString nameOfMonthOrDay(3, letter);
        return fields.contains(letter) && !fields.contains(nameOfMonthOrDay);
    };
    return int(fields.contains(u'y')) + int(isNumber(u'M')) + int(isNumber(u'd'));
}

bool isLocalDate(const QLocale& locale, const QString& name, qsizetype digitCount)
{
    // Most locales have one format for two of the types, and a parse costs up to two microseconds.
    QStringList tried;
    return std::any_of(formatTypes.cbegin(), formatTypes.cend(),
                       [&locale, &name, &tried, digitCount](QLocale::FormatType formatType) {
                           const QString format = locale.dateFormat(formatType);
                           if (digitCount < numbersIn(format) || tried.contains(format)
                               || !holdsPunctuationOf(format, name)) {
                               return false;
                           }
                           tried.append(format);
                           return toDate(locale, name, formatType).isValid();
                       });
}

bool isFixedFormatDate(const QString& name)
{
    return std::any_of(dateFormats.cbegin(), dateFormats.cend(), [&name](Qt::DateFormat format) {
        return QDate::fromString(name, format).isValid();
    });
}

struct DigitCount
{
    qsizetype ascii = 0;
    qsizetype all = 0;
};

// Counts the decimal digits, those of other scripts and beyond the basic plane included.
DigitCount countDigits(const QString& name)
{
    DigitCount count;
    for (qsizetype i = 0; i < name.size(); ++i) {
        const QChar unit = name.at(i);
        if (unit >= u'0' && unit <= u'9')
            ++count.ascii;
        char32_t character = unit.unicode();
        if (unit.isHighSurrogate() && i + 1 < name.size() && name.at(i + 1).isLowSurrogate())
            character = QChar::surrogateToUcs4(unit, name.at(++i));
        if (QChar::isDigit(character))
            ++count.all;
    }
    return count;
}

// A search that lacked memory says "invalid" and nothing else. Only text that is not UTF-16 cannot
// be searched otherwise: the patterns are good.
bool isFound(const QRegularExpressionMatch& match, const QString& name)
{
    if (!match.isValid() && name.isValidUtf16())
        throw std::bad_alloc();
    return match.hasMatch();
}

bool isFound(const VLRegularExpression& expression, const QString& name)
{
    return isFound(expression.match(name, 0, QRegularExpression::NormalMatch,
                                    QRegularExpression::NoMatchOption),
                   name);
}

// Qt compiles a pattern once and never again, even if it lacked memory.
QRegularExpression compiled(const QString& pattern)
{
    QRegularExpression expression(pattern);
    if (!expression.isValid())
        throw std::bad_alloc();
    return expression;
}

bool holdsDateShape(const QString& name)
{
    // The vertical bars are separators like the other characters of the class.
    static const VLRegularExpression expressionYearMonthDay(
        uR"(\d{4}[-|,|.|\s]\d{2}[-|,|.|\s]\d{2})"_s, QRegularExpression::NoPatternOption);
    static const VLRegularExpression expressionDayMonthYear(
        uR"(\d{2}[-|,|.|\s]\d{2}[-|,|.|\s]\d{4})"_s, QRegularExpression::NoPatternOption);
    static const VLRegularExpression expressionTwoCharYearAndDay(
        uR"(\d{2}[-|,|.|\s]\d{2}[-|,|.|\s]\d{2})"_s, QRegularExpression::NoPatternOption);

    return isFound(expressionYearMonthDay, name) || isFound(expressionDayMonthYear, name)
        || isFound(expressionTwoCharYearAndDay, name);
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

// True for names that no file system takes for one: some do not tell upper case from lower case, or
// one normal form of Unicode from the other.
bool areOtherNames(QStringView first, QStringView second)
{
    const auto isAscii = [](QChar unit) { return unit.unicode() < 0x80; };
    return std::all_of(first.cbegin(), first.cend(), isAscii)
        && std::all_of(second.cbegin(), second.cend(), isAscii)
        && first.compare(second, Qt::CaseInsensitive) != 0;
}

// True when the canonical path of the directory ends with its own name.
bool keepsItsName(const QFileInfo& directory, const QString& name)
{
    return !name.isEmpty() && name != "."_L1 && name != ".."_L1 && !directory.isSymLink();
}

// QFileInfo compares canonical paths, at the cost of a system call for each component of a path.
// This finds most directories different without one: what was no link when it was listed keeps its
// name in its canonical path. Two paths of different files have different canonical paths, too.
// Everything else is for QFileInfo to decide.
bool isCertainlyAnother(const QFileInfo& directory, const QFileInfo& root)
{
    // One path is one directory, even if that comes and goes between two looks at it.
    if (directory.filePath() == root.filePath())
        return false;
    if (!directory.isNativePath() || !root.isNativePath())
        return false;
    const QString name = directory.fileName();
    const QString rootPath = root.canonicalFilePath();
    if (rootPath.isEmpty())
        return false;
    if (keepsItsName(directory, name)
        && areOtherNames(name, QStringView(rootPath).mid(rootPath.lastIndexOf(u'/') + 1))) {
        return true;
    }
    // QFileInfo may remember where a directory was that is gone.
    const std::filesystem::path path(QFile::encodeName(directory.filePath()).constData());
    const std::filesystem::path canonicalRoot(QFile::encodeName(rootPath).constData());
    std::error_code error;
    return std::filesystem::exists(path, error)
        && !std::filesystem::equivalent(path, canonicalRoot, error);
}

// One level of the walk. It lives on the heap, and what works on it is not inlined: a tree may be
// two thousand levels deep, and a thread may have half a megabyte of stack.
struct Level
{
    VLEventFolderClassificationResult result;
    QFileInfoList subdirectories;
};

// In the order of QDir::Name. A path is not joined by QDir, which takes a name such as ":name" for
// that of a resource.
QFileInfoList subdirectoriesOf(const QFileInfo& directory)
{
    const QDir dir(directory.absoluteFilePath());
    const QStringList names =
        VLPlatformIndependent::instance()->getDirectSubdirectoriesInDirectory(dir);
    // Not sorted in place: a list that is shared with the service would be detached, which crashes
    // where there is no memory for it.
    std::vector<QString> sorted(names.cbegin(), names.cend());
    std::sort(sorted.begin(), sorted.end());

    QString path = dir.path();
    if (!path.endsWith(u'/'))
        path.append(u'/');
    QFileInfoList subdirectories;
    for (const QString& name : std::as_const(sorted))
        subdirectories.append(QFileInfo(path + name));
    return subdirectories;
}

Q_NEVER_INLINE std::unique_ptr<const Level>
levelOf(VLFolioEventClassifier& classifier, const QFileInfo& directory,
        const VLEventFolderClassificationResult& parentResult)
{
    return std::make_unique<const Level>(
        Level { classifier.contextDependentEventFolderType(directory, parentResult),
                subdirectoriesOf(directory) });
}

// Appends: a list made of an initializer list crashes where there is no memory for it.
Q_NEVER_INLINE QList<VLEventFolderClassificationResult>
startingWith(const VLEventFolderClassificationResult& result)
{
    QList<VLEventFolderClassificationResult> results;
    results.append(result);
    return results;
}

Q_NEVER_INLINE void moveTo(QList<VLEventFolderClassificationResult>& results,
                           QList<VLEventFolderClassificationResult>&& subtree)
{
    results.append(std::move(subtree));
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

    const std::unique_ptr<const Level> level = levelOf(*this, directory, parentResult);
    QList<VLEventFolderClassificationResult> results = startingWith(level->result);
    for (const QFileInfo& subdirectory : level->subdirectories)
        moveTo(results, eventFolderTypes(subdirectory, level->result));
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
    if (!isCertainlyAnother(directory, rootDirectory) && directory == rootDirectory)
        return { directory, VLEventFolderTypeEnum::Root };
    if (directory.absoluteFilePath().startsWith(photoLibraryPrefix, Qt::CaseSensitive))
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
    // Only the answer counts, not the order: what costs least comes first.
    const DigitCount digits = countDigits(name);
    if (digits.ascii >= shortestShapeDigits && holdsDateShape(name))
        return true;

    const QLocale defaultLocale;
    const QLocale systemLocale = QLocale::system();
    // One locale gives the same answer twice.
    const bool isOneLocale = defaultLocale == systemLocale;
    // No language names a day with two digits.
    if (digits.all < 2
        && (isDayName(defaultLocale, name) || (!isOneLocale && isDayName(systemLocale, name)))) {
        return true;
    }
    return isLocalDate(defaultLocale, name, digits.all)
        || (!isOneLocale && isLocalDate(systemLocale, name, digits.all))
        || (digits.all >= 2 && isFixedFormatDate(name));
}

bool VLFolioEventClassifier::matchesMonth(const QString& name) const
{
    // The language of the first call stays: one process, one set of month folders.
    static const QStringList monthNames = namesOfMonths(QLocale());
    return monthNames.contains(name, Qt::CaseSensitive);
}

bool VLFolioEventClassifier::matchesYear(const QString& name) const
{
    static const QRegularExpression expression = compiled(uR"(2\d{3})"_s);
    // Most names have no such digit, and even a failing search costs more than this look.
    if (!name.contains(u'2'))
        return false;
    return isFound(expression.match(name, 0, QRegularExpression::NormalMatch,
                                    QRegularExpression::NoMatchOption),
                   name);
}
