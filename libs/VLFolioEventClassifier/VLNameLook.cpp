#include "VLNameLook_p.h"

#include <VLCore/VLKomma_p.h>

#include <QtCore/QChar>

#include <bitset>
#include <string_view>

namespace {

enum Field : unsigned { Year = 1, Month = 2, Day = 4 };

// Returns the bit of \a character in a set of punctuation, or 0 for anything else.
unsigned punctuationBit(char32_t character)
{
    constexpr std::u32string_view punctuation(U",.-|/");
    const auto position = punctuation.find(character);
    return position == std::u32string_view::npos ? 0U : 1U << position;
}

// Returns the field of a date format that is written as \a length times \a letter, if it is
// numeric. Three letters and more stand for the name of a month or a day, and a single "y" is plain
// text to Qt's parser.
unsigned numberBit(char16_t letter, qsizetype length)
{
    switch (letter) {
    case u'y':
        return length > 1 ? Year : 0U;
    case u'M':
        return length < 3 ? Month : 0U;
    case u'd':
        return length < 3 ? Day : 0U;
    default:
        return 0;
    }
}

qsizetype runLength(const QString& text, qsizetype from)
{
    qsizetype to = from + 1;
    while (to < text.size() && text.at(to) == text.at(from))
        ++to;
    return to - from;
}

bool isSeparator(char16_t unit)
{
    return unit == u' ' || punctuationBit(unit) != 0;
}

} // namespace

VLNameLook::VLNameLook(const QString& name)
    : m_size(name.size())
    , m_beginsWithLetter(!name.isEmpty() && name.front().isLetter())
{
    qsizetype characters = 0;
    for (qsizetype i = 0; i < name.size(); ++i) {
        char32_t character = name.at(i).unicode();
        const QChar next = i + 1 < name.size() ? name.at(i + 1) : QChar();
        if (QChar::isHighSurrogate(character) && next.isLowSurrogate()) {
            character = QChar::surrogateToUcs4(name.at(i), next);
            ++i;
        }
        count(character);
        m_endsWithDigit = QChar::isDigit(character);
        if (m_digits == ++characters)
            m_leadingDigits = characters;
    }
}

void VLNameLook::count(char32_t character)
{
    const int inAscii = character < 0x80 ? 1 : 0;
    if (QChar::isDigit(character)) {
        ++m_digits;
        m_asciiDigits += inAscii;
        m_holdsTwo |= character == U'2';
    } else if (QChar::isSpace(character)) {
        ++m_blanks;
        m_separators += inAscii;
    } else if (const unsigned bit = punctuationBit(character)) {
        m_punctuation |= bit;
        m_separators += character == U'/' ? 0 : 1;
    }
}

bool VLNameLook::cannotBeDateIn(const QString& format) const
{
    unsigned numbers = 0;
    unsigned punctuation = 0;
    qsizetype blanks = 0;
    bool isQuoted = false;
    qsizetype length = 0;
    for (qsizetype i = 0; i < format.size(); i += length) {
        const char16_t unit = format.at(i).unicode();
        length = runLength(format, i);
        if (unit == u'\'' && length % 2 != 0)
            isQuoted = !isQuoted;
        const unsigned number = isQuoted ? 0U : numberBit(unit, length);
        const bool isRuledOut = m_beginsWithLetter || (number != Year && m_leadingDigits > 2);
        if (i == 0 && number != 0 && isRuledOut && length < format.size()
            && isSeparator(format.at(length).unicode()))
            return true;
        numbers |= number;
        if (unit == u' ')
            blanks += length;
        punctuation |= punctuationBit(unit);
    }
    const auto count = static_cast<qsizetype>(std::bitset<3>(numbers).count());
    return m_digits < count || m_blanks < blanks || (punctuation & ~m_punctuation) != 0;
}
