# The words of other languages: data/translations/waveform_<code>.ts, compiled and put into the program as resources, so
# that they are there wherever it runs. A new language is a new file there.

# Qt's tools come with the package qttools5-dev-tools and lie beside those that Qt's own packages bring.
get_target_property(moc Qt5::moc IMPORTED_LOCATION)
get_filename_component(qt_tools ${moc} DIRECTORY)
find_program(LRELEASE NAMES lrelease lrelease-qt5 HINTS ${qt_tools} DOC "Compiles translations")
find_program(LUPDATE NAMES lupdate lupdate-qt5 HINTS ${qt_tools} DOC "Finds what is to be translated; a test wants it")
if(NOT LRELEASE)
    message(FATAL_ERROR "lrelease is missing, which compiles the translations: install qttools5-dev-tools.")
endif()

# What holds texts for the user; the tests look in the same places.
set(WAVEFORM_TRANSLATED acquisition app events platform/launcher platform/otdr platform/otdrconfig plot plugin refls storage
    twomarkers window)

# waveform_translations(TARGET): makes the resource and adds it to the target, which calls Q_INIT_RESOURCE(translations).
function(waveform_translations target)
    set(made ${PROJECT_BINARY_DIR}/translations)
    file(MAKE_DIRECTORY ${made})
    file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/data/translations/waveform_*.ts)
    set(entries "")
    set(compiled "")
    foreach(source IN LISTS sources)
        get_filename_component(name ${source} NAME_WE)
        add_custom_command(OUTPUT ${made}/${name}.qm
            COMMAND ${LRELEASE} -silent ${source} -qm ${made}/${name}.qm
            DEPENDS ${source}
            VERBATIM)
        list(APPEND compiled ${made}/${name}.qm)
        string(APPEND entries "<file>${name}.qm</file>")
    endforeach()
    file(CONFIGURE OUTPUT ${made}/translations.qrc
         CONTENT "<RCC><qresource prefix=\"/translations\">${entries}</qresource></RCC>\n")
    add_custom_command(OUTPUT ${made}/translations.cpp
        COMMAND Qt5::rcc --name translations -o ${made}/translations.cpp ${made}/translations.qrc
        DEPENDS ${compiled} ${made}/translations.qrc
        VERBATIM)
    target_sources(${target} PRIVATE ${made}/translations.cpp)
    set_source_files_properties(${made}/translations.cpp PROPERTIES SKIP_AUTOGEN ON SKIP_PRECOMPILE_HEADERS ON)
endfunction()
