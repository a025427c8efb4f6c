#include "Markup.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// Whether a browser starts a tag or a comment where \a next follows a "<". A "<" between blanks is
// only text.
bool startsMarkup(QChar next)
{
    const char16_t unit = next.unicode();
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') || unit == u'!'
        || unit == u'/' || unit == u'?';
}

// Whether there is markup in \a text, from the position \a from on.
bool holdsMarkup(const QString& text, qsizetype from)
{
    for (qsizetype sign = text.indexOf(u'<', from); sign >= 0;
         sign = text.indexOf(u'<', sign + 1)) {
        if (sign + 1 < text.size() && startsMarkup(text.at(sign + 1)))
            return true;
    }
    return false;
}

// Where markup can begin that the row of the folder above does not hold. That is one character
// before the last slash: a name that ends with "<" becomes markup by the slash behind it.
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
        const QString path = result.directory().absoluteFilePath();
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
    const QString names =
        u"'%1'"_s.arg(folders.first(std::min(named, folders.size())).join(u"', '"_s));
    if (folders.size() == 1)
        return u"1 folder name holds markup that a browser would run: "_s + names;
    const qsizetype more = folders.size() - named;
    return QString::number(folders.size())
        + u" folder names hold markup that a browser would run: "_s + names
        + (more > 0 ? u" and %1 more"_s.arg(more) : QString());
}
