#pragma once

#include <VLFolioEventClassifier/VLEventFolderType.h>

#include <QtCore/QList>
#include <QtCore/QLocale>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/// What the user asked for, read from the arguments and checked.
struct CommandLine
{
    /// What the program does.
    enum class Action { Report, Page, List, Json, Summary, Explain, Locales, Help, Version };
    /// When the file that is written is opened: if there is a desktop, never, or in any case.
    enum class Opening { Desktop, Never, Always };

    Action action = Action::Report;
    Opening opening = Opening::Desktop;
    /// The types of the folders that List, Json and Summary show; all types if empty.
    QList<VLEventFolderType> types;
    /// The path of the file for Page, as it was given.
    QString page;
    /// Whether each line of List ends with the reason for the type.
    bool why = false;
    /// Patterns of the names of folders that are left out.
    QStringList excluded;
    /// Where the report goes, as it was given; empty for the collection.
    QString output;
    /// The default locale, if it is not that of the system.
    std::optional<QLocale> locale;
    /// The directory, or the names for Explain.
    QStringList operands;

    /// Reads \a arguments, of which the first is the program's name. If they are wrong, returns no
    /// value and sets \a error to one line that says why.
    [[nodiscard]] static std::optional<CommandLine> parse(const QStringList& arguments,
                                                          QString* error);

    /// Returns the text of --help.
    [[nodiscard]] static QString helpText();

    /// Returns the names that --locale takes, which are those of Qt's own locales, sorted.
    [[nodiscard]] static QStringList localeNames();
};
