# Prints how many lines the tests run, by folder, and fails where it is too few; cmake/coverage.sh calls it:
# cmake -D BUILD=<build directory of the preset coverage, its tests run> -P coverage.cmake
# Counts .cpp files and headers of library, application and programs, with gcovr.
cmake_minimum_required(VERSION 3.25)

set(leastCore 95) # percent of platform/otdr/core
set(leastWhole 85)

cmake_path(SET root NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/..")
cmake_path(ABSOLUTE_PATH root NORMALIZE)
string(REGEX REPLACE "/$" "" root ${root})
if(NOT BUILD)
    set(BUILD ${root}/build-coverage)
endif()
get_filename_component(BUILD ${BUILD} ABSOLUTE)
find_program(GCOVR gcovr REQUIRED)

# What a folder of the build makes of no source of ours is left out: meta-objects, resources.
execute_process(
    COMMAND ${GCOVR} --root ${root} --object-directory ${BUILD} -j 2 --json-summary
            --filter ${root}/ --exclude ".*/?build[^/]*/" --exclude "${root}/(tests|bench|fuzz)/" --exclude "${BUILD}/"
            ${BUILD}
    OUTPUT_VARIABLE summary ERROR_VARIABLE complaints RESULT_VARIABLE failed)
if(failed)
    message(FATAL_ERROR "${complaints}")
endif()
file(WRITE ${BUILD}/coverage.json "${summary}")
string(JSON count LENGTH "${summary}" files)
if(count EQUAL 0)
    message(FATAL_ERROR "No counts in ${BUILD}: build the preset `coverage` and run its tests first.")
endif()

# A percentage with one decimal, CMake having integers only; right-aligned.
function(row name executed lines)
    math(EXPR tenths "(${executed} * 1000 + ${lines} / 2) / ${lines}")
    math(EXPR whole "${tenths} / 10")
    math(EXPR tenth "${tenths} % 10")
    string(SUBSTRING "${name}                              " 0 26 name)
    set(figures "     ${lines}")
    string(LENGTH ${figures} end)
    math(EXPR start "${end} - 6")
    string(SUBSTRING ${figures} ${start} -1 figures)
    message(NOTICE "${name}${figures} lines  ${whole}.${tenth} %")
endfunction()

set(folders "")
math(EXPR last "${count} - 1")
foreach(i RANGE ${last})
    string(JSON name GET "${summary}" files ${i} filename)
    string(JSON lines GET "${summary}" files ${i} line_total)
    string(JSON executed GET "${summary}" files ${i} line_covered)
    if(lines EQUAL 0)
        continue()
    endif()
    get_filename_component(folder ${name} DIRECTORY)
    list(APPEND folders ${folder})
    foreach(sum ${folder} total)
        math(EXPR lines_${sum} "0${lines_${sum}} + ${lines}" OUTPUT_FORMAT DECIMAL)
        math(EXPR executed_${sum} "0${executed_${sum}} + ${executed}" OUTPUT_FORMAT DECIMAL)
    endforeach()
endforeach()

list(REMOVE_DUPLICATES folders)
list(SORT folders)
foreach(folder IN LISTS folders)
    row(${folder} ${executed_${folder}} ${lines_${folder}})
endforeach()
row(total ${executed_total} ${lines_total})

# Fails unless `least` percent of the lines counted as `sum` are run.
function(expect sum least)
    math(EXPR missing "${lines_${sum}} * ${least} - ${executed_${sum}} * 100")
    if(missing GREATER 0)
        message(SEND_ERROR "${sum}: fewer than ${least} % of the lines are run; ${BUILD}/coverage.json tells the files.")
    endif()
endfunction()
expect(platform/otdr/core ${leastCore})
expect(total ${leastWhole})
