// Stands in for libFuzzer: runs all files of a directory, then so many changed ones. The changes
// are drawn from one seed, so that every run makes the same.

#include "Fuzzing.h"

#include <algorithm>
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

// clang-format off
constexpr const char* replacements[] {
    "2019", "07", "July", "Jul", "Monday", "2019-07-14", "14.07.19", "Sun Jul 14 2019", "2,",
    "_vlp-Dateien", "photokit", "%1", "%2", "\n", "\t", " ", "-", ".", "/", "|", "x", "\"", "\\",
    "<td>", "</td>\n", "\x1b[31m", "\xff", "\xed\xa0\x80", "\xe2\x80\xae", "\xd9\xa2",
    "\xef\xbb\xbf", "\xf0\x9e\xa5\x92",
};
// clang-format on

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
    if (argc != 3) {
        std::fputs("Usage: NUMBER-OF-CHANGED-INPUTS DIRECTORY\n", stderr);
        return EXIT_FAILURE;
    }
    const std::vector<Bytes> corpus = filesOf(argv[2]);
    if (corpus.empty()) {
        std::fputs("The corpus is empty\n", stderr);
        return EXIT_FAILURE;
    }
    for (const Bytes& input : corpus)
        run(input);
    const long ofCorpus = Fuzzing::comparisons;
    const long changed = std::atol(argv[1]);
    Changes changes(corpus);
    for (long count = 0; count < changed; ++count)
        run(changes.next());
    std::fprintf(stderr, "%zu inputs of the corpus, %ld changed ones, %ld comparisons\n",
                 corpus.size(), changed, Fuzzing::comparisons);
    // A few inputs have nothing in them to compare.
    const bool isEnough = 2 * ofCorpus > static_cast<long>(corpus.size())
        && 2 * (Fuzzing::comparisons - ofCorpus) > changed;
    if (!isEnough)
        std::fputs("Most inputs were compared with nothing\n", stderr);
    return isEnough ? EXIT_SUCCESS : EXIT_FAILURE;
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
