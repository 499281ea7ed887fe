# Warnings, sanitizers and hardening that every target shares.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Werror)
# g++ 12 sees overlapping copies in every text assigned from a literal (https://gcc.gnu.org/bugzilla/show_bug.cgi?id=105651),
# and where headers are precompiled it warns of copies inside the library's own whose lengths it has lost sight of.
add_compile_options("$<$<CXX_COMPILER_ID:GNU>:-Wno-restrict;-Wno-stringop-overflow;-Wno-stringop-overread;-Wno-array-bounds>")

if(NOT WIN32)
  # COM interfaces have no virtual destructor. Threads are used by libraries below; all sources share their headers
  # precompiled, so all say it.
  add_compile_options(-Wnon-virtual-dtor -pthread)
endif()

# What is tested is sanitized. Its tests are compiled as for the plain build, whose results the compiler cache has by then;
# sanitizing them would take as long as all the rest. (The preset for coverage sets what counts in the sanitizers' place.)
option(KVT_SANITIZE "build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
if(KVT_SANITIZE)
  # Of undefined behaviour, what the address sanitizer stops at as well takes a third of the build. The instrumentation
  # brings false positives, as in <regex> (https://gcc.gnu.org/bugzilla/show_bug.cgi?id=105562).
  set(kvt_instrumentation -O1 -g1 -fsanitize=address,undefined -fno-sanitize=null,alignment,object-size
                          -fno-sanitize-recover=undefined -fno-omit-frame-pointer -Wno-maybe-uninitialized)
  # Of code that the sanitizer's own memory upsets.
  set(kvt_sanitized KVT_SANITIZED)
  # At a fixed place, a program of them starts in nine tenths of the time: tables of the sanitizers name 300,000 addresses.
  add_link_options(-fsanitize=address,undefined -no-pie)
endif()

# A dozen sources of a target are compiled as one, in a third of the time. Lint reads each alone, so a source includes what
# it uses.
set(CMAKE_UNITY_BUILD ON)
set(CMAKE_UNITY_BUILD_BATCH_SIZE 12)

if(WIN32)
  # Self-contained, with address space randomisation, no executable data, and symbols that winedbg can read: names and
  # lines, as a crash needs them; what a debugger is told of types and variables takes a third of the build.
  add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601)
  add_compile_options(-fstack-protector-strong -gdwarf-4 "$<IF:$<CONFIG:Debug>,-g,-g1>")
  add_link_options(-static -fstack-protector-strong -Wl,--dynamicbase -Wl,--nxcompat)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    add_link_options(-Wl,--high-entropy-va)
  else()
    # Numbers are rounded as on every other machine, not kept in 80 bits along the way.
    add_compile_options(-msse2 -mfpmath=sse)
  endif()
endif()

# The headers of the standard library that most sources include, read once for each preset. A source includes what it
# uses all the same; lint reads it without these.
set(kvt_standard_headers <algorithm> <array> <charconv> <cmath> <cstdint> <filesystem> <fstream> <functional> <map>
                         <memory> <optional> <span> <string> <string_view> <utility> <vector>)

# The system's headers, which take twice as long to read as all the others: for sources that speak COM.
set(kvt_windows_headers <windows.h> <olectl.h>)

# kvt_library(NAME SOURCES… [DEPENDS targets…] [HEADERS headers…]): a static library that is included as "folder/header.h";
# its headers are precompiled beside the standard ones.
function(kvt_library name)
  cmake_parse_arguments(arg "" "" "DEPENDS;HEADERS" ${ARGN})
  add_library(${name} STATIC ${arg_UNPARSED_ARGUMENTS})
  target_include_directories(${name} PUBLIC "${CMAKE_SOURCE_DIR}/src")
  target_link_libraries(${name} PUBLIC ${arg_DEPENDS})
  target_compile_options(${name} PRIVATE ${kvt_instrumentation})
  target_compile_definitions(${name} PRIVATE ${kvt_sanitized})
  if(arg_HEADERS OR name STREQUAL "kvt_values")
    target_precompile_headers(${name} PRIVATE ${kvt_standard_headers} ${arg_HEADERS})
  else()
    target_precompile_headers(${name} REUSE_FROM kvt_values)
  endif()
endfunction()
