#pragma once

#include <QtCore/QString>

#include <array>

using Qt::StringLiterals::operator""_L1;

/// An option of the program, for the parser and --help.
struct OptionRow
{
    /// The names of the option, separated by blanks, with the short one first.
    QLatin1StringView names;
    /// What the value is called; empty for an option without one.
    QLatin1StringView valueName;
    /// What the option does, in whole sentences.
    QLatin1StringView description;
};

inline constexpr std::array optionTable {
    OptionRow { "open"_L1, ""_L1,
                "Open the report even without a desktop or with markup in it."_L1 },
    OptionRow { "no-open"_L1, ""_L1, "Do not open the report."_L1 },
    OptionRow { "output"_L1, "PATH"_L1,
                "Write the report to this file, or into this directory, instead of into "
                "DIRECTORY."_L1 },
    OptionRow { "page"_L1, "FILE"_L1,
                "Write no report; write this HTML page to look at, with the reason for each type, "
                "a chart and a search."_L1 },
    OptionRow { "list"_L1, ""_L1, "Write no report; print a line for each folder."_L1 },
    OptionRow { "json"_L1, ""_L1,
                "Write no report; print a JSON object for each folder, one per line."_L1 },
    OptionRow { "summary"_L1, ""_L1,
                "Write no report; print how many folders of each type there are."_L1 },
    OptionRow { "why"_L1, ""_L1, "With --list: end each line with the reason for the type."_L1 },
    OptionRow {
        "type"_L1, "NAMES"_L1,
        "With --list, --json or --summary: only folders of these types (Unknown, Root, "
        "Year, Month, Day, Event or ProjectFolder, in any letter case, separated by commas). "
        "May be repeated."_L1 },
    OptionRow { "exclude"_L1, "GLOB"_L1,
                "Leave out folders of such names and everything below them, for example @eaDir or "
                "'*.photoslibrary'. May be repeated."_L1 },
    OptionRow { "explain"_L1, ""_L1,
                "Take the arguments as folder names and say what each one is by itself. Touches no "
                "file."_L1 },
    OptionRow { "locale"_L1, "NAME"_L1,
                "Read dates and names of days and months in this language, for example de_DE."_L1 },
    OptionRow { "locales"_L1, ""_L1, "Print the names that --locale takes."_L1 },
    OptionRow { "h help"_L1, ""_L1, "Show this help."_L1 },
    OptionRow { "v version"_L1, ""_L1, "Show the version."_L1 },
};
