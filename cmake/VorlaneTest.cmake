# vorlane_add_test(<name> LABEL unit|screen [SERVER|SERVER_ONLY] SOURCES <files...> LIBS <libraries...>)
# Builds one Qt Test executable from the given sources, links it with the program's
# libraries and registers it with CTest to run headless. The name is that of its source
# file, tst_<subject>. LABEL sorts it: "unit" tests call routines directly, "screen" tests
# drive screens through their controls. `ctest -L unit` or `ctest -L screen` runs one kind.
# SERVER registers the test a second time, as <name>_server, with the data source "Vorlane" on
# the tests' own PostgreSQL server; SERVER_ONLY registers it, as <name>, only so. `ctest -L server` runs
# those.
function(vorlane_add_test name)
  cmake_parse_arguments(T "SERVER;SERVER_ONLY" "LABEL" "SOURCES;LIBS" ${ARGN})
  if(NOT T_LABEL MATCHES "^(unit|screen)$")
    message(FATAL_ERROR "vorlane_add_test(${name}): LABEL must be unit or screen")
  endif()
  add_executable(${name} ${T_SOURCES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${T_LIBS} vorlane_testsupport Qt6::Test vorlane_warnings)
  if(NOT T_SERVER_ONLY)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
      LABELS ${T_LABEL}
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ODBCINI=${CMAKE_BINARY_DIR}/tests/odbc-none.ini;ODBCSYSINI=${CMAKE_BINARY_DIR}/tests"
      TIMEOUT 300)
  endif()
  if((T_SERVER OR T_SERVER_ONLY) AND VORLANE_SERVER_TESTS)
    set(state ${CMAKE_BINARY_DIR}/tests/server)
    set(test ${name}_server)
    if(T_SERVER_ONLY)
      set(test ${name})
    endif()
    add_test(NAME ${test} COMMAND ${name})
    # The tests share the server's one database: one at a time.
    set_tests_properties(${test} PROPERTIES
      LABELS "${T_LABEL};server"
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ODBCINI=${state}/odbc.ini;ODBCSYSINI=${state};PGPASSFILE=${state}/pgpass"
      FIXTURES_REQUIRED pgserver
      RESOURCE_LOCK pgserver
      TIMEOUT 300)
  endif()
endfunction()
