#pragma once

#include <QtCore/QLocale>
#include <QtCore/QString>

/// What one look at a folder name tells of it. Every question is answered by "certainly not" or by
/// "perhaps": each saves a test that could not hold, and none decides anything. Without them the
/// answers would be the same.
class VLNameLook
{
public:
    explicit VLNameLook(const QString& name);

    /// In no locale of Qt 6.4, 6.8 and 6.11 does the name of a day have two digits, a digit before
    /// its end, four blanks or more than 29 UTF-16 code units, 8 in the narrow format. The bounds
    /// of length leave room for longer ones.
    [[nodiscard]] bool cannotBeDayName(QLocale::FormatType formatType) const
    {
        const qsizetype longest = formatType == QLocale::NarrowFormat ? 12 : 39;
        const bool hasDigitWithin = m_digits > (m_endsWithDigit ? 1 : 0);
        return hasDigitWithin || m_blanks >= 4 || m_size > longest;
    }

    /// A date has a digit for each field of \a format that is written in digits, and all of its
    /// punctuation and blanks.
    [[nodiscard]] bool cannotBeDateIn(const QString& format) const;

    /// Qt::TextDate and Qt::RFC2822Date have a day and a year in digits, and three words.
    [[nodiscard]] bool cannotBeFixedFormatDate() const { return m_digits < 2 || m_blanks < 2; }

    /// The least demanding shape of a date has six digits and two separators.
    [[nodiscard]] bool cannotHoldDateShape() const { return m_asciiDigits < 6 || m_separators < 2; }

    /// A year has four digits, one of which is a 2.
    [[nodiscard]] bool cannotHoldYear() const { return m_asciiDigits < 4 || !m_holdsTwo; }

private:
    void lookAtAscii(char16_t unit);
    void lookAtOther(char32_t character);

    qsizetype m_size = 0;
    qsizetype m_asciiDigits = 0;
    // Digits of all scripts.
    qsizetype m_digits = 0;
    qsizetype m_blanks = 0;
    // Characters that may part the numbers of a date's shape.
    qsizetype m_separators = 0;
    // A bit for each of the characters that date formats part their fields with.
    unsigned m_punctuation = 0;
    bool m_holdsTwo = false;
    bool m_endsWithDigit = false;
};
