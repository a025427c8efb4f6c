// Random trees into the walk, compared with a model that never looks at the file system. Each line
// of an input makes one entry: what it is (d folder, f file, p pipe, l link), in which folder (a
// character: "0" is the root, "1" the first folder made), for a link the folder it leads to
// (another such character), and the name.

#include "Fuzzing.h"
#include "LiteralRules.h"
#include "RawDirectory.h"
#include "Walk.h"

#include <map>
#include <optional>
#include <vector>

using Type = VLEventFolderTypeEnum;

namespace {

constexpr std::size_t mostFolders = 24;
constexpr qsizetype mostResults = 600;
constexpr qsizetype longestPath = 1000;
constexpr int mostLinksInAPath = 40;

/// A tree in memory and, entry by entry, on the disk.
class Tree
{
public:
    explicit Tree(RawDirectory& directory)
        : m_directory(directory)
        , m_folders(1)
    {
    }

    void add(const QByteArray& line)
    {
        if (line.size() < 3)
            return;
        const char kind = line.at(0);
        const std::size_t above = indexOf(line.at(1));
        const QByteArray name = line.mid(kind == 'l' ? 3 : 2);
        if (name.isEmpty() || name == "." || name == ".." || name.contains('/')
            || name.contains('\0') || name.size() > 255
            || m_folders.at(above).entries.count(name) > 0)
            return;
        const QByteArray path = m_folders.at(above).path + name;
        if (kind == 'd' && m_folders.size() < mostFolders)
            addFolder(above, name, path);
        else if (kind == 'l')
            addLink(above, name, path, indexOf(line.at(2)));
        else if (kind == 'f' || kind == 'p')
            addOther(above, name, path, kind);
    }

    /// One line for each folder that the walk visits, or nothing when they are too many or their
    /// paths too long for the system.
    [[nodiscard]] std::optional<QByteArrayList> walkedLines() const
    {
        Walked walked;
        visit({ 0, {}, {}, Type::Unknown, 0 }, walked);
        if (walked.isTooLarge)
            return std::nullopt;
        return walked.lines;
    }

private:
    // What stands under a name. No folder means a file or a pipe.
    struct Entry
    {
        std::optional<std::size_t> folder;
        bool isLink = false;
    };
    struct Folder
    {
        QByteArray path;
        std::map<QByteArray, Entry> entries;
    };

    // Where a walk is: a folder as its path names it, and how many links that holds.
    struct Place
    {
        std::size_t folder;
        QString path;
        QString name;
        Type parent;
        int links;
    };
    struct Walked
    {
        QByteArrayList lines;
        bool isTooLarge = false;
    };

    [[nodiscard]] std::size_t indexOf(char character) const
    {
        return static_cast<unsigned char>(character - '0') % m_folders.size();
    }

    void addFolder(std::size_t above, const QByteArray& name, const QByteArray& path)
    {
        m_directory.folder(path);
        m_folders.at(above).entries[name] = { m_folders.size(), false };
        m_folders.push_back({ path + '/', {} });
    }

    void addLink(std::size_t above, const QByteArray& name, const QByteArray& path, std::size_t to)
    {
        const QByteArray target = m_directory.bytes(m_folders.at(to).path);
        m_directory.link(path, target);
        m_folders.at(above).entries[name] = { to, true };
    }

    void addOther(std::size_t above, const QByteArray& name, const QByteArray& path, char kind)
    {
        if (kind == 'f')
            m_directory.file(path);
        else
            m_directory.fifo(path);
        m_folders.at(above).entries[name] = {};
    }

    // The entries that are listed: in the order of UTF-16 code units, hidden names and those that
    // no QString can hold left out.
    static std::map<QString, Entry> listed(const Folder& folder)
    {
        std::map<QString, Entry> entries;
        for (const auto& [bytes, entry] : folder.entries) {
            const QString name = QString::fromUtf8('x' + bytes).mid(1);
            if (!bytes.startsWith('.') && name.toUtf8() == bytes && entry.folder)
                entries[name] = entry;
        }
        return entries;
    }

    void visit(const Place& place, Walked& walked) const
    {
        if (place.links > mostLinksInAPath)
            return;
        walked.isTooLarge = walked.isTooLarge || walked.lines.size() >= mostResults
            || place.path.size() > longestPath;
        if (walked.isTooLarge)
            return;
        static const QStringList months = LiteralRules::monthNames(QLocale());
        const Type own = place.folder == 0
            ? Type::Root
            : LiteralRules::typeOfName(place.name, LiteralRules::Locales::current(), months);
        const Type type = LiteralRules::typeInContext(own, place.parent);
        walked.lines.append((place.path + u' ' + typeName(type)).toUtf8());
        for (const auto& [name, entry] : listed(m_folders.at(place.folder))) {
            visit({ *entry.folder, place.path + u'/' + name, name, type,
                    place.links + (entry.isLink ? 1 : 0) },
                  walked);
        }
    }

    RawDirectory& m_directory;
    std::vector<Folder> m_folders;
};

} // namespace

int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    Q_UNUSED(argc)
    Q_UNUSED(argv)
    Fuzzing::endOnMessages();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char*>(data), qsizetype(size));
    RawDirectory directory;
    Tree tree(directory);
    const QByteArrayList lines = input.split('\n');
    for (const QByteArray& line : lines)
        tree.add(line);
    // A name may have bytes that this file system refuses, or a path too many of them.
    const auto expected = tree.walkedLines();
    if (directory.isValid() && expected)
        Fuzzing::compare("eventFolderTypes", walkedLines(directory.path()), *expected,
                         QString::fromUtf8(input));
    return 0;
}
