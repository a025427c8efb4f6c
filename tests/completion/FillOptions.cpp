// Writes the program's options between the two marks of each file, which is its man page or its
// completion for a shell: vlfolio-fill-options FILE...

#include "OptionTable.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

// For example "-h", "--help".
QStringList dashedNames(const OptionRow& row)
{
    QStringList names = QString(row.names).split(u' ');
    for (QString& name : names)
        name.prepend(name.size() == 1 ? u"-"_s : u"--"_s);
    return names;
}

QString quoted(QString text, const QString& quoteWithin)
{
    return u'\'' + text.replace(u'\'', quoteWithin) + u'\'';
}

QString quotedForSh(const QString& text)
{
    return quoted(text, u"'\\''"_s);
}

QStringList manLines(const OptionRow& row)
{
    QStringList names = dashedNames(row);
    names.replaceInStrings(u"-"_s, u"\\-"_s);
    const QString bold = u"\\fB"_s + names.join(u"\\fR, \\fB"_s) + u"\\fR"_s;
    const QString value = row.valueName.isEmpty() ? u""_s : u" \\fI%1\\fR"_s.arg(row.valueName);
    return { u".TP"_s, bold + value, QString(row.description).replace(u"--"_s, u"\\-\\-"_s) };
}

QStringList zshLines(const OptionRow& row)
{
    const QStringList names = dashedNames(row);
    QString text = row.description;
    text.replace(u'[', u"\\["_s).replace(u']', u"\\]"_s);
    QString rest = u'[' + text + u']';
    if (!row.valueName.isEmpty()) {
        rest += u':' + row.valueName + u':';
        rest += row.values.isEmpty() ? u"_vlfolio_classify_locales"_s : u'(' + row.values + u')';
        rest.prepend(u'=');
    }
    if (names.size() == 1)
        return { quotedForSh(names.constFirst() + rest) };
    return { u"'(%1)'{%2}"_s.arg(names.join(u' '), names.join(u',')) + quotedForSh(rest) };
}

QStringList fishLines(const OptionRow& row)
{
    QString line = u"complete -c vlfolio-classify"_s;
    const QStringList names = QString(row.names).split(u' ');
    for (const QString& name : names)
        line += (name.size() == 1 ? u" -s "_s : u" -l "_s) + name;
    if (!row.valueName.isEmpty()) {
        const QString values =
            row.values.isEmpty() ? u"(__vlfolio_classify_locales)"_s : QString(row.values);
        line += u" -x -a "_s + quoted(values, u"\\'"_s);
    }
    return { line + u" -d "_s + quoted(row.description, u"\\'"_s) };
}

QStringList eachOption(QStringList (*lines)(const OptionRow&))
{
    QStringList all;
    for (const OptionRow& row : optionTable)
        all += lines(row);
    return all;
}

// Bash sees all names at once, and values by what stands in front of them.
QStringList bashLines()
{
    QStringList names;
    QStringList cases;
    for (const OptionRow& row : optionTable) {
        names += dashedNames(row);
        if (row.valueName.isEmpty())
            continue;
        const QString words =
            row.values.isEmpty() ? u"$(_vlfolio_classify_locales)"_s : quotedForSh(row.values);
        cases.append(u"%1) words=%2 ;;"_s.arg(dashedNames(row).join(u" | "_s), words));
    }
    return QStringList { u"options="_s + quotedForSh(names.join(u' ')), u"case $previous in"_s }
    + cases + QStringList { u"esac"_s };
}

QStringList linesFor(const QString& suffix)
{
    if (suffix == u"1"_s)
        return eachOption(manLines);
    if (suffix == u"bash"_s)
        return bashLines();
    return eachOption(suffix == u"fish"_s ? fishLines : zshLines);
}

bool fill(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite))
        return false;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    const qsizetype begin = lines.indexOf(QRegularExpression(u".*options: begin"_s));
    const qsizetype end = lines.indexOf(QRegularExpression(u".*options: end"_s));
    if (begin < 0 || end < begin)
        return false;
    const QString indent = lines.at(begin).chopped(lines.at(begin).trimmed().size());
    QStringList filled = lines.mid(0, begin + 1);
    const QStringList options = linesFor(QFileInfo(path).suffix());
    for (const QString& line : options)
        filled.append(indent + line);
    filled += lines.mid(end);
    return file.resize(0) && file.write(filled.join(u'\n').toUtf8()) >= 0 && file.flush();
}

} // namespace

int main(int argc, char* argv[])
{
    for (int i = 1; i < argc; ++i) {
        if (!fill(QFile::decodeName(argv[i]))) {
            std::fprintf(stderr, "vlfolio-fill-options: cannot fill in %s\n", argv[i]);
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}
