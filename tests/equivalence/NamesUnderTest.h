#pragma once

#include <QtCore/QLocale>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Folder names that the matchers are compared on. The same arguments give the same names in every
/// run, in the same order.
namespace NamesUnderTest {

enum class Extent {
    /// About 150 names of a locale, drawn anew for each locale.
    Sample,
    /// All names of a locale, several thousand.
    All,
};

/// Names in the language of \a locale (dates in its formats, words of its calendar, its digits),
/// variations of them, and names in no language.
[[nodiscard]] QStringList ofLocale(const QLocale& locale, Extent extent);

/// "ll_Ssss_CC", which names one of Qt's locales and no other, for an environment, too.
[[nodiscard]] QString fullName(const QLocale& locale);

} // namespace NamesUnderTest
