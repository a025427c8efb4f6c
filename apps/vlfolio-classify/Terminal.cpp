#include "Terminal.h"

#include <QtCore/QByteArray>
#include <QtCore/QChar>
#include <QtCore/QFile>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// The error of the first write that failed. Later writes that succeed do not undo it.
int firstError = 0;

bool isTerminal(std::FILE* stream)
{
    return isatty(fileno(stream)) == 1;
}

bool steersTerminal(QChar character)
{
    switch (character.direction()) {
    case QChar::DirLRE:
    case QChar::DirLRO:
    case QChar::DirRLE:
    case QChar::DirRLO:
    case QChar::DirPDF:
    case QChar::DirLRI:
    case QChar::DirRLI:
    case QChar::DirFSI:
    case QChar::DirPDI:
        return true;
    default:
        break;
    }
    constexpr char16_t marks[] { u'\u061c', u'\u200e', u'\u200f', u'\u2028', u'\u2029' };
    return character.category() == QChar::Other_Control
        || std::find(std::begin(marks), std::end(marks), character.unicode()) != std::end(marks);
}

void write(std::FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}

} // namespace

void Terminal::occupyClosedStreams()
{
    // Each call returns the lowest free descriptor. The device is opened for reading only, so that
    // writing to a closed stream remains an error.
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0)
        close(descriptor);
}

QString Terminal::errorText(int number)
{
    return QString::fromLocal8Bit(std::strerror(number));
}

bool Terminal::canWriteOverErrorLine()
{
    const QByteArray kind = qgetenv("TERM");
    return !kind.isEmpty() && kind != "dumb" && isTerminal(stderr);
}

int Terminal::errorLineWidth()
{
    constexpr int usualWidth = 80;
    winsize size {};
    const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : usualWidth;
}

QString Terminal::escaped(const QString& text)
{
    QString shown;
    shown.reserve(text.size());
    for (const QChar character : text) {
        if (steersTerminal(character))
            shown += u"\\u%1"_s.arg(static_cast<uint>(character.unicode()), 4, 16, QChar(u'0'));
        else
            shown += character;
    }
    return shown;
}

void Terminal::writeLine(const QString& line)
{
    static const bool toTerminal = isTerminal(stdout);
    errno = 0;
    write(stdout, (toTerminal ? escaped(line) : line) + u'\n');
    if (firstError == 0 && std::ferror(stdout) != 0)
        firstError = errno;
}

bool Terminal::flush()
{
    errno = 0;
    if (std::fflush(stdout) != 0 && firstError == 0)
        firstError = errno;
    if (firstError != 0 && firstError != EPIPE)
        complain(u"cannot write to standard output: %1"_s.arg(errorText(firstError)));
    return firstError == 0;
}

void Terminal::complain(const QString& message)
{
    write(stderr, u"vlfolio-classify: "_s + escaped(message) + u'\n');
}
