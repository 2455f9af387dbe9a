# vorlane_add_test(<name> LABEL unit|screen SOURCES <files...> LIBS <libraries...>)
# Builds one Qt Test executable from the given sources, links it with the program's
# libraries and registers it with CTest to run headless. The name is that of its source
# file, tst_<subject>. LABEL sorts it: "unit" tests call routines directly, "screen" tests
# drive screens through their controls. `ctest -L unit` or `ctest -L screen` runs one kind.
function(vorlane_add_test name)
  cmake_parse_arguments(T "" "LABEL" "SOURCES;LIBS" ${ARGN})
  if(NOT T_LABEL MATCHES "^(unit|screen)$")
    message(FATAL_ERROR "vorlane_add_test(${name}): LABEL must be unit or screen")
  endif()
  add_executable(${name} ${T_SOURCES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${T_LIBS} vorlane_testsupport Qt6::Test vorlane_warnings)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    LABELS ${T_LABEL}
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ODBCINI=${CMAKE_BINARY_DIR}/tests/odbc-none.ini;ODBCSYSINI=${CMAKE_BINARY_DIR}/tests"
    TIMEOUT 300)
endfunction()
