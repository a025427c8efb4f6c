#include "OptionTable.h"

#include <QtCore/QString>

using namespace Qt::StringLiterals;

const std::array<OptionRow, 10> optionTable {
    OptionRow { "open"_L1, ""_L1, ""_L1,
                "Open the report even without a desktop or with markup in it."_L1 },
    OptionRow { "no-open"_L1, ""_L1, ""_L1, "Do not open the report."_L1 },
    OptionRow { "list"_L1, ""_L1, ""_L1, "Write no report; print a line for each folder."_L1 },
    OptionRow { "json"_L1, ""_L1, ""_L1,
                "Write no report; print a JSON object for each folder, one a line."_L1 },
    OptionRow { "summary"_L1, ""_L1, ""_L1,
                "Write no report; print how many folders of each type there are."_L1 },
    OptionRow { "type"_L1, "NAME"_L1, "Unknown Root Year Month Day Event ProjectFolder"_L1,
                "With --list, --json or --summary: only folders of this type (Unknown, Root, Year, "
                "Month, Day, Event or ProjectFolder)."_L1 },
    OptionRow { "explain"_L1, ""_L1, ""_L1,
                "Take the arguments as folder names and say what each one is by itself. Touches no "
                "file."_L1 },
    OptionRow { "locale"_L1, "NAME"_L1, ""_L1,
                "Read dates and names of days and months in this language, for example de_DE."_L1 },
    OptionRow { "h help"_L1, ""_L1, ""_L1, "Show this help."_L1 },
    OptionRow { "v version"_L1, ""_L1, ""_L1, "Show the version."_L1 },
};
