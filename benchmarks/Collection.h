#pragma once

#include <QtCore/QString>

#include <array>
#include <string_view>

/// Picture collections that are made to be measured.
namespace Collection {

/// How many folders of each type a collection holds.
struct Counts
{
    int root = 1;
    int years = 0;
    int months = 0;
    int events = 0;
    int days = 0;
    int unknown = 0;

    [[nodiscard]] int folders() const { return root + years + months + events + days + unknown; }
};

enum class Layout {
    /// Years, each with twelve months, each with events. The files are in the events. Of five
    /// events,
    /// two contain an empty day folder and one some other empty folder.
    Calendar,
    /// Folders side by side, with files in each.
    Flat,
    /// Folders of one letter, one inside the other, with files in each.
    Chain,
};

struct Shape
{
    std::string_view name;
    Layout layout;
    /// How many years, folders or levels; 0 stands for as many levels as the system allows in a
    /// path.
    int size;
    /// How many events each month has.
    int events;
};

inline constexpr std::array shapes {
    Shape { "typical", Layout::Calendar, 25, 40 }, // 19,526 folders
    Shape { "large", Layout::Calendar, 256, 40 },  // 199,937 folders
    Shape { "small", Layout::Calendar, 1, 10 },    // 206 folders
    Shape { "flat", Layout::Flat, 5000, 0 },       Shape { "chain", Layout::Chain, 1000, 0 },
    Shape { "deep", Layout::Chain, 0, 0 },
};

/// Returns the shape of that name, or nullptr.
[[nodiscard]] const Shape* shapeNamed(std::string_view name);

/// Makes a collection in the existing, empty directory \a root, with \a files empty files in each
/// folder that contains files. Ends the program if that fails.
Counts make(const Shape& shape, const QString& root, int files);

/// Returns the directory in which collections are made: one in memory, so that no disk is measured,
/// or that for temporary files if the system has none in memory.
[[nodiscard]] QString preferredDirectory();

} // namespace Collection
