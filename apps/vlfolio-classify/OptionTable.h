#pragma once

#include <QtCore/QLatin1StringView>

#include <array>

/// An option of the program. The parser, --help, the man page and the completions of the shells are
/// all fed from these rows.
struct OptionRow
{
    /// Parted by blanks, the short one first.
    QLatin1StringView names;
    /// What the value is called; empty for an option without one.
    QLatin1StringView valueName;
    /// What is offered for the value, parted by blanks; empty for the locales of the system.
    QLatin1StringView values;
    /// What it does, in whole sentences.
    QLatin1StringView description;
};

extern const std::array<OptionRow, 10> optionTable;
