// Stands in for libFuzzer: runs all files of the directories named in the arguments, then changed
// ones, for so many seconds. The changes are drawn from one seed, so that every run makes the same.

#include "Fuzzing.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr const char* replacements[] {
    "2019",
    "07",
    "July",
    "Monday",
    "2019-07-14",
    "_vlp-Dateien",
    "%1",
    "%2",
    "\n",
    "\t",
    "<td>",
    "</td>\n",
    "\"",
    "\\",
    ".",
    "/",
    "\xff",
    "\xed\xa0\x80",
    "\xe2\x80\xae",
    "\x1b[31m",
    "\xd9\xa2",
    "photokit",
    " ",
    "-",
    "14.07.19",
    "Sun Jul 14 2019",
    "2,",
    "|",
    "\xef\xbb\xbf",
    "\xf0\x9e\xa5\x92",
    "Jul",
    "x",
};

class Changes
{
public:
    explicit Changes(const std::vector<Bytes>& corpus)
        : m_corpus(corpus)
    {
    }

    // An input of the corpus after one to eight changes.
    [[nodiscard]] Bytes next()
    {
        Bytes input = m_corpus.at(below(m_corpus.size()));
        for (std::size_t count = 1 + below(8); count > 0; --count)
            change(input);
        input.resize(std::min<std::size_t>(input.size(), 4096));
        return input;
    }

private:
    // A modulo, as the standard's distributions are not the same everywhere.
    std::size_t below(std::size_t limit) { return limit == 0 ? 0 : m_random() % limit; }

    void change(Bytes& input)
    {
        const auto position = static_cast<std::ptrdiff_t>(below(input.size() + 1));
        const auto place = input.begin() + position;
        const auto rest = static_cast<std::size_t>(input.end() - place);
        switch (below(5)) {
        case 0:
            input.insert(place, static_cast<std::uint8_t>(m_random()));
            break;
        case 1:
            input.erase(place, place + static_cast<std::ptrdiff_t>(std::min(rest, below(9))));
            break;
        case 2: {
            const char* const text = replacements[below(std::size(replacements))];
            input.insert(place, text, text + std::strlen(text));
            break;
        }
        case 3: {
            const Bytes& other = m_corpus.at(below(m_corpus.size()));
            input.insert(place, other.begin(), other.end());
            break;
        }
        default:
            if (rest > 0)
                *place = static_cast<std::uint8_t>(*place ^ (1U << below(8)));
        }
    }

    const std::vector<Bytes>& m_corpus;
    std::mt19937 m_random { 20190714 };
};

std::vector<Bytes> filesOf(const char* directory)
{
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    std::vector<Bytes> files;
    for (const auto& path : paths) {
        std::ifstream file(path, std::ios::binary);
        files.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return files;
}

void run(const Bytes& input)
{
    if (LLVMFuzzerTestOneInput(input.data(), input.size()) != 0)
        std::abort();
}

int replay(int argc, char* argv[])
{
    if (argc < 4 || std::strcmp(argv[1], "--seconds") != 0) {
        std::fputs("Usage: --seconds NUMBER DIRECTORY...\n", stderr);
        return EXIT_FAILURE;
    }
    std::vector<Bytes> corpus;
    for (int i = 3; i < argc; ++i) {
        const std::vector<Bytes> files = filesOf(argv[i]);
        corpus.insert(corpus.end(), files.begin(), files.end());
    }
    if (corpus.empty()) {
        std::fputs("The corpus is empty\n", stderr);
        return EXIT_FAILURE;
    }
    for (const Bytes& input : corpus)
        run(input);

    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::stoi(argv[2]));
    Changes changes(corpus);
    long count = 0;
    for (; std::chrono::steady_clock::now() < end; ++count)
        run(changes.next());
    std::fprintf(stderr, "%zu inputs of the corpus, %ld changed ones\n", corpus.size(), count);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char* argv[])
{
    try {
        LLVMFuzzerInitialize(&argc, &argv);
        return replay(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
