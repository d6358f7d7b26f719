# What released builds add, so that a bug which is still there ends the program instead of obeying a damaged file.
# Off where one compiles all day: it asks for optimisation and costs a little (docs/performance.md).
# Included by WaveformTargets.cmake, which has made `waveform_options`.
option(WAVEFORM_HARDENING "Guards against memory errors, for builds that are given away; see the preset hardened" OFF)
if(NOT WAVEFORM_HARDENING)
    return()
endif()
if(WAVEFORM_SANITIZE)
    message(FATAL_ERROR "The sanitizers watch the same calls: WAVEFORM_HARDENING or WAVEFORM_SANITIZE, not both.")
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
    message(FATAL_ERROR "_FORTIFY_SOURCE does nothing without optimisation: WAVEFORM_HARDENING wants a Release build.")
endif()

# Level 3 also checks buffers whose size is known at run time only; older compilers warn of it.
set(level 2)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12
   OR CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 9)
    set(level 3)
endif()
target_compile_options(waveform_options INTERFACE
    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=${level} # distributions predefine it, at a level of their own
    -fstack-protector-strong
    -fstack-clash-protection)
# Addresses of functions are settled before main() and cannot be written later; data is not executed.
target_link_options(waveform_options INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)

include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX OUTPUT_VARIABLE why)
if(NOT CMAKE_CXX_LINK_PIE_SUPPORTED)
    message(FATAL_ERROR "Programs that can be loaded anywhere are not to be had here:\n${why}")
endif()
