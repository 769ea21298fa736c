# tb_add_test(NAME <name> SOURCES <files...> LIBS <targets...>)
# One Qt Test executable per test class, run headless with a pinned locale and time zone,
# and with a private configuration folder so no test touches the user's settings.
function(tb_add_test)
    cmake_parse_arguments(T "" "NAME" "SOURCES;LIBS" ${ARGN})
    add_executable(${T_NAME} ${T_SOURCES})
    target_link_libraries(${T_NAME} PRIVATE tb_strict tb_testsupport Qt6::Test ${T_LIBS})
    add_test(NAME ${T_NAME} COMMAND ${T_NAME})
    set_tests_properties(${T_NAME} PROPERTIES
        TIMEOUT 300
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=en_US.UTF-8;LC_ALL=en_US.UTF-8;TZ=America/New_York;XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/test-config;TB_SOURCE_DIR=${CMAKE_SOURCE_DIR};TB_APP_DIR=${TB_APP_DIR};TB_PYTHON=/usr/bin/python3")
endfunction()
