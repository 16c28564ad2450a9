option(KESTREL_BENCH "Build the benchmarks" OFF)
option(KESTREL_DESKTOP "Build the application with windows (needs Qt 6)" ON)
option(KESTREL_FUZZ "Build the fuzz targets (needs clang)" OFF)
set(KESTREL_SANITIZE "" CACHE STRING "Sanitizers to build with: empty, 'address,undefined' or 'thread'")

find_package(Threads REQUIRED)
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
# Debian's library also links with libc++: no standard type is part of what is called in it.
find_package(simdjson REQUIRED)
find_package(SQLite3 REQUIRED)

# What every target of the project is compiled with.
add_library(KestrelOptions INTERFACE)
target_include_directories(KestrelOptions INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(KestrelOptions INTERFACE -Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  target_compile_options(KestrelOptions INTERFACE -Wthread-safety)
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 14)
  # Optimising, it takes an insertion into a std::string for an overlapping copy (GCC bug 105651).
  target_compile_options(KestrelOptions INTERFACE $<$<CONFIG:Release>:-Wno-restrict>)
endif()
if(KESTREL_SANITIZE)
  target_compile_options(KestrelOptions INTERFACE -fsanitize=${KESTREL_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(KestrelOptions INTERFACE -fsanitize=${KESTREL_SANITIZE})
  if(KESTREL_SANITIZE MATCHES "undefined")
    target_compile_options(KestrelOptions INTERFACE -fno-sanitize-recover=all)
  endif()
  if(KESTREL_SANITIZE STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Asio uses a fence, which this sanitizer does not model.
    target_compile_options(KestrelOptions INTERFACE -Wno-tsan)
  endif()
endif()

# What is shipped checks its buffers and its stack, and cannot have its jump tables rewritten once it runs. Debian's
# compilers make position-independent executables by themselves; tools/package looks that all of this is there.
if(NOT KESTREL_SANITIZE)
  add_compile_options("$<$<CONFIG:Release>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    add_link_options("$<$<CONFIG:Release>:LINKER:-z,relro,-z,now>")
  endif()
endif()

# Debian's fmt library is built for libstdc++; with libc++ its headers are compiled in instead.
option(KESTREL_LIBCXX "Build against libc++" OFF)
if(KESTREL_LIBCXX)
  set(KESTREL_FMT fmt::fmt-header-only)
else()
  set(KESTREL_FMT fmt::fmt)
endif()
