# How every target of the tree is made: one language level, warnings as errors, one include root.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET default)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -g1")

find_program(CCACHE ccache)
if(CCACHE)
    # With precompiled headers it keeps nothing unless told that their macros and times need no watching.
    set(CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
endif()

set(WAVEFORM_SANITIZE "" CACHE STRING "Sanitizers for -fsanitize=, such as address,undefined or thread")

add_library(waveform_options INTERFACE)
target_compile_options(waveform_options INTERFACE -Wall -Wextra -Wpedantic -Werror
                       # Qt's logging macros leave their last argument out.
                       $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
# As Qt asks of all that use it, programs too: precompiled headers suit only who is compiled alike.
target_compile_options(waveform_options INTERFACE -fPIC)
target_include_directories(waveform_options INTERFACE ${PROJECT_SOURCE_DIR})
if(WAVEFORM_SANITIZE)
    target_compile_options(waveform_options INTERFACE -fsanitize=${WAVEFORM_SANITIZE}
                           -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(waveform_options INTERFACE -fsanitize=${WAVEFORM_SANITIZE})
endif()
include(hardening)

# What every target has: Qt's meta-object compiler where it asks for it, that of resources where it has some, and by what
# it depends on, the precompiled headers of the libraries it may use. These are compiled once for all targets; the
# presets that check do without (who includes too little is found there).
function(_waveform_common target moc)
    target_link_libraries(${target} PRIVATE waveform_options)
    set_target_properties(${target} PROPERTIES AUTOMOC ${moc})
    get_target_property(sources ${target} SOURCES)
    if("${sources}" MATCHES "[.]qrc")
        set_target_properties(${target} PROPERTIES AUTORCC ON)
    endif()
    if("${ARGN}" MATCHES "test_support")
        target_precompile_headers(${target} REUSE_FROM test_support)
    elseif("${ARGN}" MATCHES "Qt5::Widgets")
        target_precompile_headers(${target} REUSE_FROM pch_widgets)
    elseif("${ARGN}" MATCHES "Qt5::")
        target_precompile_headers(${target} REUSE_FROM pch_core)
    elseif("${ARGN}" MATCHES "test_plain")
        target_precompile_headers(${target} REUSE_FROM test_plain)
    else()
        target_precompile_headers(${target} REUSE_FROM pch_standard)
    endif()
endfunction()

# A target that precompiles headers for others.
function(_waveform_precompiled target depends)
    add_library(${target} STATIC ${CMAKE_BINARY_DIR}/pch.cpp)
    target_link_libraries(${target} PRIVATE ${depends} waveform_options)
    target_precompile_headers(${target} PRIVATE ${ARGN})
endfunction()

# The targets that precompile; called once, when Qt has been found. Their headers are those that many files include, and
# not all of <QtWidgets>: whatever is precompiled is loaded for every file, which then took 0.6 s instead of 0.2 s.
function(waveform_precompile)
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/pch.cpp CONTENT "")
    set(headers <algorithm> <array> <cmath> <cstddef> <cstdint> <functional> <gsl/span> <limits> <memory> <mutex>
        <optional> <string> <utility> <variant> <vector>)
    _waveform_precompiled(pch_standard Microsoft.GSL::GSL ${headers})
    list(APPEND headers <QByteArray> <QCoreApplication> <QDateTime> <QDebug> <QDir> <QFile> <QFileInfo> <QList>
        <QMetaType> <QObject> <QPointer> <QString> <QStringList> <QTimer> <QVariantMap>)
    _waveform_precompiled(pch_core Qt5::Core ${headers})
    list(APPEND headers <QAbstractTableModel> <QApplication> <QColor> <QDialog> <QFontMetrics> <QFrame> <QGridLayout>
        <QHBoxLayout> <QKeyEvent> <QLabel> <QLocale> <QPainter> <QPalette> <QPixmap> <QPolygonF> <QPushButton>
        <QVBoxLayout> <QWidget>)
    _waveform_precompiled(pch_widgets Qt5::Widgets ${headers})
    set(WAVEFORM_PRECOMPILED ${headers} PARENT_SCOPE) # the tests have more
endfunction()

# waveform_library(NAME [SHARED] [MOC] SOURCES a.cpp ... DEPENDS other ...)
# One library a folder; DEPENDS is the whole list of what its files may include. SHARED is for what host and plugin
# both use and what must exist once in the process: its meta-objects, its settings. MOC is for who has a Q_OBJECT
# (without it, the linker misses a vtable): the others are spared a pass over their files.
function(waveform_library name)
    cmake_parse_arguments(arg "SHARED;MOC" "" "SOURCES;DEPENDS" ${ARGN})
    set(kind "")
    if(arg_SHARED)
        set(kind SHARED)
    endif()
    add_library(${name} ${kind} ${arg_SOURCES})
    target_link_libraries(${name} PUBLIC ${arg_DEPENDS})
    _waveform_common(${name} ${arg_MOC} ${arg_DEPENDS})
endfunction()

# waveform_program(NAME [MOC] SOURCES ... DEPENDS ...): an executable in build/bin.
function(waveform_program name)
    cmake_parse_arguments(arg "MOC" "" "SOURCES;DEPENDS" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_DEPENDS})
    _waveform_common(${name} ${arg_MOC} ${arg_DEPENDS})
    target_compile_definitions(${name} PRIVATE WAVEFORM_VERSION="${PROJECT_VERSION}")
endfunction()
