#include <cstdlib>
#include <new>
#include <thread>

/// Takes the place of the C++ library's function: there is memory for the first thread alone.
void* operator new(std::size_t size)
{
    static const std::thread::id first = std::this_thread::get_id();
    void* const block = std::this_thread::get_id() == first ? std::malloc(size) : nullptr;
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}
