# Window tests of the Ad Studio: real windows under the offscreen platform.
tb_add_test(NAME tst_adstudio SOURCES tst_adstudio.cpp LIBS tb_listing_ui)
target_compile_definitions(tst_adstudio PRIVATE
    TB_ADSTUDIO_DATA="${CMAKE_CURRENT_SOURCE_DIR}/data")
