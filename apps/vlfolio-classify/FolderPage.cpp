#include "FolderPage.h"

#include "PageParts.h"
#include "Terminal.h"
#include "WholeFile.h"

#include <QtCore/QByteArray>
#include <QtCore/QCryptographicHash>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QLocale>

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Folder = FolderPage::Folder;

struct TypeRow
{
    VLEventFolderTypeEnum type = VLEventFolderTypeEnum::Unknown;
    QLatin1StringView meaning;
};

// As the page lists them. What nobody could place comes last, to be looked at.
constexpr std::array typeRows {
    TypeRow { VLEventFolderTypeEnum::Root, "the collection itself"_L1 },
    TypeRow { VLEventFolderTypeEnum::Year, "pictures of a year"_L1 },
    TypeRow { VLEventFolderTypeEnum::Month, "pictures of a month"_L1 },
    TypeRow { VLEventFolderTypeEnum::Day, "one day of an event"_L1 },
    TypeRow { VLEventFolderTypeEnum::Event, "pictures of an event"_L1 },
    TypeRow { VLEventFolderTypeEnum::ProjectFolder, "data of a project"_L1 },
    TypeRow { VLEventFolderTypeEnum::Unknown, "none of these"_L1 },
};

struct Amount
{
    qsizetype folders = 0;
    qsizetype files = 0;

    void add(const Amount& other)
    {
        folders += other.folders;
        files += other.files;
    }
};

// A bar of the chart: what lies nearest below one year folder.
struct Bar
{
    QString label;
    Amount amount;
};

// More would be a page of their own.
constexpr qsizetype maximumBars = 60;
constexpr int barDistance = 24;

QString nameOf(const VLEventFolderType& type)
{
    return type.enumToStringTable()->nameFor(type.value());
}

// A name that is safe within an element, and shows what would only steer the text around it.
QString shown(const QString& name)
{
    return Terminal::escaped(name).toHtmlEscaped();
}

QString grouped(qsizetype number)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(number);
}

QString counted(qsizetype number, QLatin1StringView one, QLatin1StringView several)
{
    return grouped(number) + u' ' + (number == 1 ? one : several);
}

QString folderCount(qsizetype number)
{
    return counted(number, "folder"_L1, "folders"_L1);
}

QString fileCount(qsizetype number)
{
    return counted(number, "file"_L1, "files"_L1);
}

QString hashOf(const char* part)
{
    const QByteArray hash = QCryptographicHash::hash(part, QCryptographicHash::Sha256);
    return u"'sha256-"_s + QString::fromLatin1(hash.toBase64()) + u'\'';
}

QString nameOfRoot(const QString& rootPath)
{
    const QString name = QFileInfo(rootPath).fileName();
    return name.isEmpty() ? rootPath : name;
}

Amount amountOf(const Folder& folder)
{
    return { 1, folder.fileCount };
}

Amount amountOf(const QList<Folder>& folders)
{
    Amount sum;
    for (const Folder& folder : folders)
        sum.add(amountOf(folder));
    return sum;
}

bool isOfType(const Folder& folder, VLEventFolderTypeEnum type)
{
    return folder.result.classification() == type;
}

bool isIncomplete(const Folder& folder)
{
    return !folder.omission.isEmpty();
}

QString head(const QString& rootPath)
{
    return uR"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src %1; script-src %2; base-uri 'none'; form-action 'none'">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>%3: what its folders are</title>
<style>)"_s.arg(hashOf(pageStyle), hashOf(pageScript), shown(nameOfRoot(rootPath)))
        + QLatin1StringView(pageStyle) + u"</style>\n</head>\n<body>\n"_s;
}

QString header(const QString& rootPath, const QList<Folder>& folders)
{
    const Amount all = amountOf(folders);
    QString text =
        u"<header>\n<h1><bdi>%1</bdi></h1>\n<p><bdi>%2</bdi></p>\n<p>%3 in %4</p>\n"_s.arg(
            shown(nameOfRoot(rootPath)), shown(rootPath), fileCount(all.files),
            folderCount(all.folders));
    const auto incomplete = std::count_if(folders.cbegin(), folders.cend(), isIncomplete);
    if (incomplete > 0) {
        text += u"<p class=\"warning\">%1 not complete: see below what is left out</p>\n"_s.arg(
            incomplete == 1 ? u"1 folder is"_s : grouped(incomplete) + u" folders are"_s);
    }
    return text + u"</header>\n"_s;
}

QString typeTableRow(const TypeRow& row, const Amount& amount)
{
    return uR"(<tr><th scope="row" class="%1">%1</th><td class="meaning">%2</td>)"
           R"(<td class="number">%3</td><td class="number">%4</td></tr>
)"_s.arg(nameOf(row.type), row.meaning, grouped(amount.folders), grouped(amount.files));
}

QString typeTable(const QList<Folder>& folders)
{
    QString text = uR"(<section aria-labelledby="types">
<h2 id="types">By type</h2>
<table>
<thead><tr><th scope="col">Type</th><th scope="col" class="meaning">What it holds</th>)"
                   R"(<th scope="col" class="number">Folders</th>)"
                   R"(<th scope="col" class="number">Files</th></tr></thead>
<tbody>
)"_s;
    for (const TypeRow& row : typeRows) {
        Amount sum;
        for (const Folder& folder : folders) {
            if (isOfType(folder, row.type))
                sum.add(amountOf(folder));
        }
        text += typeTableRow(row, sum);
    }
    const Amount all = amountOf(folders);
    return text
        + uR"(</tbody>
<tfoot><tr><th scope="row">All</th><td class="meaning"></td><td class="number">%1</td>)"
          R"(<td class="number">%2</td></tr></tfoot>
</table>
</section>
)"_s.arg(grouped(all.folders), grouped(all.files));
}

// The position of the year that each folder is or lies nearest below; -1 where there is none.
QList<qsizetype> yearsOf(const QList<Folder>& folders)
{
    QList<qsizetype> years;
    QList<qsizetype> path;
    for (const Folder& folder : folders) {
        path.resize(folder.reason.depth);
        const bool isYear = isOfType(folder, VLEventFolderTypeEnum::Year);
        path.append(isYear ? years.size() : path.value(path.size() - 1, -1));
        years.append(path.constLast());
    }
    return years;
}

// A bar for each year, in the order of the tree, and one for what lies in none.
QList<Bar> barsOf(const QList<Folder>& folders, qsizetype prefix)
{
    const QList<qsizetype> years = yearsOf(folders);
    QHash<qsizetype, qsizetype> positions;
    QList<Bar> bars;
    Bar rest { u"in no year"_s, {} };
    for (qsizetype i = 0; i < folders.size(); ++i) {
        const Amount amount = amountOf(folders.at(i));
        if (years.at(i) == i) {
            positions.insert(i, bars.size());
            bars.append({ folders.at(i).result.directory().absoluteFilePath().mid(prefix), {} });
        }
        (years.at(i) < 0 ? rest : bars[positions.value(years.at(i))]).amount.add(amount);
    }
    if (!bars.isEmpty())
        bars.append(rest);
    return bars;
}

// Keeps the largest bars, in their order, and adds the others up.
QList<Bar> fitting(const QList<Bar>& bars)
{
    if (bars.size() <= maximumBars)
        return bars;
    QList<qsizetype> sizes;
    for (const Bar& bar : bars)
        sizes.append(bar.amount.folders);
    std::sort(sizes.begin(), sizes.end(), std::greater<>());
    const qsizetype smallest = sizes.at(maximumBars - 2);
    QList<Bar> kept;
    Bar rest;
    qsizetype restCount = 0;
    for (const Bar& bar : bars) {
        if (bar.amount.folders >= smallest && kept.size() < maximumBars - 1) {
            kept.append(bar);
        } else {
            rest.amount.add(bar.amount);
            ++restCount;
        }
    }
    rest.label = grouped(restCount) + u" others"_s;
    kept.append(rest);
    return kept;
}

// A bar that begins at \a start and its number, both measured in hundredths of the width.
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

qsizetype largestOf(const QList<Bar>& bars, qsizetype Amount::*member)
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

// Of a path that is long, the end says more than the beginning.
QString shortened(const QString& path)
{
    const qsizetype nameStart = path.lastIndexOf(u'/') + 1;
    return nameStart > 0 ? u"\u2026/"_s + path.mid(nameStart) : path;
}

QString chartRows(const QList<Bar>& bars)
{
    const qsizetype mostFolders = largestOf(bars, &Amount::folders);
    const qsizetype mostFiles = largestOf(bars, &Amount::files);
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

QString chart(const QList<Folder>& folders, qsizetype prefix)
{
    const QList<Bar> bars = fitting(barsOf(folders, prefix));
    if (bars.isEmpty())
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

QString choice(const QString& value, const QString& label, qsizetype count, bool isChosen)
{
    return uR"(<label><input type="radio" name="type" value="%1" autocomplete="off"%2>%3 <span class="count">%4</span></label>
)"_s.arg(value, isChosen ? u" checked"_s : QString(), label, grouped(count));
}

// A script shows them, as without it they do nothing.
QString controls(const QList<Folder>& folders)
{
    QString text = uR"(<div class="controls" role="search" hidden>
<label>Find a folder <input type="search" id="search" autocomplete="off"></label>
<fieldset>
<legend>Folders to show</legend>
)"_s + choice(QString(), u"All"_s, folders.size(), true);
    for (const TypeRow& row : typeRows) {
        const auto count = std::count_if(folders.cbegin(), folders.cend(), [&](const auto& folder) {
            return isOfType(folder, row.type);
        });
        // There is one root, and it is the first row.
        if (count > 0 && row.type != VLEventFolderTypeEnum::Root)
            text += choice(nameOf(row.type), nameOf(row.type), count, false);
    }
    const auto incomplete = std::count_if(folders.cbegin(), folders.cend(), isIncomplete);
    if (incomplete > 0)
        text += choice(u"partial"_s, u"Not complete"_s, incomplete, false);
    return text + u"</fieldset>\n<p id=\"status\" role=\"status\">"_s + folderCount(folders.size())
        + u"</p>\n</div>\n"_s;
}

// What lies below the folder at \a position, at any depth.
Amount amountBelow(const QList<Folder>& folders, qsizetype position)
{
    const qsizetype depth = folders.at(position).reason.depth;
    Amount sum;
    for (qsizetype i = position + 1; i < folders.size() && folders.at(i).reason.depth > depth; ++i)
        sum.add(amountOf(folders.at(i)));
    return sum;
}

// Writes the tree, as lists within lists.
class TreeWriter
{
public:
    TreeWriter(QFile& file, const QString& rootPath, const QList<Folder>& folders)
        : m_file(file)
        , m_rootName(nameOfRoot(rootPath))
        , m_folders(folders)
    {
    }

    [[nodiscard]] bool write()
    {
        constexpr qsizetype pieceSize = 1 << 16;
        QString text;
        for (qsizetype i = 0; i < m_folders.size(); ++i) {
            text += row(i);
            if (text.size() < pieceSize)
                continue;
            if (!WholeFile::writeAll(m_file, text.toUtf8()))
                return false;
            text.clear();
        }
        return WholeFile::writeAll(m_file, (text + ends(0)).toUtf8());
    }

private:
    // Depths begin at 0, and go up by one at most.
    [[nodiscard]] qsizetype depthAt(qsizetype position) const
    {
        return position < m_folders.size() ? m_folders.at(position).reason.depth : 0;
    }

    // The ends of all elements down to those of \a depth.
    QString ends(qsizetype depth)
    {
        QString text;
        while (m_ends.size() > depth)
            text += m_ends.takeLast();
        return text;
    }

    QString row(qsizetype position)
    {
        const Folder& folder = m_folders.at(position);
        const QString text = ends(folder.reason.depth);
        const bool isLeaf = depthAt(position + 1) <= folder.reason.depth;
        const bool folds = !isLeaf && isOfType(folder, VLEventFolderTypeEnum::Year);
        m_ends.append(u"%1%2</li>\n"_s.arg(isLeaf ? QString() : u"</ul>"_s,
                                           folds ? u"</details>"_s : QString()));
        return text + u"<li class=\"%1\">"_s.arg(classesOf(folder, isLeaf))
            + (folds ? u"<details><summary>"_s : QString()) + cells(position, folds)
            + (folds ? u"</summary>"_s : QString()) + (isLeaf ? QString() : u"<ul>\n"_s);
    }

    [[nodiscard]] static QString classesOf(const Folder& folder, bool isLeaf)
    {
        return nameOf(folder.result.classification()) + (isLeaf ? u" leaf"_s : QString())
            + (isIncomplete(folder) ? u" partial"_s : QString());
    }

    [[nodiscard]] QString cells(qsizetype position, bool folds) const
    {
        const Folder& folder = m_folders.at(position);
        const QString none = folder.fileCount == 0 ? u" none"_s : QString();
        return nameCell(position, folds)
            + u"\n<span class=\"type\">%1</span>\n<span class=\"amount%2\">%3</span>\n"
              "<span class=\"why\">%4"_s.arg(nameOf(folder.result.classification()), none,
                                             fileCount(folder.fileCount), folder.reason.text)
            + omission(folder) + u"</span>"_s;
    }

    [[nodiscard]] QString nameCell(qsizetype position, bool folds) const
    {
        const QString name =
            position == 0 ? m_rootName : m_folders.at(position).result.directory().fileName();
        QString cell = u"<bdi>"_s + shown(name) + u"</bdi>"_s;
        if (!folds)
            return cell;
        const Amount below = amountBelow(m_folders, position);
        return u"<span>"_s + cell
            + u"\n<span class=\"below\">%1, %2 below</span></span>"_s.arg(
                folderCount(below.folders), fileCount(below.files));
    }

    [[nodiscard]] static QString omission(const Folder& folder)
    {
        return isIncomplete(folder) ? u"\n<span class=\"incomplete\">not complete: "_s
                + shown(folder.omission) + u"</span>"_s
                                    : QString();
    }

    QFile& m_file;
    QString m_rootName;
    const QList<Folder>& m_folders;
    // What ends the folder that was written last and each one that it lies in.
    QStringList m_ends;
};

} // namespace

FolderPage::FolderPage(const QString& rootPath, const QList<Folder>& folders)
    : m_rootPath(rootPath)
    , m_folders(folders)
{
}

bool FolderPage::write(QFile& file) const
{
    const qsizetype prefix = m_rootPath.endsWith(u'/') ? m_rootPath.size() : m_rootPath.size() + 1;
    const QString start = head(m_rootPath) + header(m_rootPath, m_folders)
        + u"<main>\n<div class=\"overview\">\n"_s + typeTable(m_folders) + chart(m_folders, prefix)
        + u"</div>\n<section aria-labelledby=\"folders\">\n<div class=\"heading\">\n"
          "<h2 id=\"folders\">Folders</h2>\n<div class=\"controls\" hidden>\n"
          "<button type=\"button\" id=\"unfold\">Unfold all</button>\n"
          "<button type=\"button\" id=\"fold\">Fold all</button>\n</div>\n</div>\n"_s
        + controls(m_folders) + u"<ul id=\"tree\">\n"_s;
    const QString end = u"</ul>\n</section>\n</main>\n<script>"_s + QLatin1StringView(pageScript)
        + u"</script>\n</body>\n</html>\n"_s;
    return WholeFile::writeAll(file, start.toUtf8())
        && TreeWriter(file, m_rootPath, m_folders).write()
        && WholeFile::writeAll(file, end.toUtf8());
}
