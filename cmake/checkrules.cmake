# Checks that the tests named in the lists of rules and of faults exist: cmake -D ROOT=<source directory> -P checkrules.cmake
# A test is named as `Suite.Name` in docs/rules/*.md or docs/reliability.md and stands as TEST(Suite, Name), TEST_F or TEST_P
# in tests/**.cpp.
# Fails with one line for each name that no test has.

cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE sources ${ROOT}/tests/*.cpp)
foreach(source IN LISTS sources)
    file(READ ${source} text)
    # At the start of a line: one that is commented out is no test. Semicolons and brackets would split and join what CMake takes for a list.
    string(REGEX REPLACE "[][;]" " " text "${text}")
    string(REGEX MATCHALL "\nTEST(_F|_P)?\\([ \t\n]*[A-Za-z0-9_]+[ \t\n]*,[ \t\n]*[A-Za-z0-9_]+[ \t\n]*\\)" heads "${text}")
    foreach(head IN LISTS heads)
        string(REGEX REPLACE "^\nTEST(_F|_P)?\\([ \t\n]*([A-Za-z0-9_]+)[ \t\n]*,[ \t\n]*([A-Za-z0-9_]+).*" "\\2.\\3" test "${head}")
        set(exists_${test} TRUE)
    endforeach()
    list(LENGTH heads count)
    math(EXPR tests "${tests} + ${count}")
endforeach()

set(missing 0)
set(named 0)
file(GLOB lists RELATIVE ${ROOT} ${ROOT}/docs/rules/*.md ${ROOT}/docs/reliability.md)
foreach(list IN LISTS lists)
    file(READ ${ROOT}/${list} text)
    string(REGEX REPLACE "[][;]" " " text "${text}")
    # A suite is named in upper case; file names such as `keeper.cpp` are not meant.
    string(REGEX MATCHALL "`[A-Z][A-Za-z0-9_]*\\.[A-Za-z0-9_]+`" names "${text}")
    foreach(name IN LISTS names)
        string(REPLACE "`" "" name ${name})
        math(EXPR named "${named} + 1")
        if(NOT exists_${name} AND NOT name MATCHES "^Suite\\.Name$")
            message(NOTICE "${list} names ${name}, which no test has.")
            math(EXPR missing "${missing} + 1")
        endif()
    endforeach()
endforeach()

if(NOT tests OR named EQUAL 0)
    message(FATAL_ERROR "No tests or no lists of rules below ${ROOT}.")
elseif(missing)
    message(FATAL_ERROR "${missing} of ${named} names in docs are those of no test.")
endif()
message(STATUS "${named} names of tests in docs are those of tests.")
