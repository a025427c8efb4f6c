#include "VLNameLook_p.h"

#include <VLCore/VLKomma_p.h>

#include <QtCore/QChar>

#include <bitset>

namespace {

enum Punctuation : unsigned { Comma = 1, FullStop = 2, Slash = 4, Hyphen = 8 };
enum Field : unsigned { Year = 1, Month = 2, Day = 4 };

unsigned punctuationBit(char16_t unit)
{
    switch (unit) {
    case u',':
        return Comma;
    case u'.':
        return FullStop;
    case u'/':
        return Slash;
    case u'-':
        return Hyphen;
    default:
        return 0;
    }
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

bool isAsciiSpace(char16_t unit)
{
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}

} // namespace

VLNameLook::VLNameLook(const QString& name)
    : m_size(name.size())
{
    for (qsizetype i = 0; i < name.size(); ++i) {
        const qsizetype digitsBefore = m_digits;
        const QChar unit = name.at(i);
        if (unit.unicode() < 0x80)
            lookAtAscii(unit.unicode());
        else if (unit.isHighSurrogate() && i + 1 < name.size() && name.at(i + 1).isLowSurrogate())
            lookAtOther(QChar::surrogateToUcs4(unit, name.at(++i)));
        else
            lookAtOther(unit.unicode());
        m_endsWithDigit = m_digits > digitsBefore;
    }
}

void VLNameLook::lookAtAscii(char16_t unit)
{
    if (unit >= u'0' && unit <= u'9') {
        ++m_digits;
        ++m_asciiDigits;
        m_holdsTwo |= unit == u'2';
    } else if (isAsciiSpace(unit)) {
        ++m_blanks;
        ++m_separators;
    } else if (unit == u'|') {
        ++m_separators;
    } else if (const unsigned bit = punctuationBit(unit)) {
        m_punctuation |= bit;
        if (bit != Slash)
            ++m_separators;
    }
}

void VLNameLook::lookAtOther(char32_t character)
{
    if (QChar::isDigit(character))
        ++m_digits;
    else if (QChar::isSpace(character))
        ++m_blanks;
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
        if (!isQuoted)
            numbers |= numberBit(unit, length);
        if (unit == u' ')
            blanks += length;
        punctuation |= punctuationBit(unit);
    }
    const auto count = static_cast<qsizetype>(std::bitset<3>(numbers).count());
    return m_digits < count || m_blanks < blanks || (punctuation & ~m_punctuation) != 0;
}
