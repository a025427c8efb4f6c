#pragma once

#include <QtCore/QDebug>
#include <QtCore/QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// What libFuzzer and Replay.cpp call, the first once, the second with each input.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace Fuzzing {

/// How many comparisons were made: a replay that makes none is a failure.
inline long comparisons = 0;

/// Ends the program when what was found is not what the model says. The input is what the fuzzer
/// ran last, and it keeps that.
template <typename Value>
void compare(const char* what, const Value& found, const Value& expected, const QString& input)
{
    ++comparisons;
    if (found == expected)
        return;
    qCritical().nospace() << what << "\n   found    " << found << "\n   expected " << expected
                          << "\n   for      " << input;
    std::abort();
}

/// Takes no message for granted: whatever is logged ends the program.
inline void endOnMessages()
{
    static QtMessageHandler print = nullptr;
    print = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext& context, const QString& text) {
            print(type, context, text);
            if (type != QtCriticalMsg)
                std::abort();
        });
}

} // namespace Fuzzing
