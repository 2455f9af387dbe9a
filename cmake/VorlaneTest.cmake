# vorlane_add_test(<name> SOURCES <files...> LIBS <libraries...>)
# Builds one Qt Test executable from the given sources, links it with the program's
# libraries and registers it with CTest to run headless.
function(vorlane_add_test name)
  cmake_parse_arguments(T "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${T_LIBS} vorlane_testsupport Qt6::Test)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ODBCINI=${CMAKE_BINARY_DIR}/tests/odbc-none.ini;ODBCSYSINI=${CMAKE_BINARY_DIR}/tests"
    TIMEOUT 300)
endfunction()
