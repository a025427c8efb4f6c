#pragma once

#include <QtCore/QString>

#include <array>

using Qt::StringLiterals::operator""_L1;

/// An option of the program. The parser, --help, the man page and the completions of the shells are
/// all fed from these rows.
struct OptionRow
{
    /// Parted by blanks, the short one first.
    QLatin1StringView names;
    /// What the value is called; empty for an option without one.
    QLatin1StringView valueName;
    /// What is offered for the value, parted by blanks; empty for the locales of the system. Some
    /// of those are unknown to Qt, and refused. Asking the program about each one would take
    /// seconds at every press of Tab.
    QLatin1StringView values;
    /// What it does, in whole sentences.
    QLatin1StringView description;
};

inline constexpr std::array optionTable {
    OptionRow { "open"_L1, ""_L1, ""_L1,
                "Open the report even without a desktop or with markup in it."_L1 },
    OptionRow { "no-open"_L1, ""_L1, ""_L1, "Do not open the report."_L1 },
    OptionRow { "list"_L1, ""_L1, ""_L1, "Write no report; print a line for each folder."_L1 },
    OptionRow { "json"_L1, ""_L1, ""_L1,
                "Write no report; print a JSON object for each folder, one a line."_L1 },
    OptionRow { "summary"_L1, ""_L1, ""_L1,
                "Write no report; print how many folders of each type there are."_L1 },
    OptionRow { "why"_L1, ""_L1, ""_L1,
                "With --list: end each line with the reason for the type."_L1 },
    OptionRow { "type"_L1, "NAME"_L1, "Unknown Root Year Month Day Event ProjectFolder"_L1,
                "With --list, --json or --summary: only folders of this type (Unknown, Root, Year, "
                "Month, Day, Event or ProjectFolder, in any letter case)."_L1 },
    OptionRow { "explain"_L1, ""_L1, ""_L1,
                "Take the arguments as folder names and say what each one is by itself. Touches no "
                "file."_L1 },
    OptionRow { "locale"_L1, "NAME"_L1, ""_L1,
                "Read dates and names of days and months in this language, for example de_DE."_L1 },
    OptionRow { "h help"_L1, ""_L1, ""_L1, "Show this help."_L1 },
    OptionRow { "v version"_L1, ""_L1, ""_L1, "Show the version."_L1 },
};
