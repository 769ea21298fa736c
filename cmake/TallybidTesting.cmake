# tb_add_test(NAME <name> SOURCES <files...> LIBS <targets...>)
# One Qt Test executable per test class, run headless with a pinned locale and time zone,
# and with private configuration, data and runtime folders, so no test touches the user's
# settings or data and test programs never meet each other's one-copy lock.
# Qt makes each test's runtime folder itself, readable by the user alone, as it must be.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/test-runtime)
function(tb_add_test)
    cmake_parse_arguments(T "" "NAME" "SOURCES;LIBS" ${ARGN})
    add_executable(${T_NAME} ${T_SOURCES})
    target_link_libraries(${T_NAME} PRIVATE tb_strict tb_testsupport Qt6::Test ${T_LIBS})
    add_test(NAME ${T_NAME} COMMAND ${T_NAME})
    set_tests_properties(${T_NAME} PROPERTIES
        TIMEOUT 300
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=en_US.UTF-8;LC_ALL=en_US.UTF-8;TZ=America/New_York;XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/test-config;XDG_CACHE_HOME=${CMAKE_BINARY_DIR}/test-cache/${T_NAME};XDG_DATA_HOME=${CMAKE_BINARY_DIR}/test-data/${T_NAME};XDG_RUNTIME_DIR=${CMAKE_BINARY_DIR}/test-runtime/${T_NAME};TB_SOURCE_DIR=${CMAKE_SOURCE_DIR};TB_APP_DIR=${TB_APP_DIR};TB_PYTHON=/usr/bin/python3")
endfunction()
