#pragma once

#include <QtCore/QLocale>
#include <QtCore/QString>

/// Counts the digits, blanks and punctuation of a folder name in one pass, in order to skip tests
/// that the name cannot meet. It saves time and decides nothing: where it does not rule a test out,
/// the test is made.
class VLNameLook
{
public:
    explicit VLNameLook(const QString& name);

    /// In no locale of Qt 6.4, 6.8 and 6.11 does the name of a day have two digits, a digit before
    /// its end, four blanks, or more than 29 UTF-16 code units (8 in the narrow format). The limits
    /// of the length leave room for longer names.
    [[nodiscard]] bool cannotBeDayName(QLocale::FormatType formatType) const
    {
        const qsizetype longest = formatType == QLocale::NarrowFormat ? 12 : 39;
        const bool hasDigitWithin = m_digits > (m_endsWithDigit ? 1 : 0);
        return hasDigitWithin || m_blanks >= 4 || m_size > longest;
    }

    /// A date has at least one digit for each numeric field of \a format, and all of its
    /// punctuation and blanks. If the format begins with a number and a separator, the date does
    /// not begin with a letter, nor with three digits if the number is a day or a month.
    [[nodiscard]] bool cannotBeDateIn(const QString& format) const;

    /// In the formats Qt::TextDate and Qt::RFC2822Date, a date has at least three words, among them
    /// a day and a year in digits.
    [[nodiscard]] bool cannotBeFixedFormatDate() const { return m_digits < 2 || m_blanks < 2; }

    /// The shortest shape of a date has six digits and two separators.
    [[nodiscard]] bool cannotHoldDateShape() const { return m_asciiDigits < 6 || m_separators < 2; }

    /// A year has four digits, one of which is a 2.
    [[nodiscard]] bool cannotHoldYear() const { return m_asciiDigits < 4 || !m_holdsTwo; }

private:
    void count(char32_t character);

    qsizetype m_size = 0;
    qsizetype m_asciiDigits = 0;
    // Digits of all scripts.
    qsizetype m_digits = 0;
    // How many digits the name begins with.
    qsizetype m_leadingDigits = 0;
    bool m_beginsWithLetter = false;
    qsizetype m_blanks = 0;
    // Characters that may separate the numbers in the shape of a date.
    qsizetype m_separators = 0;
    // The set of the characters of the name that may separate the fields of a date format.
    unsigned m_punctuation = 0;
    bool m_holdsTwo = false;
    bool m_endsWithDigit = false;
};
