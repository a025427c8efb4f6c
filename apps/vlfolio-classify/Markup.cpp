#include "Markup.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

// Returns true if a browser starts a tag or a comment where \a next follows a "<". Before a blank,
// for instance, a "<" is only text.
bool startsMarkup(QChar next)
{
    const char16_t unit = next.unicode();
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') || unit == u'!'
        || unit == u'/' || unit == u'?';
}

// Returns true if there is markup in \a text, at the position \a from or after it.
bool holdsMarkup(const QString& text, qsizetype from)
{
    for (qsizetype sign = text.indexOf(u'<', from); sign >= 0;
         sign = text.indexOf(u'<', sign + 1)) {
        if (sign + 1 < text.size() && startsMarkup(text.at(sign + 1)))
            return true;
    }
    return false;
}

// Returns where markup can begin that is not in the row of the folder above already. That is one
// character before the last slash, because a slash after a name that ends with "<" makes it markup.
qsizetype startOfNewPart(const QString& path)
{
    return std::max<qsizetype>(path.lastIndexOf(u'/') - 1, 0);
}

} // namespace

QStringList Markup::folders(const QList<VLEventFolderClassificationResult>& results,
                            const QString& rootPath)
{
    QStringList found;
    for (const VLEventFolderClassificationResult& result : results) {
        const QString path = result.directory().filePath();
        const bool isShownWhole = result.classification() == VLEventFolderTypeEnum::Root;
        const QString below = path.mid(rootPath.size());
        if (isShownWhole ? holdsMarkup(path, 0) : holdsMarkup(below, startOfNewPart(below)))
            found.append(below.isEmpty() ? path : below.mid(below.startsWith(u'/') ? 1 : 0));
    }
    return found;
}

QString Markup::sentence(const QStringList& folders)
{
    constexpr qsizetype named = 3;
    QStringList examples;
    std::copy_n(folders.cbegin(), std::min(named, folders.size()), std::back_inserter(examples));
    const QString names = u"'%1'"_s.arg(examples.join(u"', '"_s));
    if (folders.size() == 1)
        return u"1 folder name holds markup that a browser would run: "_s + names;
    const qsizetype more = folders.size() - named;
    return QString::number(folders.size())
        + u" folder names hold markup that a browser would run: "_s + names
        + (more > 0 ? u" and %1 more"_s.arg(more) : QString());
}
