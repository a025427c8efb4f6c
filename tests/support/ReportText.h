#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtCore/QFile>
#include <QtCore/QString>

/// What a report must consist of, byte by byte.
namespace ReportText {

/// What a run calls its report.
inline constexpr auto reportName = "vela.classification.results.html";

/// The lines \a from to \a to, both included, of a report without results, which has 23. The rows
/// stand between the lines 20 and 21.
[[nodiscard]] inline QByteArray lines(qsizetype from, qsizetype to)
{
    static const QByteArrayList all {
        "<html>\n",
        "\t<style>\n",
        "\t.Unknown {color: #eeaaaa;}\n",
        "\t.Root    {color: #000000;}\n",
        "\t.Year    {color: #dd0909;}\n",
        "\t.Month   {color: #09dd09;}\n",
        "\t.Day     {color: #0909dd;}\n",
        "\t.Event   {color: #0707dd;}\n",
        "\ttable    {text-align:left; width:100%;}\n",
        "\tth       {border-bottom: 2px solid #101010;}\n",
        "\ttd       {border-bottom: 1px solid #101010;}\n",
        "\t</style>\n",
        "\t<body>\n",
        "\t\t<table>\n",
        "\t\t\t<tr>\n",
        "\t\t\t\t<th>Classification</th>\n",
        "\t\t\t\t<th>Directory</th>\n",
        "\t\t\t\t<th>Count</th>\n",
        "\t\t\t\t<th>Occasion</th>\n",
        "\t\t\t</tr>\n",
        "\t\t</table>\n",
        "\t</body>\n",
        "</html>\n",
    };
    return all.mid(from - 1, to - from + 1).join();
}

/// A row with these four texts in it, the first of them also as its class.
[[nodiscard]] inline QByteArray row(const QByteArray& type, const QByteArray& directory,
                                    const QByteArray& count, const QByteArray& occasion)
{
    const auto cell = [](const QByteArray& text) -> QByteArray {
        return "\t\t\t\t<td>" + text + "</td>\n";
    };
    return "\t\t\t<tr class=" + type + ">\n" + cell(type) + cell(directory) + cell(count)
        + cell(occasion) + "\t\t\t</tr>\n";
}

/// The whole report with these rows.
[[nodiscard]] inline QByteArray report(const QByteArrayList& rows)
{
    return lines(1, 20) + rows.join() + lines(21, 23);
}

/// The bytes of the file \a path; a null array when it cannot be read.
[[nodiscard]] inline QByteArray fileContents(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

/// Writes \a contents to the file \a path.
[[nodiscard]] inline bool writeFile(const QString& path, const QByteArray& contents)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
}

} // namespace ReportText
