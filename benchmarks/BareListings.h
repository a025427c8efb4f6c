#pragma once

#include <cstddef>
#include <string>

/// The least that any run has to do, with the C library alone.
namespace BareListings {

struct Counts
{
    std::size_t folders = 0;
    std::size_t files = 0;
};

/// Lists the tree below \a root for its folders, and then each of these folders once more for its
/// files. Hidden entries are left out, and symlinks are not followed. The file system must return
/// the file type of an entry along with its name, as tmpfs, ext4, btrfs, XFS and APFS do.
[[nodiscard]] Counts twice(const std::string& root);

} // namespace BareListings
