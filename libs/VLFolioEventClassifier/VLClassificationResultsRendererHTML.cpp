#include "VLClassificationResultsRendererHTML.h"

#include "VLOwnFileInfo_p.h"

#include <VLCore/VLKomma_p.h>
#include <VLCore/VLPlatformIndependent.h>

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtCore/QScopeGuard>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView style("\t<style>\n"
                                  "\t.Unknown {color: #eeaaaa;}\n"
                                  "\t.Root    {color: #000000;}\n"
                                  "\t.Year    {color: #dd0909;}\n"
                                  "\t.Month   {color: #09dd09;}\n"
                                  "\t.Day     {color: #0909dd;}\n"
                                  "\t.Event   {color: #0707dd;}\n"
                                  "\ttable    {text-align:left; width:100%;}\n"
                                  "\tth       {border-bottom: 2px solid #101010;}\n"
                                  "\ttd       {border-bottom: 1px solid #101010;}\n"
                                  "\t</style>\n");
constexpr QLatin1StringView tableStart("\t\t<table>\n"
                                       "\t\t\t<tr>\n"
                                       "\t\t\t\t<th>Classification</th>\n"
                                       "\t\t\t\t<th>Directory</th>\n"
                                       "\t\t\t\t<th>Count</th>\n"
                                       "\t\t\t\t<th>Occasion</th>\n"
                                       "\t\t\t</tr>\n");
constexpr QLatin1StringView tableEnd("\t\t</table>\n");

// The text is complete before it is logged. A debug stream would log what it has so far when memory
// runs out, from a destructor that must not throw. QMessageLogger is not used, because its format
// would end the text at a null character in a path.
template <typename... Parts>
void log(QtMsgType type, const QMessageLogContext& context, const Parts&... parts)
{
    QString text;
    (QDebug(&text) << ... << parts);
    if (QLoggingCategory::defaultCategory()->isEnabled(type))
        qt_message_output(type, context, text.chopped(1));
}

} // namespace

VLClassificationResultsRendererHTML::VLClassificationResultsRendererHTML(
    const QList<VLEventFolderClassificationResult>& classificationResults, int prefixLength,
    const QStringList& fileNameFilters)
    : rootPathLength(prefixLength)
    , nameFilters(fileNameFilters)
{
    // A shared copy would be detached by sorting, which crashes if there is no memory for it.
    results.append(classificationResults);
    // The results of a walk are often in this order already.
    if (!std::is_sorted(results.cbegin(), results.cend(), isSmaller))
        std::sort(results.begin(), results.end(), isSmaller);
}

VLClassificationResultsRendererHTML::~VLClassificationResultsRendererHTML() = default;

bool VLClassificationResultsRendererHTML::isSmaller(const VLEventFolderClassificationResult& first,
                                                    const VLEventFolderClassificationResult& second)
{
    return VLOwnFileInfo::absolutePath(first.directory())
        < VLOwnFileInfo::absolutePath(second.directory());
}

// The function is not const, because its signature, as the compiler spells it, is logged with the
// messages.
void VLClassificationResultsRendererHTML::renderToFile(const QFileInfo& reportFile)
{
    const QString path = reportFile.absoluteFilePath();
    QFile file(path);
    // Unlike the static function, the member also returns true for a dangling symlink.
    if (file.exists()) {
        const bool removed = file.remove();
        log(QtDebugMsg, { QT_MESSAGELOG_FILE, QT_MESSAGELOG_LINE, QT_MESSAGELOG_FUNC, "default" },
            "removing file", path, "succeeded: ", removed);
    }
    if (file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        QTextStream stream(&file);
        // When an exception passes, the destructor of the stream would write what is left in it,
        // but must not throw. A stream whose status is an error writes nothing.
        const auto silence = qScopeGuard([&stream] { stream.setStatus(QTextStream::WriteFailed); });
        writeHTMLHeader(stream);
        writeTableStart(stream);
        for (const VLEventFolderClassificationResult& result : std::as_const(results))
            writeTableEntry(stream, result);
        stream << tableEnd;
        writeHTMLEnd(stream);
        stream.flush();
        file.close();
    } else {
        log(QtWarningMsg, { QT_MESSAGELOG_FILE, QT_MESSAGELOG_LINE, QT_MESSAGELOG_FUNC, "default" },
            "Could not write to file", reportFile, static_cast<int>(file.error()),
            file.errorString());
    }
    VLPlatformIndependent::instance()->directoryContentsChanged(reportFile.dir());
}

void VLClassificationResultsRendererHTML::writeHTMLHeader(QTextStream& stream) const
{
    stream << "<html>\n"_L1;
    writeStyle(stream);
    stream << "\t<body>\n"_L1;
}

void VLClassificationResultsRendererHTML::writeStyle(QTextStream& stream) const
{
    stream << style;
}

void VLClassificationResultsRendererHTML::writeTableStart(QTextStream& stream) const
{
    stream << tableStart;
}

void VLClassificationResultsRendererHTML::writeTableEntry(
    QTextStream& stream, const VLEventFolderClassificationResult& result) const
{
    const QString path = VLOwnFileInfo::absolutePath(result.directory());
    const QStringList files =
        VLPlatformIndependent::instance()->getDirectFilesInDirectory(QDir(path));
    const VLOccasionInfoList occasions = result.occasionInformation();

    const QString name = result.classification().name();
    const bool isRoot = result.classification() == VLEventFolderTypeEnum::Root;
    const auto writeCell = [&stream](const QString& text) {
        stream << "\t\t\t\t<td>"_L1 << text << "</td>\n"_L1;
    };
    stream << "\t\t\t<tr class="_L1 << name << ">\n"_L1;
    writeCell(name);
    writeCell(isRoot ? path : path.mid(rootPathLength));
    writeCell(QString::number(files.size()));
    // The list's own text for an empty list is spelled differently, "no Data".
    writeCell(occasions.isEmpty() ? u"no data"_s : occasions.description());
    stream << "\t\t\t</tr>\n"_L1;
}

void VLClassificationResultsRendererHTML::writeTableEnd(QTextStream& stream) const
{
    stream << tableEnd;
}

void VLClassificationResultsRendererHTML::writeHTMLEnd(QTextStream& stream) const
{
    stream << "\t</body>\n</html>\n"_L1;
}
