#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

#include <cctype>
#include <cstring>

/// Says whether a text is JSON as RFC 8259 has it, to the letter.
class StrictJson
{
public:
    [[nodiscard]] static bool accepts(QByteArrayView text)
    {
        StrictJson json(text);
        return json.value(0) && json.m_position == text.size();
    }

private:
    explicit StrictJson(QByteArrayView text)
        : m_text(text)
    {
    }

    [[nodiscard]] char peek() const
    {
        return m_position < m_text.size() ? m_text.at(m_position) : '\0';
    }
    [[nodiscard]] bool take(char character)
    {
        if (peek() != character || m_position >= m_text.size())
            return false;
        ++m_position;
        return true;
    }
    void skipBlanks()
    {
        while (peek() != '\0' && std::strchr(" \t\r\n", peek()) != nullptr)
            ++m_position;
    }
    [[nodiscard]] bool word(QByteArrayView expected)
    {
        if (!m_text.sliced(m_position).startsWith(expected))
            return false;
        m_position += expected.size();
        return true;
    }

    bool value(int depth)
    {
        skipBlanks();
        bool isValue = false;
        if (depth > 100)
            return false;
        if (peek() == '{')
            isValue = list('{', '}', [this, depth] {
                skipBlanks();
                const bool hasName = string();
                skipBlanks();
                return hasName && take(':') && value(depth + 1);
            });
        else if (peek() == '[')
            isValue = list('[', ']', [this, depth] { return value(depth + 1); });
        else if (peek() == '"')
            isValue = string();
        else
            isValue = word("true") || word("false") || word("null") || number();
        skipBlanks();
        return isValue;
    }

    template <typename Member>
    bool list(char open, char close, const Member& member)
    {
        if (!take(open))
            return false;
        skipBlanks();
        if (take(close))
            return true;
        do {
            if (!member())
                return false;
        } while (take(','));
        return take(close);
    }

    bool string()
    {
        if (!take('"'))
            return false;
        while (m_position < m_text.size() && peek() != '"') {
            if (take('\\')) {
                if (!escape())
                    return false;
            } else {
                if (static_cast<unsigned char>(peek()) < 0x20)
                    return false;
                ++m_position;
            }
        }
        return take('"');
    }

    // What follows the backslash.
    bool escape()
    {
        if (!take('u'))
            return peek() != '\0' && std::strchr("\"\\/bfnrt", m_text.at(m_position++)) != nullptr;
        for (int digit = 0; digit < 4; ++digit, ++m_position) {
            if (std::isxdigit(static_cast<unsigned char>(peek())) == 0)
                return false;
        }
        return true;
    }

    bool digits()
    {
        const qsizetype start = m_position;
        while (peek() >= '0' && peek() <= '9')
            ++m_position;
        return m_position > start;
    }

    bool number()
    {
        if (peek() == '-')
            ++m_position;
        if (!take('0') && !digits())
            return false;
        if (take('.') && !digits())
            return false;
        if (peek() != 'e' && peek() != 'E')
            return true;
        ++m_position;
        if (peek() == '+' || peek() == '-')
            ++m_position;
        return digits();
    }

    QByteArrayView m_text;
    qsizetype m_position = 0;
};
