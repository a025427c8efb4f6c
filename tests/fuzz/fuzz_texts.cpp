// Random paths, types and occasions into the texts that are made of results: render() and the
// report, each compared with a model that shares nothing with the library but Qt.

#include "FuzzedResults.h"
#include "Fuzzing.h"
#include "RawDirectory.h"
#include "ReportText.h"

#include <VLCore/VLPlatformIndependent.h>
#include <VLFolioEventClassifier/VLClassificationResultsRendererHTML.h>
#include <VLFolioEventClassifier/VLEventFolderClassificationResultList.h>

#include <algorithm>
#include <optional>
#include <set>

using namespace Qt::StringLiterals;

namespace {

// As many files as the path has units, so that none needs to exist.
class CountingPlatform : public VLPlatformIndependent
{
public:
    QStringList getDirectFilesInDirectory(const QDir& directory) const override
    {
        return QStringList(directory.path().size(), u"x"_s);
    }
};

using Item = FuzzedResults::Item;

QString pathOf(const Item& item)
{
    return QFileInfo(item.path).absoluteFilePath();
}

QString withoutPrefix(const QString& path, int length)
{
    if (length <= 0)
        return path;
    return length >= path.size() ? QString() : path.last(path.size() - length);
}

// A place marker in a text: "%", perhaps "L", and one digit or two.
struct Marker
{
    qsizetype start;
    qsizetype size;
    int number;
};

// Nothing when a digit of another script is in it: versions of Qt differ in that.
std::optional<QList<Marker>> markersOf(const QString& text)
{
    QList<Marker> markers;
    for (qsizetype i = text.indexOf(u'%'); i >= 0; i = text.indexOf(u'%', i + 1)) {
        qsizetype end = i + 1;
        if (text.mid(end, 1) == u"L")
            ++end;
        int number = 0;
        const qsizetype firstDigit = end;
        for (; end < text.size() && end < firstDigit + 2 && text.at(end).digitValue() >= 0; ++end) {
            if (text.at(end).unicode() > u'9')
                return std::nullopt;
            number = 10 * number + text.at(end).digitValue();
        }
        if (end > firstDigit)
            markers.append({ i, end - i, number });
    }
    return markers;
}

// The markers with the lowest number give way to the replacement.
std::optional<QString> filled(QString text, const QString& replacement)
{
    const auto markers = markersOf(text);
    if (!markers)
        return std::nullopt;
    int lowest = 100;
    for (const Marker& marker : *markers)
        lowest = std::min(lowest, marker.number);
    for (auto marker = markers->crbegin(); marker != markers->crend(); ++marker) {
        if (marker->number == lowest)
            text.replace(marker->start, marker->size, replacement);
    }
    return text;
}

std::optional<QString> rendered(const Item& item, int prefixLength)
{
    const auto line = filled(u"%2 <= %1"_s, withoutPrefix(pathOf(item), prefixLength));
    QString name = FuzzedResults::nameOf(item.type);
    while (name.size() < 7)
        name.prepend(u' ');
    return filled(*line, name);
}

QString occasionText(const Item& item)
{
    QString text;
    for (const FuzzedResults::Occasion& one : item.occasions) {
        char confidence[64] {};
        // Qt signs neither a zero nor what is not a number.
        std::snprintf(confidence, sizeof confidence, "%g", one.confidence + 0.0);
        const QString number = qIsNaN(one.confidence) ? u"nan"_s : QString::fromLatin1(confidence);
        text += (text.isEmpty() ? u""_s : u"; "_s) + one.occasion + u" ("_s + number + u", "_s
            + one.source + u')';
    }
    return item.occasions.isEmpty() ? u"no data"_s : text;
}

QString row(const Item& item, int prefixLength)
{
    const QString path = pathOf(item);
    const QString name = FuzzedResults::nameOf(item.type);
    const QString shown = item.type == 1 ? path : withoutPrefix(path, prefixLength);
    const QString cell = u"\t\t\t\t<td>"_s;
    const QString cellEnd = u"</td>\n"_s;
    return u"\t\t\t<tr class="_s + name + u">\n"_s + cell + name + cellEnd + cell + shown + cellEnd
        + cell + QString::number(QDir(path).path().size()) + cellEnd + cell + occasionText(item)
        + cellEnd + u"\t\t\t</tr>\n"_s;
}

// A text stream writes the replacement character for half a surrogate pair.
QByteArray encoded(const QString& text)
{
    QByteArray bytes;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text.at(i);
        if (unit.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            bytes += text.mid(i++, 2).toUtf8();
        else
            bytes += unit.isSurrogate() ? QByteArray("\xef\xbf\xbd") : QString(unit).toUtf8();
    }
    return bytes;
}

bool comesFirst(const Item& first, const Item& second)
{
    const QString a = pathOf(first);
    const QString b = pathOf(second);
    return std::lexicographical_compare(
        a.cbegin(), a.cend(), b.cbegin(), b.cend(),
        [](QChar left, QChar right) { return left.unicode() < right.unicode(); });
}

void testReport(const FuzzedResults& input, const QString& inputText)
{
    // The order of equal paths is nobody's business.
    QList<Item> items;
    std::set<QString> paths;
    for (const Item& item : input.items) {
        if (paths.insert(pathOf(item)).second)
            items.append(item);
    }
    QList<VLEventFolderClassificationResult> results;
    for (const Item& item : std::as_const(items))
        results.append(FuzzedResults::resultOf(item));
    std::sort(items.begin(), items.end(), comesFirst);
    QByteArray expected = ReportText::lines(1, 20);
    for (const Item& item : std::as_const(items))
        expected += encoded(row(item, input.prefixLength));
    expected += ReportText::lines(21, 23);

    static const RawDirectory directory;
    QFile file(directory.path() + u"/report"_s);
    VLClassificationResultsRendererHTML(results, input.prefixLength, {})
        .renderToFile(QFileInfo(file));
    const QByteArray found = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    file.remove();
    Fuzzing::compare("renderToFile", found, expected, inputText);
}

} // namespace

int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    Q_UNUSED(argc)
    Q_UNUSED(argv)
    static CountingPlatform platform;
    VLPlatformIndependent::setInstance(&platform);
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString inputText =
        QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const FuzzedResults input(data, size);
    QStringList paths;
    for (const Item& item : input.items) {
        const auto expected = rendered(item, input.prefixLength);
        if (expected) {
            Fuzzing::compare("render", FuzzedResults::resultOf(item).render(input.prefixLength),
                             *expected, inputText);
        }
        paths.append(pathOf(item));
    }
    VLEventFolderClassificationResultList list;
    for (const Item& item : input.items)
        list.append(FuzzedResults::resultOf(item));
    Fuzzing::compare("toString", list.toString(), paths.join(u'\n'), inputText);
    testReport(input, inputText);
    return 0;
}
