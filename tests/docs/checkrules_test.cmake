# Writes a list of rules and a test and asks cmake/checkrules.cmake what it thinks of them:
# cmake -D SCRIPT=<checkrules.cmake> -D DIR=<scratch directory> -P checkrules_test.cmake
cmake_minimum_required(VERSION 3.25)

function(check_page page rule test verdict)
    file(REMOVE_RECURSE ${DIR})
    file(WRITE ${DIR}/docs/${page} "| Rule | Tests |\n|---|---|\n| It holds [so]; always. | ${rule} |\n")
    file(WRITE ${DIR}/tests/a/a_test.cpp "#include <a>\n\n${test}\n{\n    int a[3] = {};\n}\n")
    execute_process(COMMAND ${CMAKE_COMMAND} -D ROOT=${DIR} -P ${SCRIPT}
                    RESULT_VARIABLE result OUTPUT_VARIABLE said ERROR_VARIABLE said)
    set(complained FALSE)
    if(result AND said MATCHES "which no test has|No tests or no lists")
        set(complained TRUE)
    endif()
    if(verdict STREQUAL "good" AND result OR verdict STREQUAL "bad" AND NOT complained)
        message(SEND_ERROR "${rule} in ${page} with ${test} should be ${verdict}, but:\n${said}")
    endif()
endfunction()

function(check)
    check_page(rules/a.md ${ARGV})
endfunction()

check("`Suite1.IsTrue`" "TEST(Suite1, IsTrue)" good)
check("`Suite1.IsTrue`" "TEST_F(Suite1, IsTrue)" good)
check("`Suite1.IsTrue`" "TEST_P(Suite1,\n       IsTrue)" good)
check("`Suite1.IsTrue`, `Suite1.IsFalse`" "TEST(Suite1, IsTrue)\n{\n}\n\nTEST(Suite1, IsFalse)" good)
check("`Suite1.IsTrue` of `keeper.cpp`" "TEST(Suite1, IsTrue)" good)

check("`Suite1.IsTru`" "TEST(Suite1, IsTrue)" bad)
check("`Suite1.IsTrue`" "TEST(Suite2, IsTrue)" bad)
check("`Suite1.IsTrue`, `Suite1.IsFalse`" "TEST(Suite1, IsTrue)" bad)
check("`Suite1.IsTrue`" "// TEST(Suite1, IsTrue)" bad)
check("by looking" "TEST(Suite1, IsTrue)" bad)
check("`Suite1.IsTrue`" "int a()" bad)

check_page(reliability.md "`Suite1.IsTrue`" "TEST(Suite1, IsTrue)" good)
check_page(reliability.md "`Suite1.IsTru`" "TEST(Suite1, IsTrue)" bad)
check_page(other.md "`Suite1.IsTrue`" "TEST(Suite1, IsTrue)" bad)
