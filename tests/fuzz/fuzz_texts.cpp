// Random paths, types and occasions into the texts that are made of results: render() and the
// report, each compared with a model that shares nothing with the library but Qt.

#include "FuzzedResults.h"
#include "Fuzzing.h"
#include "RawDirectory.h"
#include "ReportText.h"

#include <VLCore/VLPlatformIndependent.h>
#include <VLFolioEventClassifier/VLClassificationResultsRendererHTML.h>
#include <VLFolioEventClassifier/VLEventFolderClassificationResultList.h>

#include <QtCore/QTextStream>

#include <algorithm>
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

QString rendered(const Item& item, int prefixLength)
{
    const QString line = u"%2 <= %1"_s.arg(withoutPrefix(pathOf(item), prefixLength));
    return line.arg(FuzzedResults::nameOf(item.type), 7);
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
    QTextStream(&bytes) << text;
    return bytes;
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
    std::sort(items.begin(), items.end(),
              [](const Item& a, const Item& b) { return pathOf(a) < pathOf(b); });
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
        Fuzzing::compare("render", FuzzedResults::resultOf(item).render(input.prefixLength),
                         rendered(item, input.prefixLength), inputText);
        paths.append(pathOf(item));
    }
    VLEventFolderClassificationResultList list;
    for (const Item& item : input.items)
        list.append(FuzzedResults::resultOf(item));
    Fuzzing::compare("toString", list.toString(), paths.join(u'\n'), inputText);
    testReport(input, inputText);
    return 0;
}
