#pragma once

#include <VLFolioEventClassifier/VLEventFolderType.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDate>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// The rules of the classification, evaluated one step after the other and as plainly as they can
/// be written: nothing is skipped, shared or remembered but what must be. It is what the library's
/// answers are compared with, and what its speed is measured against.
///
/// Nothing here calls the library; only the names of the types are its own.
namespace LiteralRules {

/// The two locales that a date is looked for in, in this order.
struct Locales
{
    QLocale defaultLocale;
    QLocale systemLocale;

    /// Those of the process as they are now.
    [[nodiscard]] static Locales current() { return { QLocale(), QLocale::system() }; }
};

/// \internal QLocale::toDate() with 1900 as the base year of two-digit years.
[[nodiscard]] inline QDate toDate(const QLocale& locale, const QString& name,
                                  QLocale::FormatType formatType)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    return locale.toDate(name, formatType, 1900);
#else
    // Has no such parameter and always takes 1900.
    return locale.toDate(name, formatType);
#endif
}

/// \internal
[[nodiscard]] inline bool isDayName(const QLocale& locale, const QString& name,
                                    QLocale::FormatType formatType)
{
    for (int day = 1; day <= 7; ++day) {
        const QString dayName = locale.dayName(day, formatType);
        if (!dayName.isEmpty() && name == dayName)
            return true;
    }
    return false;
}

/// \internal
[[nodiscard]] inline bool isFound(const QRegularExpression& expression, const QString& name)
{
    return expression
        .match(name, 0, QRegularExpression::NormalMatch, QRegularExpression::NoMatchOption)
        .hasMatch();
}

[[nodiscard]] inline bool matchesProject(const QString& name)
{
    return name.endsWith(QStringLiteral("_vlp-Dateien"), Qt::CaseSensitive);
}

[[nodiscard]] inline bool matchesDate(const QString& name, const Locales& wanted)
{
    const QList<QLocale::FormatType> formatTypes { QLocale::LongFormat, QLocale::ShortFormat,
                                                   QLocale::NarrowFormat };
    const QList<QLocale> locales { wanted.defaultLocale, wanted.systemLocale };
    const QList<Qt::DateFormat> dateFormats { Qt::TextDate, Qt::RFC2822Date };

    for (const QLocale& locale : locales) {
        for (const QLocale::FormatType formatType : formatTypes) {
            if (toDate(locale, name, formatType).isValid())
                return true;
            if (isDayName(locale, name, formatType))
                return true;
        }
    }
    for (const Qt::DateFormat dateFormat : dateFormats) {
        if (QDate::fromString(name, dateFormat).isValid())
            return true;
    }
    static const QRegularExpression yearMonthDay(
        QStringLiteral(R"(\d{4}[-|,|.|\s]\d{2}[-|,|.|\s]\d{2})"));
    static const QRegularExpression dayMonthYear(
        QStringLiteral(R"(\d{2}[-|,|.|\s]\d{2}[-|,|.|\s]\d{4})"));
    static const QRegularExpression twoCharYearAndDay(
        QStringLiteral(R"(\d{2}[-|,|.|\s]\d{2}[-|,|.|\s]\d{2})"));
    return isFound(yearMonthDay, name) || isFound(dayMonthYear, name)
        || isFound(twoCharYearAndDay, name);
}

/// The 45 names of the months of \a locale.
[[nodiscard]] inline QStringList monthNames(const QLocale& locale)
{
    QStringList names;
    for (int month = 1; month <= 12; ++month) {
        names.append(locale.monthName(month, QLocale::LongFormat));
        names.append(locale.monthName(month, QLocale::ShortFormat));
        names.append(QString::number(month, 10));
        if (month < 10)
            names.append(QStringLiteral("0") + QString::number(month, 10));
    }
    return names;
}

[[nodiscard]] inline bool matchesMonth(const QString& name, const QStringList& months)
{
    return months.contains(name, Qt::CaseSensitive);
}

[[nodiscard]] inline bool matchesYear(const QString& name)
{
    static const QRegularExpression year(QStringLiteral(R"(2\d{3})"));
    return isFound(year, name);
}

/// The type that the name alone gives. \a months are those of the first default locale that the
/// process asked for.
[[nodiscard]] inline VLEventFolderTypeEnum typeOfName(const QString& name, const Locales& locales,
                                                      const QStringList& months)
{
    if (matchesProject(name))
        return VLEventFolderTypeEnum::ProjectFolder;
    if (matchesDate(name, locales))
        return VLEventFolderTypeEnum::Day;
    if (matchesMonth(name, months))
        return VLEventFolderTypeEnum::Month;
    if (matchesYear(name))
        return VLEventFolderTypeEnum::Year;
    return VLEventFolderTypeEnum::Unknown;
}

/// The type of a folder whose own type and whose parent's type are known.
[[nodiscard]] inline VLEventFolderTypeEnum typeInContext(VLEventFolderTypeEnum own,
                                                         VLEventFolderTypeEnum parent)
{
    const bool belowYear = parent == VLEventFolderTypeEnum::Year;
    const bool belowMonth = parent == VLEventFolderTypeEnum::Month;
    const bool belowEvent = parent == VLEventFolderTypeEnum::Event;
    if (own == VLEventFolderTypeEnum::Unknown && (belowYear || belowMonth))
        return VLEventFolderTypeEnum::Event;
    if (own == VLEventFolderTypeEnum::Year && (belowYear || belowMonth))
        return VLEventFolderTypeEnum::Event;
    if (own == VLEventFolderTypeEnum::Month && belowMonth)
        return VLEventFolderTypeEnum::Event;
    if (own == VLEventFolderTypeEnum::Day && !belowEvent)
        return VLEventFolderTypeEnum::Event;
    return own;
}

/// The walk over the tree below a root.
class Walk
{
public:
    struct Folder
    {
        QFileInfo directory;
        VLEventFolderTypeEnum type;
    };

    /// \a months are those of the first default locale that the process asked for.
    Walk(const QFileInfo& root, const QStringList& months)
        : m_root(root)
        , m_months(months)
    {
    }

    /// \a directory and every folder below it, in pre-order.
    [[nodiscard]] QList<Folder> folders(const QFileInfo& directory,
                                        VLEventFolderTypeEnum parent) const
    {
        if (QCoreApplication::closingDown())
            return {};
        const VLEventFolderTypeEnum type = typeInContext(ownType(directory), parent);
        QList<Folder> found { Folder { directory, type } };
        const QDir dir(directory.absoluteFilePath());
        const QFileInfoList entries =
            dir.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        for (const QFileInfo& entry : entries)
            found.append(folders(entry, type));
        return found;
    }

    /// The type of \a directory by itself.
    [[nodiscard]] VLEventFolderTypeEnum ownType(const QFileInfo& directory) const
    {
        if (directory == m_root)
            return VLEventFolderTypeEnum::Root;
        if (directory.absoluteFilePath().startsWith(QStringLiteral("photokit"), Qt::CaseSensitive))
            return VLEventFolderTypeEnum::Event;
        return typeOfName(directory.fileName(), Locales::current(), m_months);
    }

private:
    QFileInfo m_root;
    QStringList m_months;
};

} // namespace LiteralRules
