# Read after CMake's own rules for a Mac. It asks the Mac that it runs on whether there are run paths;
# and Zig makes no bundles.
set(CMAKE_SHARED_LIBRARY_RUNTIME_C_FLAG "-Wl,-rpath,")
set(CMAKE_SHARED_MODULE_CREATE_CXX_FLAGS "-dynamiclib")
