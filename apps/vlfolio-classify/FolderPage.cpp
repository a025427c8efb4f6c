#include "FolderPage.h"

#include "FolderTree.h"
#include "PageParts.h"
#include "PageText.h"
#include "WholeFile.h"
#include "YearChart.h"

#include <QtCore/QByteArray>
#include <QtCore/QCryptographicHash>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace PageText;

namespace {

struct TypeRow
{
    VLEventFolderTypeEnum type = VLEventFolderTypeEnum::Unknown;
    QLatin1StringView meaning;
};

// The types in the order of the page. Unknown comes last, because those folders remain to be
// checked.
constexpr std::array typeRows {
    TypeRow { VLEventFolderTypeEnum::Root, "the collection itself"_L1 },
    TypeRow { VLEventFolderTypeEnum::Year, "pictures of a year"_L1 },
    TypeRow { VLEventFolderTypeEnum::Month, "pictures of a month"_L1 },
    TypeRow { VLEventFolderTypeEnum::Day, "one day of an event"_L1 },
    TypeRow { VLEventFolderTypeEnum::Event, "pictures of an event"_L1 },
    TypeRow { VLEventFolderTypeEnum::ProjectFolder, "data of a project"_L1 },
    TypeRow { VLEventFolderTypeEnum::Unknown, "none of these"_L1 },
};

QString hashOf(const char* part)
{
    const QByteArray hash = QCryptographicHash::hash(part, QCryptographicHash::Sha256);
    return u"'sha256-"_s + QString::fromLatin1(hash.toBase64()) + u'\'';
}

PageAmount amountOf(const QList<PageFolder>& folders)
{
    PageAmount sum;
    for (const PageFolder& folder : folders)
        sum.add(folder);
    return sum;
}

qsizetype incompleteCount(const QList<PageFolder>& folders)
{
    return std::count_if(folders.cbegin(), folders.cend(),
                         [](const PageFolder& folder) { return !folder.isComplete(); });
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

QString header(const QString& rootPath, const QList<PageFolder>& folders)
{
    const PageAmount all = amountOf(folders);
    QString text =
        u"<header>\n<h1><bdi>%1</bdi></h1>\n<p><bdi>%2</bdi></p>\n<p>%3 in %4</p>\n"_s.arg(
            shown(nameOfRoot(rootPath)), shown(rootPath), fileCount(all.files),
            folderCount(all.folders));
    const auto incomplete = incompleteCount(folders);
    if (incomplete > 0) {
        text += u"<p class=\"warning\">%1 not complete: see below what is left out</p>\n"_s.arg(
            incomplete == 1 ? u"1 folder is"_s : grouped(incomplete) + u" folders are"_s);
    }
    return text + u"</header>\n"_s;
}

QString typeTableRow(const TypeRow& row, const PageAmount& amount)
{
    return uR"(<tr><th scope="row" class="%1">%1</th><td class="meaning">%2</td>)"
           R"(<td class="number">%3</td><td class="number">%4</td></tr>
)"_s.arg(nameOf(row.type), row.meaning, grouped(amount.folders), grouped(amount.files));
}

QString typeTable(const QList<PageFolder>& folders)
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
        PageAmount sum;
        for (const PageFolder& folder : folders) {
            if (folder.isOfType(row.type))
                sum.add(folder);
        }
        text += typeTableRow(row, sum);
    }
    const PageAmount all = amountOf(folders);
    return text
        + uR"(</tbody>
<tfoot><tr><th scope="row">All</th><td class="meaning"></td><td class="number">%1</td>)"
          R"(<td class="number">%2</td></tr></tfoot>
</table>
</section>
)"_s.arg(grouped(all.folders), grouped(all.files));
}

QString choice(const QString& value, const QString& label, qsizetype count, bool isChosen)
{
    return uR"(<label><input type="radio" name="type" value="%1" autocomplete="off"%2><span>%3 <span class="count">%4</span></span></label>
)"_s.arg(value, isChosen ? u" checked"_s : QString(), label, grouped(count));
}

// The controls are hidden until the script shows them, because they do nothing without it.
QString controls(const QList<PageFolder>& folders)
{
    QString text = uR"(<div class="controls" role="search" hidden>
<label>Find a folder <input type="search" id="search" autocomplete="off"></label>
<fieldset>
<legend>Folders to show</legend>
)"_s + choice(QString(), u"All"_s, folders.size(), true);
    for (const TypeRow& row : typeRows) {
        const auto count = std::count_if(folders.cbegin(), folders.cend(), [&](const auto& folder) {
            return folder.isOfType(row.type);
        });
        // A filter for the root would be useless, because the root is always the first row.
        if (count > 0 && row.type != VLEventFolderTypeEnum::Root)
            text += choice(nameOf(row.type), nameOf(row.type), count, false);
    }
    const auto incomplete = incompleteCount(folders);
    if (incomplete > 0)
        text += choice(u"partial"_s, u"Not complete"_s, incomplete, false);
    return text + u"</fieldset>\n<p id=\"status\" role=\"status\">"_s + folderCount(folders.size())
        + u"</p>\n</div>\n"_s;
}

} // namespace

FolderPage::FolderPage(const QString& rootPath, const QList<PageFolder>& folders)
    : m_rootPath(rootPath)
    , m_folders(folders)
{
}

bool FolderPage::write(QFile& file) const
{
    const qsizetype prefix = m_rootPath.endsWith(u'/') ? m_rootPath.size() : m_rootPath.size() + 1;
    const QString start = head(m_rootPath) + header(m_rootPath, m_folders)
        + u"<main>\n<div class=\"overview\">\n"_s + typeTable(m_folders)
        + yearChart(m_folders, prefix)
        + u"</div>\n<section aria-labelledby=\"folders\">\n<div class=\"heading\">\n"
          "<h2 id=\"folders\">Folders</h2>\n<div class=\"controls\" hidden>\n"
          "<button type=\"button\" id=\"unfold\">Unfold all</button>\n"
          "<button type=\"button\" id=\"fold\">Fold all</button>\n</div>\n</div>\n"_s
        + controls(m_folders) + u"<ul id=\"tree\">\n"_s;
    const QString end = u"</ul>\n</section>\n</main>\n<script>"_s + QLatin1StringView(pageScript)
        + u"</script>\n</body>\n</html>\n"_s;
    return WholeFile::writeAll(file, start.toUtf8()) && writeFolderTree(file, m_rootPath, m_folders)
        && WholeFile::writeAll(file, end.toUtf8());
}
