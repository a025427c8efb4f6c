#include "BareListings.h"

#include <dirent.h>

#include <memory>
#include <utility>
#include <vector>

namespace {

struct CloseDirectory
{
    void operator()(DIR* directory) const { closedir(directory); }
};

template <typename Visit>
void forEachEntry(const std::string& path, const Visit& visit)
{
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir(path.c_str()));
    if (!directory)
        return;
    while (const dirent* const entry = readdir(directory.get())) {
        if (entry->d_name[0] != '.')
            visit(*entry);
    }
}

void collectFolders(const std::string& path, std::vector<std::string>& folders)
{
    folders.push_back(path);
    std::vector<std::string> below;
    forEachEntry(path, [&path, &below](const dirent& entry) {
        if (entry.d_type == DT_DIR)
            below.push_back(path + '/' + entry.d_name);
    });
    for (const std::string& folder : std::as_const(below))
        collectFolders(folder, folders);
}

} // namespace

BareListings::Counts BareListings::twice(const std::string& root)
{
    std::vector<std::string> folders;
    collectFolders(root, folders);

    Counts counts;
    counts.folders = folders.size();
    for (const std::string& folder : std::as_const(folders)) {
        forEachEntry(folder, [&counts](const dirent& entry) {
            if (entry.d_type == DT_REG)
                ++counts.files;
        });
    }
    return counts;
}
