#include "YearChart.h"

#include "PageText.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <numeric>
#include <vector>

using namespace Qt::StringLiterals;
using namespace PageText;

namespace {

// A bar of the chart, which stands for one year folder.
struct Bar
{
    QString label;
    PageAmount amount;
};

// More bars would fill the page.
constexpr qsizetype maximumBars = 60;
constexpr int barDistance = 24;

// Returns a bar for each year, in the order of the tree, and a last one for the folders in no year.
QList<Bar> barsOf(const QList<PageFolder>& folders, qsizetype prefix)
{
    constexpr qsizetype none = 0;
    QList<Bar> bars;
    bars.append({ u"in no year"_s, {} });
    // For each folder on the path to the current one, the position of the bar that it belongs to.
    QList<qsizetype> path;
    for (const PageFolder& folder : folders) {
        path.resize(folder.reason.depth);
        const bool isYear = folder.isOfType(VLEventFolderTypeEnum::Year);
        path.append(isYear ? bars.size() : path.value(path.size() - 1, none));
        if (isYear)
            bars.append({ folder.result.directory().filePath().mid(prefix), {} });
        bars[path.constLast()].amount.add(folder);
    }
    std::rotate(bars.begin(), bars.begin() + 1, bars.end());
    return bars;
}

// Keeps the largest bars, in their order, and adds up the others in one.
QList<Bar> fitting(const QList<Bar>& bars)
{
    if (bars.size() <= maximumBars)
        return bars;
    std::vector<qsizetype> positions(static_cast<size_t>(bars.size()));
    std::iota(positions.begin(), positions.end(), 0);
    std::stable_sort(positions.begin(), positions.end(), [&bars](qsizetype one, qsizetype other) {
        return bars.at(one).amount.folders > bars.at(other).amount.folders;
    });
    const auto othersStart = positions.begin() + maximumBars - 1;
    std::sort(positions.begin(), othersStart);
    QList<Bar> kept;
    for (auto position = positions.begin(); position != othersStart; ++position)
        kept.append(bars.at(*position));
    Bar others { grouped(positions.end() - othersStart) + u" others"_s, {} };
    for (auto position = othersStart; position != positions.end(); ++position)
        others.amount.add(bars.at(*position).amount);
    kept.append(others);
    return kept;
}

// Returns a bar that begins at \a start, followed by its number. Positions and widths are in
// percent of the width of the chart.
QString barOf(QLatin1StringView kind, qsizetype amount, qsizetype largest, double start, int top)
{
    constexpr double fullWidth = 25;
    const double width =
        largest == 0 ? 0 : fullWidth * static_cast<double>(amount) / static_cast<double>(largest);
    return uR"(<rect class="%1" x="%2%" y="%3" width="%4%" height="14" rx="2"/>)"
           R"(<text x="%5%" dx="6" y="%6">%7</text>)"_s.arg(
               kind, QString::number(start), QString::number(top + 5), QString::number(width),
               QString::number(start + width), QString::number(top + 17), grouped(amount));
}

qsizetype largestOf(const QList<Bar>& bars, qsizetype PageAmount::*member)
{
    qsizetype largest = 0;
    for (const Bar& bar : bars)
        largest = std::max(largest, bar.amount.*member);
    return largest;
}

QString inWords(const Bar& bar)
{
    return shown(bar.label) + u": "_s + folderCount(bar.amount.folders) + u", "_s
        + fileCount(bar.amount.files);
}

QString chartText(const QList<Bar>& bars)
{
    QStringList texts;
    for (const Bar& bar : bars)
        texts.append(inWords(bar));
    return texts.join(u"; "_s);
}

// Only the last component of a path is kept, because it says more than those before it.
QString shortened(const QString& path)
{
    const qsizetype nameStart = path.lastIndexOf(u'/') + 1;
    return nameStart > 0 ? u"\u2026/"_s + path.mid(nameStart) : path;
}

QString chartRows(const QList<Bar>& bars)
{
    const qsizetype mostFolders = largestOf(bars, &PageAmount::folders);
    const qsizetype mostFiles = largestOf(bars, &PageAmount::files);
    QString text;
    int top = barDistance;
    for (const Bar& bar : bars) {
        text += u"<g><title>"_s + inWords(bar)
            + u"</title><svg y=\"%1\" width=\"28%\" height=\"24\"><text y=\"17\">"_s.arg(top)
            + shown(shortened(bar.label)) + u"</text></svg>"_s
            + barOf("folders"_L1, bar.amount.folders, mostFolders, 30, top)
            + barOf("files"_L1, bar.amount.files, mostFiles, 66, top) + u"</g>\n"_s;
        top += barDistance;
    }
    return text;
}

} // namespace

QString yearChart(const QList<PageFolder>& folders, qsizetype prefix)
{
    const QList<Bar> bars = fitting(barsOf(folders, prefix));
    if (bars.size() == 1)
        return {};
    const qsizetype height = (bars.size() + 1) * barDistance;
    return uR"(<section aria-labelledby="years">
<h2 id="years">By year</h2>
<svg role="img" aria-label="Folders and files by year" aria-describedby="years-text" width="100%" height="%1">
<desc id="years-text">%2</desc>
<text class="quiet" x="30%" y="14">Folders</text><text class="quiet" x="66%" y="14">Files</text>
)"_s.arg(QString::number(height), chartText(bars))
        + chartRows(bars) + u"</svg>\n</section>\n"_s;
}
